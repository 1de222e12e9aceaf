// Reports of several files, with fixes, in the formats that programs read; the rules'
// sections.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "check/check_file.h"
#include "check/fixability.h"
#include "kzoci/version.h"
#include "report/check_formats.h"
#include "report/check_text.h"
#include "report/rule_text.h"
#include "support/fix_kinds.h"
#include "support/json_schema.h"

namespace {

using kztns::CheckReport;
using kztns::CheckRun;
using kztns::Rule;
using nlohmann::json;

CheckReport report_of(const std::string &content, const std::string &file = "names.ora") {
  const kztns::NamesText text(content);
  kztns::CheckRequest request;
  request.file = file;
  return kztns::check_file(text, request);
}

// A report of one finding, whose fix is given.
CheckReport report_with(const std::string &content, kztns::Fix fix) {
  CheckReport report = report_of(content);
  report.findings.resize(1);
  report.findings[0].fix = std::move(fix);
  kztns::place_edits(kztns::NamesText(content), report);
  return report;
}

void expect_valid(const std::string &schema, const json &instance) {
  const std::string path = KZOCI_SOURCE_DIR + schema;
  EXPECT_EQ(support::JsonSchema::of_file(path).violations(instance), std::vector<std::string>());
}

json json_of(const CheckRun &run) {
  const json report = json::parse(kztns::render_json(run));
  expect_valid("/docs/check.schema.json", report);
  return report;
}

json sarif_of(const CheckRun &run) {
  const json log = json::parse(kztns::render_sarif(run));
  expect_valid("/tests/schemas/sarif.schema.json", log);
  return log["runs"][0];
}

CheckRun run_of_three() {
  CheckRun run(report_of("a = x\n", "a.ora"));
  run.reports.push_back(report_of("", "b.ora"));
  run.unread.push_back({"c\xFF.ora", "cannot be read: it is not there"});
  run.several = true;
  return run;
}

std::vector<std::string> fingerprints(const json &run) {
  std::vector<std::string> all;
  for (const json &result : run["results"])
    all.push_back(result["partialFingerprints"]["primaryLocationLineHash"]);
  return all;
}

std::string many_refused(int count) {
  std::string content;
  for (int i = 0; i < count; ++i)
    content += "n" + std::to_string(i) + " = (DESCRIPTION = (SERVER = 1))\n";
  return content;
}

// The second line's e has an accent in two bytes; the edits are a removal and an insertion.
const std::string accented = "a = x\n\xC3\xA9 = y\n";
const std::vector<kztns::Edit> two_edits = {{6, 8, ""}, {11, 11, "("}};

}  // namespace

TEST(TextReport, EndsWithTheTotalOfSeveralFiles) {
  EXPECT_EQ(kztns::render_text(run_of_three()),
            "a.ora:1:5: error: a: expected \"(\" after \"=\", found \"x\"; no lookup gets past "
            "it; write NAME = (DESCRIPTION = ...) [no-block]\n"
            "a.ora: 1 entry: 0 ok, 1 refused, 0 unreachable, 0 shadowed, 0 reserved\n"
            "b.ora: 0 entries: 0 ok, 0 refused, 0 unreachable, 0 shadowed, 0 reserved\n"
            "2 files: 1 entry: 0 ok, 1 refused, 0 unreachable, 0 shadowed, 0 reserved; 1 more file "
            "cannot be read\n");
}

TEST(TextReport, CountsWhatCanBeFixed) {
  const auto summary = [](std::size_t safe, std::size_t unsafe) {
    kztns::RunTotals totals;
    totals.fixes = {safe, unsafe};
    return kztns::summary(totals).substr(
        std::string("0 entries: 0 ok, 0 refused, 0 unreachable, 0 shadowed, 0 reserved").size());
  };
  EXPECT_EQ(summary(0, 0), "");
  EXPECT_EQ(summary(2, 0), "; 2 fixable with kztns fix");
  EXPECT_EQ(summary(2, 1), "; 2 fixable with kztns fix (1 more with --unsafe)");
  EXPECT_EQ(summary(0, 3), "; 3 fixable with kztns fix --unsafe");
}

TEST(RunTotals, AddUpAllFiles) {
  CheckRun run(report_with("a = x\n", kztns::safe_fix({{4, 5, "(X)"}})));
  run.reports.push_back(report_with("a = x\n", kztns::unsafe_fix({{4, 5, ""}})));
  run.reports.push_back(report_of("a = x\n"));
  for (CheckReport &report : run.reports) kztns::settle_fixes(report);
  const kztns::RunTotals totals = kztns::totals_of(run);
  EXPECT_EQ(totals.fixes.safe, 1u);
  EXPECT_EQ(totals.fixes.unsafe, 1u);
  EXPECT_EQ(totals.severities[0], 3u);
  EXPECT_EQ(totals.verdicts[static_cast<std::size_t>(kztns::Verdict::refused)], 3u);
}

TEST(JsonReport, OfSeveralFilesHoldsThemAll) {
  const json report = json_of(run_of_three());
  ASSERT_EQ(report["files"].size(), 2u);
  EXPECT_EQ(report["files"][0]["file"], "a.ora");
  EXPECT_EQ(report["files"][0]["findings"].size(), 1u);
  EXPECT_EQ(report["files"][1]["file"], "b.ora");
  EXPECT_EQ(report["unread"][0]["file"], "c\\xff.ora");
  EXPECT_EQ(report["summary"]["errors"], 1);
  CheckRun none;
  none.several = true;
  EXPECT_EQ(json_of(none)["files"], json::array());
}

TEST(JsonReport, HoldsTheEditsOfAFix) {
  EXPECT_FALSE(json_of(report_of("a = x\n"))["findings"][0].contains("fix"));
  const json fix =
      json_of(report_with(accented, kztns::unsafe_fix(two_edits)))["findings"][0]["fix"];
  EXPECT_EQ(fix, json::parse(R"({"applicability": "unsafe", "edits": [
    {"begin": {"line": 2, "column": 1, "offset": 6}, "end": {"line": 2, "column": 3, "offset": 8},
     "text": ""},
    {"begin": {"line": 2, "column": 6, "offset": 11}, "end": {"line": 2, "column": 6, "offset": 11},
     "text": "("}]})"));
}

TEST(SarifReport, HoldsTheEditsOfAFixInCharacters) {
  const json result = sarif_of(report_with(accented, kztns::safe_fix(two_edits)))["results"][0];
  ASSERT_EQ(result["fixes"].size(), 1u);
  const json &fix = result["fixes"][0];
  EXPECT_EQ(fix["properties"]["applicability"], "safe");
  ASSERT_EQ(fix["artifactChanges"].size(), 1u);
  EXPECT_EQ(fix["artifactChanges"][0]["artifactLocation"]["uri"], "names.ora");
  EXPECT_EQ(fix["artifactChanges"][0]["replacements"], json::parse(R"([
    {"deletedRegion": {"startLine": 2, "startColumn": 1, "endLine": 2, "endColumn": 2}},
    {"deletedRegion": {"startLine": 2, "startColumn": 5, "endLine": 2, "endColumn": 5},
     "insertedContent": {"text": "("}}])"));
}

TEST(SarifReport, LeavesOutAFixThatItCannotTell) {
  const auto has_fix = [](const std::string &content, const kztns::Edit &edit) {
    return sarif_of(report_with(content, kztns::safe_fix({edit})))["results"][0].contains("fixes");
  };
  EXPECT_FALSE(has_fix("a = x\n", {4, 5, "\xFF"}));
  const std::string blanks(4091, ' ');
  EXPECT_TRUE(has_fix("a = " + blanks + "x\n", {4095, 4095, "("}));
  EXPECT_FALSE(has_fix("a = " + blanks + " x\n", {4096, 4096, "("}));
}

TEST(SarifReport, OfSeveralFilesIsOneRun) {
  const json log = json::parse(kztns::render_sarif(run_of_three()));
  EXPECT_EQ(log["runs"].size(), 1u);
  const json run = sarif_of(run_of_three());
  EXPECT_EQ(run["results"].size(), 1u);
  const json &invocation = run["invocations"][0];
  EXPECT_EQ(invocation["executionSuccessful"], false);
  const json &told = invocation["toolExecutionNotifications"];
  ASSERT_EQ(told.size(), 1u);
  EXPECT_EQ(told[0]["level"], "error");
  EXPECT_EQ(told[0]["message"]["text"], "c\\xff.ora cannot be read: it is not there");
  EXPECT_EQ(told[0]["locations"][0]["physicalLocation"]["artifactLocation"]["uri"], "c%FF.ora");
}

TEST(SarifReport, TellsWhatIsLeftOut) {
  const json run = sarif_of(report_of(many_refused(1007)));
  EXPECT_EQ(run["results"].size(), 1000u);
  const json &invocation = run["invocations"][0];
  EXPECT_EQ(invocation["executionSuccessful"], true);
  const json &told = invocation["toolExecutionNotifications"];
  ASSERT_EQ(told.size(), 1u);
  EXPECT_EQ(told[0]["level"], "warning");
  EXPECT_EQ(told[0]["message"]["text"], "names.ora: 7 more of [unknown-key] are left out");
  EXPECT_EQ(told[0]["associatedRule"]["id"], "unknown-key");
  EXPECT_EQ(told[0]["associatedRule"]["index"], static_cast<std::size_t>(Rule::unknown_key));
  EXPECT_EQ(sarif_of(report_of("a = x\n"))["invocations"][0]["toolExecutionNotifications"],
            json::array());
}

TEST(SarifReport, HasTheVersionAndHelpOfEachRule) {
  const json driver = sarif_of(report_of(""))["tool"]["driver"];
  EXPECT_EQ(driver["version"], KZOCI_VERSION);
  for (const json &rule : driver["rules"]) {
    EXPECT_NE(rule["help"]["text"].get<std::string>(), "") << rule["id"];
    EXPECT_NE(rule["help"]["markdown"].get<std::string>(), "") << rule["id"];
  }
}

TEST(Fingerprints, StayWhenLinesAreInsertedAndBlanksChange) {
  const std::vector<std::string> before = fingerprints(sarif_of(report_of(many_refused(2))));
  const std::vector<std::string> after = fingerprints(
      sarif_of(report_of("# new\n\nn0 = (DESCRIPTION =\t(SERVER = 1))\n  n1 = (DESCRIPTION = "
                         "(SERVER = 1))\n")));
  EXPECT_EQ(before, after);
}

TEST(Fingerprints, DifferByRuleEntryAndLine) {
  const auto one = [](const std::string &content) {
    return fingerprints(sarif_of(report_of(content))).at(0);
  };
  const std::string first = one("a = (DESCRIPTION = (SERVER = 1))\n");
  EXPECT_NE(one("b = (DESCRIPTION = (SERVER = 1))\n"), first);
  EXPECT_NE(one("a = (DESCRIPTION = (PORT = 1))\n"), first);
  EXPECT_NE(one("a = (DESCRIPTION = (SERVER = 2))\n"), first);
}

TEST(Fingerprints, OfEqualFindingsAreCounted) {
  CheckReport report = report_of("a = x\n");
  report.findings.push_back(report.findings[0]);
  const std::vector<std::string> both = fingerprints(sarif_of(report));
  ASSERT_EQ(both.size(), 2u);
  const std::size_t colon = both[0].find(':');
  EXPECT_EQ(both[0].substr(colon), ":1");
  EXPECT_EQ(both[1], both[0].substr(0, colon) + ":2");
}

TEST(RuleText, EveryRuleIsListedAndExplained) {
  const std::string list = kztns::rule_list();
  for (std::size_t i = 0; i < kztns::rule_count; ++i) {
    const auto rule = static_cast<Rule>(i);
    const kztns::RuleRow &row = kztns::row_of(rule);
    EXPECT_NE(list.find(std::string(row.id) + " "), std::string::npos) << row.id;
    EXPECT_FALSE(kztns::section_of(rule).empty()) << row.id;
    EXPECT_NE(kztns::explanation(rule).find("\n\nWhat to do: "), std::string::npos) << row.id;
    EXPECT_EQ(kztns::explanation(rule).find("```"), std::string::npos) << row.id;
  }
}

TEST(RuleText, AllowsTheFixesOfTheExamples) {
  const std::string_view fence = "```names\n";
  int examples = 0;
  for (std::size_t i = 0; i < kztns::rule_count; ++i) {
    std::string_view section = kztns::section_of(static_cast<Rule>(i));
    for (std::size_t at; (at = section.find(fence)) != section.npos; ++examples) {
      section.remove_prefix(at + fence.size());
      support::expect_allowed_fixes(report_of(std::string(section.substr(0, section.find("```")))));
    }
  }
  EXPECT_GT(examples, 0);
}

// As far as the documents have an example of it.
TEST(RuleText, TellsWhichFixesThereAre) {
  for (std::size_t i = 0; i < kztns::rule_count; ++i) {
    const auto rule = static_cast<Rule>(i);
    const std::string_view section = kztns::section_of(rule);
    const kztns::FixKinds kinds = row_of(rule).fixes;
    const bool safe = kinds == kztns::FixKinds::safe || kinds == kztns::FixKinds::both;
    const bool unsafe = kinds == kztns::FixKinds::unsafe || kinds == kztns::FixKinds::both;
    EXPECT_TRUE(safe || section.find("```fixed\n") == section.npos) << row_of(rule).id;
    EXPECT_TRUE(unsafe || section.find("```fixed-unsafe\n") == section.npos) << row_of(rule).id;
  }
  const std::string list = kztns::rule_list();
  EXPECT_NE(list.find("\nbyte-order-mark      error    safe            A byte"), list.npos);
  EXPECT_NE(list.find("\nlost-name            error    unsafe          A word"), list.npos);
  EXPECT_NE(list.find("\nduplicate            warning                  A second"), list.npos);
}

TEST(RuleText, OfIdentifiers) {
  EXPECT_EQ(kztns::rule_of("no-port"), Rule::no_port);
  EXPECT_EQ(kztns::rule_of("no_port"), std::nullopt);
  EXPECT_EQ(kztns::rule_of(""), std::nullopt);
}
