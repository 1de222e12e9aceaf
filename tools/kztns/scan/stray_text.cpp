#include "scan/stray_text.h"

#include <algorithm>

#include "scan/half_comment.h"
#include "scan/item_text.h"
#include "text/characters.h"
#include "text/words.h"

namespace kztns {

bool is_foreign_comment(std::string_view word) {
  constexpr std::string_view begins[] = {"--", ";", "!", "//"};
  return std::any_of(std::begin(begins), std::end(begins),
                     [&](std::string_view begin) { return word.starts_with(begin); });
}

std::optional<Offset> end_of_long_comment(std::string_view text, Offset at) {
  constexpr std::string_view signs[][2] = {{"/*", "*/"}, {"<!--", "-->"}};
  for (const auto &[open, close] : signs) {
    if (!text.substr(at).starts_with(open)) continue;
    // One in which another one begins was forgotten to be closed.
    const std::string_view comment = text.substr(0, text.find(open, at + open.size()));
    const std::size_t end = comment.find(close, at + open.size());
    if (end == comment.npos) return std::nullopt;
    return static_cast<Offset>(end + close.size());
  }
  return std::nullopt;
}

Offset pass_comments(std::string_view text, Offset from) {
  Offset at = pass_blanks(text, from);
  while (at < text.size() && is_foreign_comment(text.substr(at, 2)))
    at = pass_blanks(text, end_of_line(text, at));
  return at;
}

std::optional<Offset> value_on_line(std::string_view text, Offset at) {
  const Offset line_end = end_of_line(text, at);
  // Of the line and the next one, without their comments.
  for (const Offset begin : {at, line_end + 1}) {
    if (begin >= text.size()) break;
    const std::string_view line = text.substr(0, end_of_line(text, begin));
    const std::size_t sign = line.find_first_of("()=#", begin);
    if (sign == std::string_view::npos || line[sign] == '#') continue;
    if (line[sign] != '=') break;
    const Offset open = pass_blanks(text, static_cast<Offset>(sign + 1));
    if (open >= text.size() || text[open] != '(') break;
    const ItemWord key = key_after(text, open);
    if (key && !opens_block(key) && !is_setting(key)) break;  // what is left of an entry
    return open;
  }
  return std::nullopt;
}

Offset end_of_stray_text(std::string_view text, Offset at, Offset limit) {
  std::int64_t depth = 0;
  if (is_foreign_comment(text.substr(at, 2))) return std::min(end_of_line(text, at), limit);
  if (const auto end = end_of_long_comment(text.substr(0, limit), at)) return *end;
  if (const auto open = value_on_line(text.substr(0, limit), at))
    return end_of_item(text.substr(0, limit), *open).value_or(limit);
  for (Offset from = at; from < limit;) {
    const Offset end = std::min(end_of_line(text, from), limit);
    const std::string_view line = text.substr(from, end - from);
    depth += std::count(line.begin(), line.end(), '(') - std::count(line.begin(), line.end(), ')');
    if (depth <= 0) return end;
    from = end + 1;
  }
  return limit;
}

bool may_be_entry(std::string_view text, Span span) {
  const bool has_description = holds_description(text.substr(span.begin, span.end - span.begin)) ||
                               key_after(text, pass_blanks(text, span.end)).type == LB_DESCRIPTION;
  return has_description && !is_named_in_comment(text, span.begin);
}

Offset end_of_bare_value(std::string_view text, Offset at) {
  // Values of more lines are not written.
  constexpr int most_lines = 100;
  Offset line = end_of_line(text, at);
  for (int lines = 0; line < text.size(); line = end_of_line(text, line), ++lines) {
    if (lines == most_lines) return line;
    const auto name =
        static_cast<Offset>(std::min(text.find_first_not_of(blanks_of_line, ++line), text.size()));
    const Offset end = end_of_word(text, name);
    const std::size_t equal = text.find_first_not_of(" \t", end);
    if (end > name && equal < text.size() && text[equal] == '=' &&
        !item_word(text.substr(name, end - name)))
      return line;
  }
  return static_cast<Offset>(text.size());
}

}  // namespace kztns
