// The fixes of values and of single tokens.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

void mend_value(const FaultPlace &place, Diagnosis &diagnosis);

// Whether a value is a number with a unit of time after it, "90 ms".
bool has_unit(std::string_view value);

}  // namespace kztns
