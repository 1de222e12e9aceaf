#include "text/words.h"

#include <algorithm>

#include "text/characters.h"

namespace kztns {

Offset end_of_comment(std::string_view text, Offset at) {
  const std::string_view line = text.substr(0, end_of_line(text, at));
  return static_cast<Offset>(std::min(line.find('\0', at), line.size()));
}

Offset pass_blanks(std::string_view text, Offset from) {
  Offset at = from;
  while (at < text.size()) {
    if (text[at] == '#')
      at = end_of_comment(text, at);
    else if (is_blank(text[at]))
      ++at;
    else
      break;
  }
  return at;
}

WordEnd end_of_whole_word(std::string_view text, Offset begin) {
  bool in_quotes = false;
  Offset at = begin;
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (c == '"') in_quotes = !in_quotes;
    if (!in_quotes && (is_blank(c) || is_sign(c))) break;
  }
  return {at, !in_quotes};
}

Offset end_of_word(std::string_view text, Offset begin) {
  return end_of_whole_word(text.substr(0, begin + std::size_t{longest_token}), begin).at;
}

}  // namespace kztns
