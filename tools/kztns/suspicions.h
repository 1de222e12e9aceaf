// What the library accepts, but hardly anybody means.
#pragma once

#include "findings.h"
#include "trace.h"

namespace kztns {

// Reports what is suspicious in an entry that is built; name is the entry's.
void report_suspicions(const Trace &trace, std::string_view name, Findings &findings);

}  // namespace kztns
