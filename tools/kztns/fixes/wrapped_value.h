// Values that a line end splits, as terminals and mails wrap what is copied out of them.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

// "(HOST = db1.exam" with "ple.com)" on the next line: joined, where that may be what is meant.
// Absent for a value of another form.
std::optional<Mending> mend_wrapped_value(const FaultPlace &place);

}  // namespace kztns
