// What is left of an entry whose first lines are gone: to the library it is part of the entry
// before it.
#pragma once

#include <optional>
#include <string_view>

#include "text/offset.h"

namespace kztns {

// Whether the first block of an entry is a description with an address and a service, or a list of
// such ones.
bool is_complete(std::string_view text, Offset body);

// In the text of an entry between two places, after its first block: the lines from the next
// parenthesis on, where that block has all that an entry needs and they have an address or a
// service as well.
std::optional<Span> find_left_over(std::string_view text, Offset body, Offset end);

// The blocks from the first one on that stands apart from the one before it, after an empty line,
// and has another service than the entry, whose first block is complete: their name is gone.
std::optional<Span> find_nameless(std::string_view text, Offset body, Offset end);

// An entry between the items of another one, whose text goes on after it.
struct InsertedEntry {
  Span entry;  // from its name to the end of its block
  Offset rest_end;
};

// The entry that begins where the text of another one is cut, whose own text after its "=" ends
// before a place; absent where the other one is not complete without it.
std::optional<InsertedEntry> find_inserted(std::string_view text, Span cut, Span inner);

}  // namespace kztns
