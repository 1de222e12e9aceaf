#include "scan/half_comment.h"

#include <algorithm>

#include "scan/item_text.h"
#include "scan/item_words.h"
#include "scan/left_over.h"
#include "text/characters.h"
#include "text/words.h"

namespace kztns {
namespace {

struct BegunEntry {
  Span name;
  Offset value;  // after the "="
};

// "# NAME =", "# NAME (remark) =" and "# NAME = (": absent for any other comment.
std::optional<BegunEntry> entry_in(std::string_view text, Offset comment, Offset end) {
  const std::string_view line = text.substr(0, end);
  const std::size_t begin = line.find_first_not_of("# \t", comment);
  if (begin == std::string_view::npos) return std::nullopt;
  const std::size_t name_end = std::min(line.find_first_of(" \t=()#\",", begin), line.size());
  if (name_end == begin) return std::nullopt;
  std::size_t equal = line.find_first_not_of(" \t", name_end);
  if (equal != std::string_view::npos && line[equal] == '(') {
    const std::size_t close = line.find(')', equal);
    if (close == std::string_view::npos) return std::nullopt;
    equal = line.find_first_not_of(" \t", close + 1);
  }
  if (equal == std::string_view::npos || line[equal] != '=') return std::nullopt;
  const std::size_t value = line.find_first_not_of(" \t\r", equal + 1);
  const bool is_entry = value == std::string_view::npos || line[value] == '(' || line[value] == '#';
  if (!is_entry || item_word(line.substr(begin, name_end - begin))) return std::nullopt;
  return BegunEntry{{static_cast<Offset>(begin), static_cast<Offset>(name_end)},
                    static_cast<Offset>(equal + 1)};
}

// Where a list of names begins of which one begins at a place, after some words at least.
std::size_t begin_of_list(std::string_view line, std::size_t words, std::size_t name) {
  for (;;) {
    const std::size_t comma = line.find_last_not_of(" \t", name - 1);
    if (line[comma] != ',') return name;
    const std::size_t before = line.find_last_of(" \t", line.find_last_not_of(" \t,", comma)) + 1;
    if (before <= words) return name;
    name = before;
  }
}

// The name of "# Words NAME =" at the end of a comment, or a list of names.
std::optional<Span> name_joined_to_comment(std::string_view text, Offset comment, Offset end) {
  const std::string_view line = text.substr(0, end);
  const std::size_t equal = line.find_last_not_of(" \t\r");
  if (line[equal] != '=' || line.substr(comment, equal - comment).find('=') != line.npos)
    return std::nullopt;
  const std::size_t last = line.find_last_not_of(" \t", equal - 1);
  const std::size_t begin = line.find_last_of(" \t#()\",", last) + 1;
  const std::size_t words = line.find_first_not_of("# \t", comment);
  if (begin > last || words >= begin || !is_blank(line[begin - 1])) return std::nullopt;
  if (item_word(line.substr(begin, last + 1 - begin))) return std::nullopt;
  return Span{static_cast<Offset>(begin_of_list(line, words, begin)),
              static_cast<Offset>(last + 1)};
}

// Whether nothing but blanks comes after a line.
bool is_last_line(std::string_view text, Offset end) {
  return text.find_first_not_of(blanks, end) == std::string_view::npos;
}

// An entry that is begun and not ended in the comments between two tokens.
std::optional<HalfComment> begun_in_comments(std::string_view text, Offset from, Offset to) {
  std::optional<HalfComment> begun;
  text = text.substr(0, to);
  if (text.find('#', from) == std::string_view::npos) return begun;
  std::int64_t depth = 0;
  bool any = false;  // whether it has a parenthesis
  const std::size_t first = text.find('\n', from);
  for (Offset line = first < to ? static_cast<Offset>(first + 1) : to; line < to;
       line = end_of_line(text, line) + 1) {
    const Offset end = std::min(end_of_line(text, line), to);
    std::size_t comment = text.substr(0, end).find('#', line);
    if (comment == std::string_view::npos) continue;
    const auto begin = static_cast<Offset>(comment);
    if (const auto name = name_joined_to_comment(text, begin, end); name && is_last_line(text, end))
      return HalfComment{begin, *name, to, true};
    if (const auto entry = entry_in(text, begin, end)) {
      begun = {begin, entry->name, to, false};
      comment = entry->value;
      depth = 0;
      any = false;
    }
    for (const char c : text.substr(comment, end - comment)) {
      depth += depth_change(c);
      any = any || c == '(';
    }
    if (any && depth <= 0) begun.reset();
  }
  return begun;
}

}  // namespace

std::optional<Span> name_joined_before(std::string_view text, Offset at) {
  const std::size_t last = text.substr(0, at).find_last_not_of(blanks);
  if (last == std::string_view::npos || !begins_line(text, at) || !is_complete(text, at))
    return std::nullopt;
  const std::size_t comment = text.find('#', text.substr(0, last).rfind('\n') + 1);
  if (comment > last) return std::nullopt;
  return name_joined_to_comment(text, static_cast<Offset>(comment), static_cast<Offset>(last + 1));
}

std::optional<Span> commented_name_of_block(std::string_view text, Offset body, Offset end) {
  const Offset open = pass_blanks(text.substr(0, end), body);
  const auto begun = begun_in_comments(text, body, open);
  if (!begun || begun->joined || open >= end) return std::nullopt;
  const std::string_view before = text.substr(body, begun->comment - body);
  std::int64_t depth = 0;
  for (const char c : before) depth += depth_change(c);
  return depth == 0 && before.find('(') != before.npos ? std::optional(begun->name) : std::nullopt;
}

bool is_named_in_comment(std::string_view text, Offset at) {
  if (!begins_line(text, at)) return false;
  for (std::size_t last = text.substr(0, at).find_last_not_of(blanks); last != text.npos;) {
    const std::size_t line = text.substr(0, last + 1).rfind('\n') + 1;
    const auto begin = static_cast<Offset>(text.find_first_not_of(" \t", line));
    if (text[begin] != '#') return false;
    if (entry_in(text, begin, static_cast<Offset>(last + 1))) return true;
    last = text.substr(0, line).find_last_not_of(blanks);
  }
  return false;
}

std::optional<Offset> end_of_rest(std::string_view text, Offset rest) {
  if (rest >= text.size()) return std::nullopt;
  Offset end = text[rest] == '(' ? end_of_items(text, rest).value_or(rest) : rest;
  for (Offset next = pass_blanks(text, end); next < text.size() && text[next] == ')';
       next = pass_blanks(text, end))
    end = next + 1;
  return end > rest && ends_line(text, end) ? std::optional<Offset>(end) : std::nullopt;
}

std::optional<HalfComment> find_half_comment(std::string_view text, Offset body, Offset end) {
  text = text.substr(0, end);
  if (text.find('#', body) == std::string_view::npos) return std::nullopt;
  for (auto at = end_of_first_block(text, body); at;) {
    const Offset next = pass_blanks(text, *at);
    if (next >= text.size() || (text[next] != '(' && text[next] != ')')) return std::nullopt;
    const auto found = begun_in_comments(text, *at, next);
    if (found && (!found->joined || is_complete(text, next))) return found;
    if (text[next] == ')') return std::nullopt;
    at = end_of_item(text, next);
  }
  return std::nullopt;
}

}  // namespace kztns
