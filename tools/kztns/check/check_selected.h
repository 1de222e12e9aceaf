// Checks a file, and leaves out what is ignored or disabled.
#pragma once

#include "check/check_report.h"
#include "check/check_request.h"

namespace kztns {

// The findings of check_file without those of the disabled rules, and without those that
// comments of the file ignore.
CheckReport check_selected(const NamesText &text, const CheckRequest &request,
                           const RuleSet &disabled);

// The same of check_once.
CheckReport check_selected_once(const NamesText &text, const CheckRequest &request,
                                const RuleSet &disabled);

}  // namespace kztns
