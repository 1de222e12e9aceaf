// Which fixes the findings of a rule may have, and which of them kztns fix applies.
#pragma once

#include "rules/check_report.h"

namespace kztns {

// Which fixes the findings of a rule may have.
enum class FixKinds { none, safe, unsafe, both };
FixKinds fix_kinds_of(Rule rule);

// Whether a rule is about what stands in one entry; all others but those about comments
// tell what keeps lookups from entries.
bool is_of_entry(Rule rule);

// Whether a rule is about parentheses, by which lookups pass over the entry.
bool is_of_parentheses(Rule rule);

// Sets what the findings' fixes are applied among. An entry is mended as a whole: as long
// as one of its faults has no fix, the fixes of the others would take from it what other
// readers need, and it would be refused all the same. Those of its parentheses are applied:
// other entries gain by them.
void settle_fixes(CheckReport &report);

}  // namespace kztns
