// One walk through a file, with the findings of all rules.
#pragma once

#include "check/check_report.h"
#include "check/check_request.h"
#include "text/names_text.h"

namespace kztns {

// What ends the lookups hides what else would.
CheckReport check_once(const NamesText &text, const CheckRequest &request);

}  // namespace kztns
