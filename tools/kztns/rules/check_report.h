// What check has to say about a file: the data that the renderers print.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "rules/fix.h"
#include "rules/rules.h"
#include "scan/verdict.h"
#include "text/names_text.h"

namespace kztns {

// Texts are printable, names and source are as they stand in the file.
struct Finding {
  Rule rule;
  Severity severity;
  Position position;
  Offset at;                // the same place, for sorting
  std::uint32_t character;  // the column in characters instead of bytes
  std::string entry;        // empty for none
  std::string path;         // "DESCRIPTION/CONNECT_DATA", empty for none
  std::string text;
  std::string remedy;
  Fix fix;
  std::string source;  // the line as it is
  std::size_t caret;   // index in it of the place
};

struct ReportEntry {
  std::string name;
  Position position;
  Verdict verdict;
};

struct CheckReport {
  std::string file;
  std::vector<Finding> findings;  // in the order of the file
  // How many findings of a rule are left out, since there are too many.
  std::array<std::size_t, rule_count> left_out = {};
  std::array<std::size_t, verdict_count> verdicts = {};
  std::array<std::size_t, 3> severities = {};  // how many of each, those left out too
  bool lookups_end = false;                    // before the end of the file, or go astray in it
  std::vector<ReportEntry> entries;            // only where the format shows them
};

}  // namespace kztns
