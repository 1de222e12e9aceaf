// The fixes of items in a block that does not take them: each goes to the one that does.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

Mending mend_misplaced_key(const FaultPlace &place);

// "(PROTOCOL = TCP (HOST = h))": the items in the value of another one were to come after it.
Mending mend_late_close(const FaultPlace &place);

}  // namespace kztns
