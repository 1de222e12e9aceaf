// kztns settings: the system variables in force for a names file.
#pragma once

#include "lookup/lookup.h"

namespace kztns {

// Returns an ExitStatus.
int settings(const LookupOptions &options);

}  // namespace kztns
