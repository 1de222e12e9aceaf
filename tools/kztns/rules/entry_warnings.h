// What the library accepts, but hardly anybody means.
#pragma once

#include "rules/findings.h"
#include "trace/build_trace.h"

namespace kztns {

// Reports what is suspicious in an entry that is built; name is the entry's.
void report_entry_warnings(const Trace &trace, std::string_view name, Findings &findings);

}  // namespace kztns
