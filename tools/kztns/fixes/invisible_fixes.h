// The fixes of invisible characters.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

// Whether the fault is an invisible character in a token; if so, it is told as that.
bool mend_invisible(const FaultPlace &place, Diagnosis &diagnosis);

// Invisible characters of a word between entries: at its ends they become blanks.
Fix fix_of_invisible(std::string_view text, Offset begin, Offset end);

}  // namespace kztns
