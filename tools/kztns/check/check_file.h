// Checks a file.
#pragma once

#include "check/check_report.h"
#include "check/check_request.h"
#include "text/names_text.h"

namespace kztns {

// All findings: after each walk the fixes are applied to a copy.
// All findings: after each walk the fixes are applied to a copy.
CheckReport check_file(const NamesText &text, const CheckRequest &request);

}  // namespace kztns
