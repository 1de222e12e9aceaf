// The fixes of parentheses in which no key stands.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

Mending mend_missing_key(const FaultPlace &place);

}  // namespace kztns
