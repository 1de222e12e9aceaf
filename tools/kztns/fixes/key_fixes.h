// The fixes of keys that are unknown, or stand in a block that does not take them.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

// Whether a key is written as two words, ADDRESS LIST; if so, it is mended.
bool mend_split_key(const FaultPlace &place, Diagnosis &diagnosis);

void mend_unknown_key(const FaultPlace &place, std::string_view name, Diagnosis &diagnosis);
void mend_misplaced_key(const FaultPlace &place, Diagnosis &diagnosis);

}  // namespace kztns
