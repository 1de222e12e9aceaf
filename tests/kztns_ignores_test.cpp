// Comments of a names file that keep findings from being reported, and rules that are
// disabled.
#include <gtest/gtest.h>

#include "check/check_selected.h"

namespace {

using kztns::Rule;
using kztns::RuleSet;

kztns::CheckReport report_of(const std::string &content, const RuleSet &disabled = {}) {
  const kztns::NamesText text(content);
  kztns::CheckRequest request;
  request.file = "names.ora";
  return kztns::check_selected(text, request, disabled);
}

// The findings as "1:3 unknown-key", one a line.
std::string found(const kztns::CheckReport &report) {
  std::string text;
  for (const kztns::Finding &finding : report.findings)
    text.append(to_string(finding.position)).append(" ").append(row_of(finding.rule).id) += "\n";
  return text;
}

std::string found_in(const std::string &content) { return found(report_of(content)); }

std::string entry(const std::string &name, const std::string &item) {
  return name + " = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n  (CONNECT_DATA = " + item +
         "(SID = s)))\n";
}

RuleSet only(Rule rule) { return RuleSet().set(static_cast<std::size_t>(rule)); }

}  // namespace

TEST(Ignores, OnTheLineOfTheFinding) {
  EXPECT_EQ(found_in("a = x # kztns: ignore no-block\n"), "");
  EXPECT_EQ(found_in("a = x # kztns:ignore no-block\n"), "");
  EXPECT_EQ(found_in("a = x #\tkztns: ignore\tno-block\r\n"), "");
  EXPECT_EQ(found_in("a = x # kztns: ignore no-port\n"), "1:5 no-block\n");
  EXPECT_EQ(found_in(entry("a", "(SERVER = D)") + "# kztns: ignore unknown-key\n"),
            "2:20 unknown-key\n");
}

TEST(Ignores, OfSeveralRules) {
  const std::string bad = "a = (DESCRIPTION = (ADDRESS = (HOST = h))";
  EXPECT_EQ(found_in(bad + "(SERVER = 1)) # kztns: ignore no-port, unknown-key,no-service\n"), "");
  EXPECT_EQ(found_in(bad + ") # kztns: ignore no-service no-port\n"), "");
}

TEST(Ignores, MayHaveAReason) {
  EXPECT_EQ(found_in("a = x # kztns: ignore no-block -- for the old clients\n"), "");
}

TEST(Ignores, AboveAnEntryHoldForIt) {
  const std::string bad = entry("a", "(SERVER = D)");
  EXPECT_EQ(found_in("# kztns: ignore unknown-key\n" + bad), "");
  EXPECT_EQ(found_in("  # kztns: ignore unknown-key\n# why\n" + bad), "");
  EXPECT_EQ(found_in("# kztns: ignore unknown-key\n\n" + bad), "4:20 unknown-key\n");
  EXPECT_EQ(found_in("# kztns: ignore unknown-key\n" + bad + entry("b", "(SERVER = D)")),
            "5:20 unknown-key\n");
  EXPECT_EQ(found_in("# kztns: ignore no-port\n# kztns: ignore unknown-key\n" + bad), "");
  // After something else on its line it holds for the line alone.
  EXPECT_EQ(
      found_in("c = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))"
               " # kztns: ignore unknown-key\n" +
               bad),
      "3:20 unknown-key\n");
}

TEST(Ignores, HoldForTheEntryThatAFindingNames) {
  const std::string open = "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n";
  const std::string next = entry("b", "");
  ASSERT_EQ(found_in(open + next), "1:5 unclosed-block\n1:6 no-service\n");
  EXPECT_EQ(found_in("# kztns: ignore unclosed-block\n" + open + next), "2:6 no-service\n");
  EXPECT_EQ(found_in(open + "# kztns: ignore unclosed-block\n" + next),
            "1:5 unclosed-block\n1:6 no-service\n");
}

TEST(Ignores, OfADuplicateHoldForTheOneBelow) {
  const std::string twice = entry("a", "") + "# kztns: ignore duplicate\n" + entry("a", "");
  EXPECT_EQ(found_in(twice), "");
  EXPECT_EQ(found_in(twice + entry("a", "")), "6:1 duplicate\n");
}

TEST(Ignores, OfAListOfNamesHoldForAllOfIt) {
  EXPECT_EQ(found_in("# kztns: ignore comma-list\nx, y = (DESCRIPTION = (ADDRESS = (HOST = h)"
                     "(PORT = 1))(CONNECT_DATA = (SID = s)))\n"),
            "");
}

TEST(Ignores, OnlyWhereACommentCanBegin) {
  EXPECT_EQ(found_in("a#kztns: ignore no-block\n = x\n"), "1:1 stray-text\n2:2 stray-text\n");
  EXPECT_EQ(found_in("a = x # see kztns: ignore no-block\n"), "1:5 no-block\n");
  EXPECT_EQ(found_in("a = x # kztns: ignores no-block\n"), "1:5 no-block\n");
  EXPECT_EQ(found_in("a = x # kztns: fix no-block\n"), "1:5 no-block\n");
}

TEST(Ignores, OfUnknownRulesAreAWarning) {
  const kztns::CheckReport report =
      report_of("# kztns: ignore no-prot, frobnicate\n" + entry("a", ""));
  ASSERT_EQ(found(report), "1:17 unknown-rule\n1:26 unknown-rule\n");
  EXPECT_EQ(report.findings[0].severity, kztns::Severity::warning);
  EXPECT_EQ(report.findings[0].text, "unknown rule no-prot in a comment");
  EXPECT_EQ(report.findings[0].remedy, "did you mean no-port?");
  EXPECT_EQ(report.findings[1].text, "unknown rule frobnicate in a comment");
  EXPECT_EQ(report.findings[1].remedy, "write a rule that kztns check --rules lists");
  EXPECT_EQ(count(report, kztns::Severity::warning), 2u);
}

TEST(Ignores, WithoutARuleAreAWarning) {
  const kztns::CheckReport report = report_of("a = x # kztns: ignore -- all\n");
  ASSERT_EQ(found(report), "1:5 no-block\n1:16 unknown-rule\n");
  EXPECT_EQ(report.findings[1].text, "this comment names no rule to ignore");
  EXPECT_EQ(found_in("# kztns: ignore\n"), "1:10 unknown-rule\n");
}

TEST(Ignores, ThatFindNothingToIgnoreAreNotReported) {
  EXPECT_EQ(found_in("# kztns: ignore unknown-key\n" + entry("a", "")), "");
}

TEST(Ignores, AreNotCountedTowardsTheLimit) {
  std::string content;
  for (int i = 0; i < 1500; ++i)
    content += "n" + std::to_string(i) + " = (DESCRIPTION = (SERVER = 1))" +
               (i < 900 ? " # kztns: ignore unknown-key\n" : "\n");
  const kztns::CheckReport report = report_of(content);
  EXPECT_EQ(report.findings.size(), 600u);
  EXPECT_EQ(kztns::left_out(report, Rule::unknown_key), 0u);
  EXPECT_EQ(count(report, kztns::Severity::error), 600u);
  EXPECT_TRUE(report.entries.empty());
  EXPECT_EQ(report.verdicts[static_cast<std::size_t>(kztns::Verdict::refused)], 1500u);
}

TEST(Ignores, LeaveTheLimitAsItIs) {
  std::string content = "# kztns: ignore no-port\n";
  for (int i = 0; i < 1500; ++i)
    content += "n" + std::to_string(i) + " = (DESCRIPTION = (SERVER = 1))\n";
  const kztns::CheckReport report = report_of(content);
  EXPECT_EQ(report.findings.size(), 1000u);
  EXPECT_EQ(kztns::left_out(report, Rule::unknown_key), 500u);
  EXPECT_EQ(count(report, kztns::Severity::error), 1500u);
}

TEST(DisabledRules, AreNeitherReportedNorCounted) {
  std::string content = "x = y\n";
  EXPECT_EQ(found(report_of(content, only(Rule::no_block))), "");
  EXPECT_EQ(count(report_of(content, only(Rule::no_block)), kztns::Severity::error), 0u);
  content.clear();
  for (int i = 0; i < 1500; ++i)
    content += "n" + std::to_string(i) + " = (DESCRIPTION = (SERVER = 1))\n";
  const kztns::CheckReport report = report_of(content, only(Rule::unknown_key));
  EXPECT_EQ(found(report), "");
  EXPECT_EQ(kztns::left_out(report, Rule::unknown_key), 0u);
  EXPECT_EQ(count(report, kztns::Severity::error), 0u);
}

TEST(Ignores, ReadCommentsAtBothEndsOfAFile) {
  EXPECT_EQ(found_in("kztns: ignore stray-text\n"), "1:1 stray-text\n");
  EXPECT_EQ(found_in("# kztns:"), "");
  EXPECT_EQ(found_in("# kztns: ignore no-port"), "");
}

TEST(Ignores, LeaveWhatIsAboutNoEntry) {
  const std::string comment = "# kztns: ignore no-port\n";
  EXPECT_EQ(found_in("stray\n" + entry("a", "") + comment), "1:1 stray-text\n");
  EXPECT_EQ(found_in(comment + entry("a", "") + "b = x\nc = y\n"), "4:5 no-block\n5:5 no-block\n");
}

TEST(Ignores, TellNoUnknownRulesWhereThatIsDisabled) {
  EXPECT_EQ(found_in("# kztns: ignore nonsense\n"), "1:17 unknown-rule\n");
  EXPECT_EQ(found(report_of("# kztns: ignore nonsense\n", only(Rule::unknown_rule))), "");
}
