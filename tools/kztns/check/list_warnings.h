// Warnings about the addresses of a list, seen together.
#pragma once

#include "check/findings.h"
#include "trace/build_trace.h"

namespace kztns {

void report_list_warnings(const Trace &trace, std::string_view name, Findings &findings);

}  // namespace kztns
