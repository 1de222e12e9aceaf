// How an entry is laid out: each block on a line of its own, on one line where it holds
// settings only and these fit.
//
//   sales =
//     (DESCRIPTION =
//       (ADDRESS = (HOST = 10.0.1.11)(PORT = 2881))
//       (CONNECT_DATA = (SERVICE_NAME = sales))
//     )
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "format/pieces.h"

namespace kztns {

struct FormatOptions {
  std::string indent = "  ";        // of one level
  bool one_address_a_line = false;  // however long the line gets
};

// Longer lines are broken, where they hold several settings.
constexpr std::size_t widest_line = 100;

// The blanks that belong before each piece of an entry, from its name to its last ")";
// before the name there are none. Empty for pieces that are not
//
//   NAME "=" item...    with  item = "(" KEY "=" (value | item...) ")"
//
// Line ends are line feeds. A blank line between items stays, several become one.
std::vector<std::string> layout_of(std::string_view text, const std::vector<Piece> &pieces,
                                   const FormatOptions &options);

// Line feeds before a piece that begins a line, with one blank line where there are some.
std::string line_feeds_before(const Piece &piece);

}  // namespace kztns
