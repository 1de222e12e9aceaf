// The rules about the file as a whole: names, and where lookups end.
#pragma once

#include <optional>
#include <vector>

#include "check/findings.h"
#include "check/stop_causes.h"
#include "rules/parentheses.h"
#include "scan/file_scan.h"

namespace kztns {

// reported is the finding about the last entry that already explains what ends the
// lookups; absent when there is none. It is told there which entries are lost. What is in
// one of the closed_early is the rest of an entry whose parentheses match too early: it is
// told there, too.
void apply_file_rules(const FileScan &scan, const std::optional<StopCause> &reported,
                      std::vector<EntryRange> closed_early, Findings &findings);

}  // namespace kztns
