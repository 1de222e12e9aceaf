// kztns why: the story of one lookup.
#pragma once

#include <string>

#include "lookup.h"

namespace kztns {

// Prints the story; returns the ExitStatus that show would.
int why(const std::string &identifier, const LookupOptions &options);

}  // namespace kztns
