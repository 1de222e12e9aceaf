// Whether the verdicts are what lookups make of the entries, on random files, of
// which most are damaged.
#include <algorithm>
#include <cstdlib>
#include <map>
#include <regex>

#include <gtest/gtest.h>

#include "check/check_file.h"
#include "lookup/lookup.h"
#include "lookup/lookup_report.h"
#include "scan/file_scan.h"
#include "support/fix_kinds.h"
#include "support/parsing.h"
#include "support/random_input.h"
#include "support/random_mutation.h"
#include "text/name_index.h"

namespace {

using namespace std::string_view_literals;

struct Outcome {
  sword status;
  boolean find;
};

Outcome look_up(const std::string &name) {
  kztns::Tree tree;
  boolean find = -1;
  const kztns::AllocationScope scope;
  const sword status = KZCITnsBuild(tree.get(), reinterpret_cast<const OraText *>(name.c_str()),
                                    static_cast<ub4>(name.size()), &find);
  KZCITnsClear(tree.get());
  return {status, find};
}

support::Entry random_entry(support::Random &random, std::size_t number) {
  if (random.one_in(12)) return support::random_reserved_entry(random, "KZCISYSTEMVARIABLES");
  std::string name = support::random_name(random, random.one_in(8) ? number / 2 : number);
  if (random.one_in(10)) name = support::random_special_name(random);
  return support::random_entry(random, name, {}, random.one_in(6) ? 2 : 1);
}

std::string random_file(support::Random &random) {
  std::string text;
  const std::size_t count = random.between(1, 7);
  for (std::size_t i = 0; i < count; ++i) {
    support::Entry entry = random_entry(random, i);
    if (random.one_in(5)) support::mutate_tokens(random, entry.tokens);
    support::Layout layout;
    layout.blanks = !random.one_in(3);
    layout.comments = random.one_in(3);
    layout.parentheses_in_comments = random.one_in(8);
    layout.change_case = random.one_in(2);
    layout.quotes = random.one_in(2);
    text += support::write_tokens(entry.tokens, random, layout) + "\n";
  }
  for (std::size_t changes = random.below(3); changes > 0; --changes)
    support::mutate_text(random, text);
  return text;
}

class Verdicts : public testing::Test {
 protected:
  void SetUp() override { setenv("KZCI_TNS_FILE", (folder_.path() + "/names").c_str(), 1); }
  void TearDown() override { unsetenv("KZCI_TNS_FILE"); }

  void check_file(const std::string &content) {
    SCOPED_TRACE(content);
    folder_.write("names", content);
    const kztns::NamesText text(content);
    const kztns::FileScan scan(text);
    for (const kztns::Entry &entry : scan.entries())
      check_entry(entry, std::string(scan.name(entry)));
    check_report(text);
  }

  std::map<kztns::Verdict, int> counts_;

 private:
  void check_entry(const kztns::Entry &entry, const std::string &name) {
    const Outcome outcome = look_up(name);
    ++counts_[entry.verdict];
    switch (entry.verdict) {
      case kztns::Verdict::ok:
      case kztns::Verdict::reserved:
        EXPECT_EQ(outcome.status, 0) << name;
        EXPECT_EQ(outcome.find, 1) << name;
        break;
      case kztns::Verdict::refused:
        EXPECT_EQ(outcome.status, -1) << name;
        EXPECT_EQ(outcome.find, 0) << name;
        break;
      case kztns::Verdict::unreachable:
        if (!IsDescriptionTns(const_cast<char *>(name.data()), entry.name_length)) {
          EXPECT_EQ(outcome.find, 0) << name;
        }
        break;
      case kztns::Verdict::shadowed:
        break;  // the lookup is that of the first entry
    }
  }

  // How many entries a finding tells to be lost.
  static std::size_t told_as_lost(const kztns::Finding &finding) {
    std::size_t count =
        finding.rule == kztns::Rule::unreachable || finding.rule == kztns::Rule::after_reserved;
    static const std::regex others("the (entry|(\\d+) entries) after it");
    std::smatch match;
    if (std::regex_search(finding.text, match, others))
      count += match[2].matched ? std::stoul(match[2].str()) : 1;
    if (finding.rule == kztns::Rule::comma_list)
      count +=
          1 + static_cast<std::size_t>(std::count(finding.text.begin(), finding.text.end(), ','));
    return count;
  }

  // Whatever is not served is in a finding; nothing that is printed is odd.
  static void check_report(const kztns::NamesText &text) {
    const kztns::CheckReport report =
        kztns::check_file(text, {.file = "names", .with_entries = true});
    const auto entries = [&](kztns::Verdict verdict) {
      return report.verdicts[static_cast<std::size_t>(verdict)];
    };
    support::expect_allowed_fixes(report);
    EXPECT_GE(count(report, kztns::Severity::error), entries(kztns::Verdict::refused));
    std::size_t lost = 0;
    for (const kztns::Finding &finding : report.findings) lost += told_as_lost(finding);
    EXPECT_GE(lost, entries(kztns::Verdict::unreachable));
    for (const kztns::Finding &finding : report.findings) {
      EXPECT_NE(finding.rule, kztns::Rule::unexplained);
      EXPECT_EQ(finding.text.find('\n'), std::string::npos);
      EXPECT_EQ(kztns::visible_json(finding.text), finding.text);
    }
    for (const kztns::ReportEntry &entry : report.entries)
      kztns::report_of_name(entry.name, text.text());
  }

  support::TemporaryFolder folder_;
};

}  // namespace

TEST_F(Verdicts, AreWhatLookupsMakeOfTheEntries) {
  for (std::uint64_t seed = 0; seed < 1000; ++seed) {
    support::Random random(seed);
    check_file(random_file(random));
    if (HasFailure()) FAIL() << "seed " << seed;
  }
  // The files are varied enough.
  for (const kztns::Verdict verdict :
       {kztns::Verdict::ok, kztns::Verdict::refused, kztns::Verdict::unreachable,
        kztns::Verdict::shadowed, kztns::Verdict::reserved})
    EXPECT_GT(counts_[verdict], 20) << kztns::name_of(verdict);
}

TEST_F(Verdicts, AgreeWhereTheBufferEndsAtAnyPlaceOfAnEntry) {
  const std::string entries =
      "first = (DESCRIPTION = (ADDRESS = (HOST = \"a b\")(PORT = 1)) # comment\n"
      " (CONNECT_DATA = (SID = s)))\nkz = (LOG_COUNT = 1)\nsecond = (DESCRIPTION = (KZLB = X))\n";
  for (std::size_t blanks = 900; blanks < 1030; ++blanks)
    check_file(std::string(blanks, ' ') + entries);
}

TEST_F(Verdicts, AgreeForNamesThatAreCutOrHoldAnyByte) {
  const std::string long_name(300, 'n');
  check_file(long_name + " = (DESCRIPTION = (KZLB = ON))\n");
  check_file("\"a b\" = (DESCRIPTION = (KZLB = ON))\n\"\" = (LOG_COUNT = 2)\n");
  check_file(std::string("a\0b = (DESCRIPTION = (KZLB = ON))\na\0c = (DESCRIPTION = (X = 1))\n"sv));
  check_file("\"(DESCRIPTION=\" = (DESCRIPTION = (KZLB = ON))\n");
}
