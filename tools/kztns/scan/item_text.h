// Where items end, told by their parentheses alone.
#pragma once

#include <optional>
#include <string_view>

#include "scan/item_words.h"
#include "text/offset.h"

namespace kztns {

// After the ")" that closes the "(" at a place, quotes and comments observed; absent where one of
// them is not there.
std::optional<Offset> end_of_item(std::string_view text, Offset open);

// The same of the first block of an entry, whose "=" is before a place.
std::optional<Offset> end_of_first_block(std::string_view text, Offset body);

// After all items of an entry's value, "(...) (...)"; absent when one is not closed
// before the end of the text.
std::optional<Offset> end_of_items(std::string_view text, Offset body);

// After the ")" that closes the first "(" from a place on when all parentheses count, as they
// do for a lookup of another name; limit + 1 when it is not before a limit.
Offset counted_end(std::string_view text, Offset from, Offset limit);

// The key of the item that begins at a place; none where something else begins.
ItemWord key_after(std::string_view text, Offset open);

// Whether a DESCRIPTION block begins in a text, in quotes too.
bool holds_description(std::string_view text);

// What to remove so that the item that begins at open is gone: the item or, when the
// block around it has no other one, that block, and the blanks before it on its line.
// Absent when nothing would be left.
std::optional<Span> item_to_remove(std::string_view text, Offset open);

}  // namespace kztns
