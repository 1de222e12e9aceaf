// The fixes of keys that are unknown, or written otherwise than they have to be.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

// Whether a key is written as two words, ADDRESS LIST; if so, it is mended.
bool mend_split_key(const FaultPlace &place, Diagnosis &diagnosis);

void mend_unknown_key(const FaultPlace &place, std::string_view name, Diagnosis &diagnosis);

}  // namespace kztns
