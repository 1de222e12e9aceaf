// The fixes of invisible characters.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

// What is told of an invisible character in the token at fault, instead of its diagnosis; absent
// where none is in it, or no fix is known.
std::optional<Diagnosis> diagnose_invisible(const FaultPlace &place);

// Invisible characters of a word between entries: at its ends they become blanks.
Fix fix_of_invisible(std::string_view text, Offset begin, Offset end);

}  // namespace kztns
