// Faults of the entry x of a names file, and what their fixes make of it.
#pragma once

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "check/apply_fixes.h"
#include "check/check_once.h"
#include "fix_kinds.h"
#include "io/memory_file.h"
#include "lookup/lookup.h"

namespace support {

using kztns::Applicability;

const std::string address = "(ADDRESS=(HOST=h)(PORT=1))";
const std::string data = "(CONNECT_DATA=(SID=s))";

// A fault of the entry x, whose value is before, and the fix of it.
struct Row {
  std::string rule;
  Applicability applicability;
  std::string before;
  std::string after;
};

inline void PrintTo(const Row &row, std::ostream *out) { *out << row.rule << ": " << row.before; }

inline std::string in_description(const std::string &items) {
  return "(DESCRIPTION=" + items + ")";
}

inline Row safe(const std::string &rule, const std::string &before, const std::string &after) {
  return {rule, Applicability::safe, in_description(before), in_description(after)};
}
inline Row unsafe(const std::string &rule, const std::string &before, const std::string &after) {
  return {rule, Applicability::unsafe, in_description(before), in_description(after)};
}
inline Row none(const std::string &rule, const std::string &before) {
  return {rule, Applicability::none, in_description(before), in_description(before)};
}

inline kztns::CheckReport report_of(const std::string &content) {
  const kztns::NamesText text(content);
  kztns::CheckReport report = kztns::check_once(text, {.file = "names.ora"});
  expect_allowed_fixes(report);
  return report;
}

inline bool is_served(const std::string &text) {
  kztns::MemoryFile file;
  EXPECT_TRUE(file.append(text));
  kztns::Tree tree;
  return kztns::look_up("x", {.file = file.path()}, tree).outcome == kztns::Outcome::found;
}

inline const kztns::Finding *finding_of(const kztns::CheckReport &report, const std::string &rule) {
  const auto found = std::find_if(
      report.findings.begin(), report.findings.end(),
      [&](const kztns::Finding &finding) { return kztns::row_of(finding.rule).id == rule; });
  return found == report.findings.end() ? nullptr : &*found;
}

inline std::string edited(const std::string &content, const std::vector<kztns::Edit> &edits) {
  kztns::EditedText text(content);
  text.apply(edits);
  return text.text();
}

}  // namespace support
