// The fixes of items in a block that does not take them: each goes to the one that does.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

Mending mend_misplaced_key(const FaultPlace &place);

}  // namespace kztns
