// The fixes of faults within an entry.
#pragma once

#include "rules/diagnosis.h"

namespace kztns {

// Gives a diagnosis its fix, where one is known, and the remedy that says what it does.
void add_fix(const Subject &subject, const Trace &trace, std::string_view name,
             Diagnosis &diagnosis);

}  // namespace kztns
