// A lookup as a program makes it, in a text instead of a file, with the environment left
// alone: other threads may be reading it.
#pragma once

#include <string>

#include "lookup/lookup.h"

namespace kztns {

// Of a name in a names file's text, or of a literal descriptor. Throws std::bad_alloc.
Outcome look_up_in_text(const std::string &identifier, const std::string &text);

}  // namespace kztns
