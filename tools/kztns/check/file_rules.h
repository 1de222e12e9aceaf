// The rules about the file as a whole: names, and where lookups end.
#pragma once

#include <optional>
#include <vector>

#include "check/findings.h"
#include "check/stop_causes.h"
#include "scan/file_scan.h"

namespace kztns {

// reported is the finding about the last entry that already explains what ends the
// lookups; absent when there is none. It says which entries are lost. What ends
// lookups in one of the told_ranges is already reported with an entry.
void apply_file_rules(const FileScan &scan, const std::optional<Diagnosis> &reported,
                      std::vector<Span> told_ranges, Findings &findings);

}  // namespace kztns
