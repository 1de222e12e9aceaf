// The fixes of text that stands within an entry where none belongs: comments of other readers,
// lines of a diff, names that stand twice, items without parentheses, signs, words, other brackets.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

std::optional<Mending> mend_stray_text(const FaultPlace &place);

}  // namespace kztns
