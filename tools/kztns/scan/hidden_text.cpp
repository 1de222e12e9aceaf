#include "scan/hidden_text.h"

#include <algorithm>

#include "text/characters.h"
#include "text/words.h"

namespace kztns {

std::optional<HiddenParenthesis> find_hidden(std::string_view text, Offset from, Offset to,
                                             char parenthesis) {
  text = text.substr(0, to);
  for (Offset at = from; at < text.size();) {
    if (is_blank(text[at]) || is_sign(text[at])) {
      ++at;
      continue;
    }
    // In a word parentheses stand in quotes only.
    const bool in_comment = text[at] == '#';
    const Offset end = in_comment ? end_of_comment(text, at) : end_of_whole_word(text, at).at;
    const std::size_t hidden = text.substr(0, end).find(parenthesis, at);
    if (hidden != text.npos) return HiddenParenthesis{static_cast<Offset>(hidden), in_comment};
    at = end;
  }
  return std::nullopt;
}

std::optional<std::pair<Offset, Offset>> quotes_around_items(std::string_view text, Offset from,
                                                             Offset to) {
  const auto has_items = [](std::string_view quoted) {
    const std::string_view rest = quoted.substr(std::min(quoted.find(')'), quoted.size()));
    return quoted.find('\n') != quoted.npos ||
           (rest.find('(') != rest.npos && rest.find('=') != rest.npos);
  };
  text = text.substr(0, to);
  for (std::size_t open = text.find('"', from); open != text.npos;) {
    const std::size_t close = text.find('"', open + 1);
    if (close == text.npos) return std::nullopt;
    // After a quote that closes, a blank or a sign follows.
    const bool closes = close + 1 >= text.size() || ends_name(text[close + 1]);
    if (!closes && has_items(text.substr(open, close - open)))
      return std::pair(static_cast<Offset>(open), static_cast<Offset>(close));
    open = text.find('"', close + 1);
  }
  return std::nullopt;
}

std::optional<Offset> open_quote(std::string_view text, Offset from, Offset to) {
  std::optional<Offset> open;
  for (Offset at = from; at < to; ++at) {
    if (text[at] != '"') continue;
    if (open)
      open.reset();
    else
      open = at;
  }
  return open;
}

}  // namespace kztns
