// The fixes of text that stands within an entry where none belongs: comments of other readers,
// signs, words, other brackets.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

// Whether the fault is such text; if so, it gets its fix and the remedy that says what it does.
bool mend_stray_text(const FaultPlace &place, Diagnosis &diagnosis);

}  // namespace kztns
