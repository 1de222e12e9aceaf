// Where items end, told by their parentheses alone.
#pragma once

#include <optional>
#include <string_view>

#include "trace/build_trace.h"

namespace kztns {

// After the ")" that closes the "(" at open, quotes and comments observed; absent when
// there is none.
std::optional<Offset> end_of_item(std::string_view text, Offset open);

// After the ")" that closes the first "(" from a place on when all parentheses count, as they
// do for a lookup of another name; after a limit when it is not before that.
Offset counted_end(std::string_view text, Offset from, Offset limit);

// What to remove so that the item that begins at open is gone: the item or, when the
// block around it has no other one, that block, and the blanks before it on its line.
// Absent when nothing would be left.
std::optional<Span> item_to_remove(std::string_view text, Offset open);

}  // namespace kztns
