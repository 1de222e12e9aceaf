// Checks a file: its scan, with the findings of all rules.
#pragma once

#include <functional>

#include "check/findings.h"
#include "scan/file_scan.h"

namespace kztns {

struct CheckRequest {
  std::string file;                                       // as the report calls it
  bool with_entries = false;                              // whether the report lists the entries
  std::size_t most_of_a_rule = Findings::most_of_a_rule;  // findings; more are counted only
  std::function<void(Offset)> progress = [](Offset) {};
  std::function<void(const EntryView &)> visit = {};  // called for every entry, when it is there
};

// One walk through the file: what ends the lookups hides what else would.
CheckReport check_once(const NamesText &text, const CheckRequest &request);

// All findings: after each walk the fixes are applied to a copy.
CheckReport check_file(const NamesText &text, const CheckRequest &request);

}  // namespace kztns
