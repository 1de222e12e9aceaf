// Names files as check tells of them, and as the fixes leave them.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "check/apply_fixes.h"
#include "check/check_file.h"
#include "check/check_once.h"
#include "fix_kinds.h"
#include "lookup/lookup.h"
#include "names_entry.h"
#include "parsing.h"
#include "report/check_text.h"
#include "safe_edits.h"

namespace support {

inline const std::string block =
    "(DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))";

// "PLACE RULE: TEXT", a line a finding.
inline std::string told(const std::string &content) {
  const kztns::NamesText text(content);
  std::string lines;
  const kztns::CheckReport report = kztns::check_file(text, {.file = "names"});
  expect_allowed_fixes(report);
  for (const kztns::Finding &finding : report.findings)
    lines += to_string(finding.position) + " " + std::string(row_of(finding.rule).id) + ": " +
             finding.text + "\n";
  return lines;
}

// What check says to do, a line a finding.
inline std::string remedies(const std::string &content) {
  const kztns::NamesText text(content);
  std::string lines;
  for (const kztns::Finding &finding : kztns::check_file(text, {.file = "names"}).findings)
    lines += finding.remedy + "\n";
  return lines;
}

inline std::size_t count_of(const std::string &lines, const std::string &part) {
  std::size_t count = 0;
  for (std::size_t at = lines.find(part); at != std::string::npos; at = lines.find(part, at + 1))
    ++count;
  return count;
}

// The text with the fixes of one check.
inline std::string fixed(const std::string &content, bool with_unsafe) {
  const kztns::NamesText text(content);
  kztns::EditedText edited(content);
  const auto findings = kztns::check_once(text, {.file = "names"}).findings;
  edited.apply(with_unsafe ? kztns::edits_of(findings) : safe_edits_of(findings));
  return edited.text();
}

inline std::string safely_fixed(const std::string &content) { return fixed(content, false); }
inline std::string unsafely_fixed(const std::string &content) { return fixed(content, true); }

class FileRules : public testing::Test {
 protected:
  void SetUp() override { setenv("KZCI_TNS_FILE", (folder_.path() + "/names").c_str(), 1); }
  void TearDown() override { unsetenv("KZCI_TNS_FILE"); }

  // Whether lookups in a file find all of some names.
  void expect_served(const std::string &content, const std::vector<std::string> &names) {
    folder_.write("names", content);
    for (const std::string &name : names) {
      kztns::Tree tree;
      boolean find = 0;
      EXPECT_EQ(KZCITnsBuild(tree.get(), reinterpret_cast<const OraText *>(name.c_str()),
                             static_cast<ub4>(name.size()), &find),
                0)
          << name << " in\n"
          << content;
      EXPECT_EQ(find, 1) << name << " in\n" << content;
      KZCITnsClear(tree.get());
    }
  }

 private:
  TemporaryFolder folder_;
};

}  // namespace support
