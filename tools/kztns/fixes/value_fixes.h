// The fixes of values and of single tokens.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

Mending mend_value(const FaultPlace &place);

}  // namespace kztns
