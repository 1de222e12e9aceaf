// What check has to say about a file: the data that the renderers print.
#pragma once

#include <array>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "rules/fix.h"
#include "rules/rules.h"
#include "scan/verdict.h"
#include "text/names_text.h"

namespace kztns {

// Where an edit begins and ends.
struct EditPlace {
  Position begin;
  Position end;
  std::uint32_t begin_character;  // the columns in characters instead of bytes
  std::uint32_t end_character;
};

// Texts are printable, names and source are as they stand in the file.
struct Finding {
  Rule rule;
  Severity severity;
  Position position;
  Offset at;                // the same place, for sorting
  std::uint32_t character;  // the column in characters instead of bytes
  std::string entry;        // empty for none
  bool in_entry;            // a fault in its text, which is refused for it if it is an error
  std::string path;         // "DESCRIPTION/CONNECT_DATA", empty for none
  std::string text;
  std::string remedy;
  Fix fix;
  // What kztns fix applies the fix among: none where the entry would be refused all the same.
  Applicability applied_among;
  std::vector<EditPlace> places;       // of the edits; only where the format shows them
  std::string source;                  // the line as it is
  std::size_t caret;                   // index in it of the place
  std::optional<Offset> related = {};  // a place that the text speaks of
};

struct ReportEntry {
  std::string name;
  Position position;
  Verdict verdict;
};

constexpr std::size_t severity_count = static_cast<std::size_t>(Severity::note) + 1;
using SeverityCounts = std::array<std::size_t, severity_count>;

struct CheckReport {
  std::string file;
  std::vector<Finding> findings;  // in the order of the file
  // How many findings of a rule are left out, since there are too many, by severity.
  std::array<SeverityCounts, rule_count> left_out = {};
  std::array<std::size_t, verdict_count> verdicts = {};
  bool lookups_end = false;          // before the end of the file, or go astray in it
  bool splits = false;               // whether a fix makes entries that are not checked yet
  std::vector<ReportEntry> entries;  // only where the format shows them
  std::vector<Offset> starts;        // of all entries, only where there are findings
};

// How many findings there are of each severity, those left out too.
SeverityCounts severities_of(const CheckReport &report);

inline std::size_t count(const CheckReport &report, Severity severity) {
  return severities_of(report)[static_cast<std::size_t>(severity)];
}

// How many findings of the rule are left out.
inline std::size_t left_out(const CheckReport &report, Rule rule) {
  const SeverityCounts &counts = report.left_out[static_cast<std::size_t>(rule)];
  return std::accumulate(counts.begin(), counts.end(), std::size_t{0});
}

}  // namespace kztns
