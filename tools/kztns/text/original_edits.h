// What became of a text, as edits of the text before.
#pragma once

#include <vector>

#include "text/edited_text.h"

namespace kztns {

// Sorted edits of the text before, of that size, which make of it what it is now.
std::vector<Edit> original_edits(const EditedText &edited, Offset size_before);

}  // namespace kztns
