// What check has to say about all files that it was given.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "check/check_report.h"

namespace kztns {

// A file that could not be read.
struct UnreadFile {
  std::string file;
  std::string fault;  // as a clause about the file
};

struct CheckRun {
  CheckRun() = default;
  CheckRun(CheckReport report) { reports.push_back(std::move(report)); }

  std::vector<CheckReport> reports;
  std::vector<UnreadFile> unread = {};
  bool several = false;  // whether more than one file was asked for, or a folder
};

// How many findings kztns fix mends, and how many more with --unsafe.
struct FixCounts {
  std::size_t safe = 0;
  std::size_t unsafe = 0;
  bool complete = true;  // whether no finding that may have a fix was left out
};

// The sums over all files.
struct RunTotals {
  std::array<std::size_t, verdict_count> verdicts = {};
  SeverityCounts severities = {};
  FixCounts fixes;
};

RunTotals totals_of(const CheckReport &report);
RunTotals totals_of(const CheckRun &run);

// Looks up where the edits of a report's findings begin and end in the text.
void place_edits(const NamesText &text, CheckReport &report);

}  // namespace kztns
