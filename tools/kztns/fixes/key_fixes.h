// The fixes of keys that are unknown, or written otherwise than they have to be.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

// A key that is written as two words, ADDRESS LIST.
std::optional<Mending> mend_split_key(const FaultPlace &place);

Mending mend_unknown_key(const FaultPlace &place);

}  // namespace kztns
