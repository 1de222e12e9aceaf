// What blanks separate in a names file: tokens and comments, in their order.
#pragma once

#include <string_view>
#include <vector>

#include "text/offset.h"

namespace kztns {

enum class PieceKind : unsigned char { open, close, equal, word, comment };

struct Piece {
  PieceKind kind;
  Span span;                 // of a comment, without the blanks at its end
  std::uint32_t line_feeds;  // between it and what is before it
};

// The tokens and comments that begin between two places, of which the first is outside of
// both. A word may end after the second place.
std::vector<Piece> pieces_of(std::string_view text, Offset from, Offset to);

}  // namespace kztns
