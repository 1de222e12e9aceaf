// The fixes of values and of single tokens.
#pragma once

#include "rules/fault_place.h"

namespace kztns {

// Whether the fault is an invisible character in a token; if so, it is told as that.
bool mend_invisible(const FaultPlace &place, Diagnosis &diagnosis);

void mend_value(const FaultPlace &place, Diagnosis &diagnosis);

}  // namespace kztns
