// What is left of an entry whose first lines are gone: to the library it is part of the entry
// before it.
#pragma once

#include <optional>
#include <string_view>

#include "trace/build_trace.h"

namespace kztns {

// Whether the first block of an entry is a description with an address and a service.
bool is_complete(std::string_view text, Offset body);

// In the text of an entry between two places, after its first block: the lines from the next
// parenthesis on, where that block has all that an entry needs and they have a service as well.
std::optional<Span> find_left_over(std::string_view text, Offset body, Offset end);

}  // namespace kztns
