// Warnings about what the blocks of an entry lack.
#pragma once

#include "check/findings.h"
#include "trace/build_trace.h"

namespace kztns {

void report_absent_items(const Trace &trace, std::string_view name, Findings &findings);

}  // namespace kztns
