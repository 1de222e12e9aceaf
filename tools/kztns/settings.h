// kztns settings: the system variables in force for a names file.
#pragma once

#include <optional>

#include "kzoci/platform/log.h"

namespace kztns {

// Returns an ExitStatus.
int settings(std::optional<log_level> shown);

}  // namespace kztns
