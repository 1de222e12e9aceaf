// What is wrong with the names of a file's entries, each by itself and seen together.
#pragma once

#include "check/findings.h"
#include "fixes/moved_entries.h"

namespace kztns {

void report_names(const FileScan &scan, NameLists &lists, Findings &findings);

}  // namespace kztns
