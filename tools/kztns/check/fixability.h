// Which fixes of findings are applied together.
#pragma once

#include "check/check_report.h"

namespace kztns {

// Whether the fix of a finding is applied together with the others of its entry.
bool is_mended_with_entry(const Finding &finding);

// Whether other findings may come of one, whose fix is applied before theirs: of how characters are
// written, for example.
bool is_mended_first(const Finding &finding);

// Sets what the findings' fixes are applied among. An entry is mended as a whole: as long
// as one of its faults has no fix, the fixes of the others would take from it what other
// readers need, and it would be refused all the same. Those of its parentheses are applied:
// other entries gain by them.
void settle_fixes(CheckReport &report);

}  // namespace kztns
