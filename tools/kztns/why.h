// kztns why: the story of one lookup.
#pragma once

#include <optional>
#include <string>

#include "kzoci/platform/log.h"

namespace kztns {

// Prints the story; returns the ExitStatus that show would. file_given tells that
// the names file was named on the command line.
int why(const std::string &identifier, bool file_given, std::optional<log_level> shown);

}  // namespace kztns
