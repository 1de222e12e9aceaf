#include "scan/line_prefixes.h"

#include <charconv>
#include <optional>

#include "scan/item_words.h"
#include "text/characters.h"

namespace kztns {
namespace {

// The number at a place; absent for none, and for one that goes on as another word.
std::optional<std::uint32_t> number_at(std::string_view text, Offset at, Offset &end) {
  std::uint32_t number = 0;
  const auto [stop, error] = std::from_chars(text.data() + at, text.data() + text.size(), number);
  end = static_cast<Offset>(stop - text.data());
  if (error != std::errc()) return std::nullopt;
  if (end < text.size() && std::string_view(".:|").find(text[end]) != std::string_view::npos) ++end;
  if (end < text.size() && !is_blank(text[end])) return std::nullopt;
  return number;
}

// Reads the prefixes of lines that follow each other.
class Prefixes {
 public:
  Prefixes(std::string_view text, Offset at)
      : text_(text), quoted_(text.substr(at).starts_with('>')) {}

  // That of a line, if it goes on with those before.
  std::optional<Span> next(Offset at) {
    Offset end = at;
    if (quoted_) {
      while (end < text_.size() && text_[end] == '>') ++end;
      if (end == at || (end < text_.size() && !is_blank(text_[end]))) return std::nullopt;
    } else {
      const auto number = number_at(text_, at, end);
      if (!number || (due_ >= 0 && *number != due_)) return std::nullopt;
      due_ = std::int64_t{*number} + 1;
    }
    const bool blank = end < text_.size() && (text_[end] == ' ' || text_[end] == '\t');
    return Span{at, end + (blank ? 1 : 0)};
  }

  // Whether a line without one goes on with those before: mails wrap lines, and lists number
  // entries.
  bool goes_on(char first) const { return quoted_ ? depth_ > 0 : first == '(' || first == ')'; }

  void pass(std::string_view line) {
    for (const char c : line) depth_ += depth_change(c);
  }

  std::size_t fewest() const { return quoted_ ? 1 : 2; }

 private:
  std::string_view text_;
  bool quoted_;
  std::int64_t due_ = -1;  // the next number; any one at first
  std::int64_t depth_ = 0;
};

bool goes_on_with_word(std::string_view text, Offset at) {
  const std::size_t next = text.find_first_not_of(" \t", at);
  return next == std::string_view::npos || !is_sign(text[next]);
}

}  // namespace

std::vector<Span> line_prefixes(std::string_view text, Offset at) {
  if (!begins_line(text, at)) return {};
  Prefixes prefixes(text, at);
  std::vector<Span> found;
  for (std::size_t line = at; line < text.size();) {
    const std::size_t first = text.find_first_not_of(" \t", line);
    if (first == std::string_view::npos) break;
    const auto prefix = prefixes.next(static_cast<Offset>(first));
    if (!prefix && !prefixes.goes_on(text[first])) break;
    const Offset next_line = end_of_line(text, static_cast<Offset>(first));
    prefixes.pass(text.substr(first, next_line - first));
    line = next_line + std::size_t{1};
    if (!prefix) continue;
    if (found.empty() && !goes_on_with_word(text, prefix->end)) break;
    found.push_back(*prefix);
  }
  if (found.size() < prefixes.fewest()) found.clear();
  return found;
}

std::vector<Span> line_signs(std::string_view text, Offset begin, Offset end) {
  const char sign = text[begin];
  if (sign != '>' && sign != '+') return {};
  std::vector<Span> found;
  for (Offset line = begin; line < end; line = end_of_line(text, line) + 1) {
    const std::size_t first = text.find_first_not_of(blanks_of_line, line);
    if (first == std::string_view::npos) break;
    if (text[first] == '\n') continue;
    if (text[first] != sign) break;
    const char signs[] = {sign, ' '};
    const std::size_t after = text.find_first_not_of({signs, 2}, first);
    const std::size_t last = text.substr(0, after).find_last_of(sign);
    found.push_back({static_cast<Offset>(first), static_cast<Offset>(last + 1)});
  }
  return found;
}

}  // namespace kztns
