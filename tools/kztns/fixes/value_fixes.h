// The fixes of values and of single tokens.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

void mend_value(const FaultPlace &place, Diagnosis &diagnosis);

// A number of a key with blanks around it (safe), or a time with a unit after it; no fix for
// a plain one.
Fix fix_of_number(const Key &key, std::string_view text, Span span);

}  // namespace kztns
