// Characters that many parts know.
#pragma once

#include <algorithm>
#include <string_view>

namespace kztns {

// What separates tokens, and what does so on a line of its own.
inline constexpr std::string_view blanks = " \t\r\n";
inline constexpr std::string_view blanks_of_line = " \t\r";
// What ends a word that is not in quotes.
inline constexpr std::string_view word_ends = " \t\r\n()=";

inline constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
inline constexpr std::string_view full_width_open = "\xEF\xBC\x88";
inline constexpr std::string_view full_width_close = "\xEF\xBC\x89";
inline constexpr std::string_view full_width_equal = "\xEF\xBC\x9D";
inline constexpr std::string_view soft_hyphen = "\xC2\xAD";
inline constexpr std::string_view zero_width_space = "\xE2\x80\x8B";

// What documents and web pages make of "-".
inline constexpr std::string_view foreign_dashes[] = {"\u2010", "\u2011", "\u2012", "\u2013",
                                                      "\u2014", "\u2015", "\u2212"};

// The first of them in a text; empty for none.
inline std::string_view foreign_dash(std::string_view text) {
  std::size_t first = text.npos;
  for (const std::string_view dash : foreign_dashes) first = std::min(first, text.find(dash));
  return first == text.npos ? std::string_view() : text.substr(first, foreign_dashes[0].size());
}

// Written out: it is asked of every character.
inline bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
inline bool is_sign(char c) { return c == '(' || c == ')' || c == '='; }
// What no one writes in a name or a key.
inline bool ends_name(char c) { return is_blank(c) || is_sign(c) || c == '#' || c == '"'; }
inline bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Whether more than signs is in a text: letters, digits, "_", or what is beyond ASCII.
inline bool has_word_character(std::string_view text) {
  for (const char c : text)
    if (is_digit(c) || c == '_' || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
        (c & 0x80) != 0)
      return true;
  return false;
}

// How many more parentheses are open after a character.
inline int depth_change(char c) { return c == '(' ? 1 : c == ')' ? -1 : 0; }

// Whether nothing but blanks is before a place on its line.
inline bool begins_line(std::string_view text, std::size_t at) {
  const std::size_t before = text.substr(0, at).find_last_not_of(blanks_of_line);
  return before == std::string_view::npos || text[before] == '\n';
}

// Whether nothing but blanks, or a comment, is after it.
inline bool ends_line(std::string_view text, std::size_t at) {
  const std::size_t next = text.find_first_not_of(blanks_of_line, at);
  return next == std::string_view::npos || text[next] == '\n' || text[next] == '#';
}

// Without the blanks around it.
inline std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

}  // namespace kztns
