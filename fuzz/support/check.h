// The one way in which a target reports a finding.
#pragma once

#include "kzoci/platform/log.h"

namespace fuzz {

// Prints the message and ends the process when the condition does not hold.
void check(bool holds, const char *format, ...) KZOCI_PRINTF_LIKE(2, 3);

}  // namespace fuzz
