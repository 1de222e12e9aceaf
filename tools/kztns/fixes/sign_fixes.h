// The fixes of signs that other notations have.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

std::string remedy_of_removal(std::string_view text);

// "\" at the end of lines.
std::optional<Mending> mend_continuations(const FaultPlace &place);

// "==" and "=>" for "=", of which the part after the "=" is at a place.
std::optional<Mending> mend_equal_signs(const FaultPlace &place, Offset at);

// Commas and semicolons between items.
std::optional<Mending> mend_separators(const FaultPlace &place);

// "{KEY = ...}"
std::optional<Mending> mend_brackets(const FaultPlace &place);

}  // namespace kztns
