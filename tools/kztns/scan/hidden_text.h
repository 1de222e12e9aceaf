// Parentheses that only a reader sees who does not know comments and quotes, and quotes that are
// not closed.
#pragma once

#include <optional>
#include <string_view>
#include <utility>

#include "text/offset.h"

namespace kztns {

// A parenthesis in a comment or in quotes.
struct HiddenParenthesis {
  Offset at;
  bool in_comment;
};

// The first one of its kind, "(" or ")", between two places; the first place is
// outside of both.
std::optional<HiddenParenthesis> find_hidden(std::string_view text, Offset from, Offset to,
                                             char parenthesis);

// The first double quote after a place of a pair that ends before another place and has items, or
// the end of a line, in it: it was to be closed before. Its partner comes second.
std::optional<std::pair<Offset, Offset>> quotes_around_items(std::string_view text, Offset from,
                                                             Offset to);

// The place of the last double quote that opens in a token; absent when all that
// open are closed.
std::optional<Offset> open_quote(std::string_view text, Offset from, Offset to);

}  // namespace kztns
