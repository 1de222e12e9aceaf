// Generated files of other readers: every fix that is offered helps, and what is served
// stays what it was.
#include <map>
#include <set>
#include <utility>

#include <gtest/gtest.h>

#include "check/apply_fixes.h"
#include "check/check_once.h"
#include "support/fix_kinds.h"
#include "support/foreign_lookups.h"
#include "support/safe_edits.h"

using support::for_foreign_files;
using support::trees_found;

namespace {

std::vector<kztns::Finding> findings_of(const std::string &content) {
  const kztns::NamesText text(content);
  kztns::CheckReport report = kztns::check_once(text, {.file = "names.ora"});
  support::expect_allowed_fixes(report);
  return std::move(report.findings);
}

std::string edited(const std::string &content, const std::vector<kztns::Edit> &edits) {
  kztns::EditedText text(content);
  text.apply(edits);
  return text.text();
}

// What fixes leave when they are applied until there is nothing to mend.
std::string mended(std::string text, bool with_unsafe) {
  constexpr int most_rounds = 20;
  for (int round = 0; round < most_rounds; ++round) {
    const std::vector<kztns::Finding> findings = findings_of(text);
    const std::vector<kztns::Edit> edits =
        with_unsafe ? kztns::edits_of(findings) : support::safe_edits_of(findings);
    if (edits.empty()) return text;
    text = edited(text, edits);
  }
  ADD_FAILURE() << "still mending after " << most_rounds << " rounds:\n" << text;
  return text;
}

// The findings of one entry that have fixes.
std::map<std::string, std::vector<kztns::Finding>> by_entry(
    const std::vector<kztns::Finding> &findings) {
  std::map<std::string, std::vector<kztns::Finding>> entries;
  for (const kztns::Finding &finding : findings)
    if (finding.fix && !finding.entry.empty()) entries[finding.entry].push_back(finding);
  return entries;
}

}  // namespace

TEST(ForeignFiles, EveryFixHelpsWithTheOthersOfItsEntry) {
  std::size_t fixes = 0;
  for_foreign_files([&](const support::ForeignFile &file) {
    for (const auto &[entry, findings] : by_entry(findings_of(file.text))) {
      std::vector<bool> applied;
      kztns::EditedText text(file.text);
      text.apply(kztns::edits_of(findings, &applied));
      std::set<std::pair<kztns::Rule, kztns::Offset>> left;
      for (const kztns::Finding &finding : findings_of(text.text()))
        left.emplace(finding.rule, text.origin(finding.at));
      for (std::size_t i = 0; i < findings.size(); ++i) {
        if (!applied[i]) continue;
        ++fixes;
        EXPECT_EQ(left.count({findings[i].rule, findings[i].at}), 0u)
            << to_string(findings[i].position) << ": " << findings[i].text << "\n"
            << text.text();
      }
    }
  });
  EXPECT_GT(fixes, support::foreign_file_count);
}

TEST(ForeignFiles, ServedNamesKeepTheirTrees) {
  std::size_t before = 0;
  std::size_t safe = 0;
  std::size_t with_unsafe = 0;
  for_foreign_files([&](const support::ForeignFile &file) {
    const auto trees = trees_found(file.names, file.text);
    const auto trees_safe = trees_found(file.names, mended(file.text, false));
    const auto trees_unsafe = trees_found(file.names, mended(file.text, true));
    for (const auto &[name, tree] : trees) {
      EXPECT_EQ(trees_safe.count(name) ? trees_safe.at(name) : "lost", tree) << name;
      EXPECT_EQ(trees_unsafe.count(name) ? trees_unsafe.at(name) : "lost", tree) << name;
    }
    before += trees.size();
    safe += trees_safe.size();
    with_unsafe += trees_unsafe.size();
  });
  EXPECT_LT(before, safe);
  EXPECT_LT(safe, with_unsafe);
  RecordProperty("served_before", std::to_string(before));
  RecordProperty("served_safe", std::to_string(safe));
  RecordProperty("served_unsafe", std::to_string(with_unsafe));
}

TEST(ForeignFiles, AFileWithoutFaultsStaysAsItIs) {
  for_foreign_files([&](const support::ForeignFile &file) {
    const std::string once = mended(file.text, true);
    EXPECT_EQ(mended(once, true), once);
    if (findings_of(file.text).empty()) {
      EXPECT_EQ(once, file.text);
    }
  });
}

TEST(ForeignFiles, FixesAreOfTheKindsThatRulesSay) {
  support::for_foreign_files([](const support::ForeignFile &file) {
    for (const kztns::Finding &finding : findings_of(file.text)) {
      if (!finding.fix) continue;
      const bool safe = finding.fix.applicability == kztns::Applicability::safe;
      const kztns::FixKinds kinds = row_of(finding.rule).fixes;
      EXPECT_TRUE(kinds == kztns::FixKinds::both ||
                  kinds == (safe ? kztns::FixKinds::safe : kztns::FixKinds::unsafe))
          << row_of(finding.rule).id;
    }
  });
}
