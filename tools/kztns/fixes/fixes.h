// The fixes of faults within an entry.
#pragma once

#include "rules/diagnosis.h"

namespace kztns {

// Explains the trace's fault as diagnose does, with its fix, where one is known, and the remedy
// that says what it does.
Diagnosis diagnose_with_fix(const Subject &subject, const Trace &trace, std::string_view name);

}  // namespace kztns
