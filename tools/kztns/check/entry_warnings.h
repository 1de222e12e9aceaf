// Warnings: what the library accepts, but is probably not intended.
#pragma once

#include "check/findings.h"
#include "trace/build_trace.h"

namespace kztns {

// Reports the warnings about an entry that is built; name is the entry's. with_absent is false
// for a copy from which items were removed: what it lacks is no finding.
void report_entry_warnings(const Trace &trace, std::string_view name, Findings &findings,
                           bool with_absent = true);

}  // namespace kztns
