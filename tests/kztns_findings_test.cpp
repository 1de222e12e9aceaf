// The command's parts in themselves: positions, texts, the rules' table, near
// misses, the renderers.
#include <algorithm>
#include <fstream>
#include <set>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "check/check_file.h"
#include "check/findings.h"
#include "commands/list.h"
#include "kzoci/oci_tnsname.hpp"
#include "report/check_formats.h"
#include "report/check_text.h"
#include "support/json_schema.h"
#include "support/names_report.h"
#include "text/characters.h"
#include "text/spelling.h"
#include "trace/key_words.h"
#include "trace/platform.h"

namespace {

using nlohmann::json;
using support::good_entry;
using support::report_of;
using namespace std::string_view_literals;

const std::string project = KZOCI_SOURCE_DIR;

kztns::CheckReport varied_report() {
  return report_of(good_entry("a") + "b = (DESCRIPTION = (ADDRESS = (PROT = TCP)))\n" +
                   good_entry("a") + "c = (DESCRIPTION = (RETRY_DELAY = 1))\n" + "\xC2\xA0" +
                   good_entry("d") + "stray\n" + good_entry("e"));
}

std::string violations_of(const std::string &schema, const json &instance) {
  std::string all;
  for (const std::string &violation :
       support::JsonSchema::of_file(project + schema).violations(instance))
    all += violation + "\n";
  return all;
}

}  // namespace

TEST(Findings, GetWordsAppendedByRuleAndPlace) {
  using kztns::Rule;
  const kztns::NamesText text("ab");
  kztns::CheckReport report;
  kztns::Findings findings(text, 1000, report);
  findings.add(Rule::no_block, {.at = 0, .text = "one"});
  findings.add(Rule::stray_text, {.at = 1, .text = "two"});
  findings.add(Rule::no_block, {.at = 1, .text = "three"});
  findings.append(Rule::no_block, 1, " more");
  findings.append(Rule::stray_text, 0, " more");
  ASSERT_EQ(report.findings.size(), 3u);
  EXPECT_EQ(report.findings[0].text, "one");
  EXPECT_EQ(report.findings[1].text, "two");
  EXPECT_EQ(report.findings[2].text, "three more");
}

// A tilde, which people write before a home folder, is none.
TEST(Blanks, AreTrimmedAlone) {
  EXPECT_EQ(kztns::trimmed(" \t\r\n~a~ \t\r\n"), "~a~");
  EXPECT_EQ(kztns::trimmed(" \t\r\n"), "");
}

TEST(Positions, AreCountedInBytesFromOne) {
  const kztns::NamesText text("ab\n\ncd");
  EXPECT_EQ(text.place(0), "1:1");
  EXPECT_EQ(text.place(2), "1:3");
  EXPECT_EQ(text.place(3), "2:1");
  EXPECT_EQ(text.place(5), "3:2");
  EXPECT_EQ(text.place(6), "3:3");
}

TEST(Positions, AreRightFarFromTheBeginning) {
  std::string content;
  for (int i = 0; i < 5000; ++i) content += "line\n";
  const kztns::NamesText text(content + std::string(20000, 'x'));
  EXPECT_EQ(text.place(4096), "820:2");
  EXPECT_EQ(text.place(8191), "1639:2");
  EXPECT_EQ(text.place(25000), "5001:1");
  EXPECT_EQ(text.place(45000), "5001:20001");
}

TEST(VisibleText, EscapesWhatNobodySees) {
  EXPECT_EQ(kztns::visible("a\tb\x01\x7F"), "a\\x09b\\x01\\x7f");
  EXPECT_EQ(kztns::visible("\0x"sv), "\\x00x");
  EXPECT_EQ(kztns::visible("\xC3\xA4\xE2\x82\xAC"), "\xC3\xA4\xE2\x82\xAC");
  EXPECT_EQ(kztns::visible("\xC2\xA0\xEF\xBB\xBF"), "\\xc2\\xa0\\xef\\xbb\\xbf");
  EXPECT_EQ(kztns::visible("\xC0\x80\xED\xA0\x80\xFF"), "\\xc0\\x80\\xed\\xa0\\x80\\xff");
  EXPECT_EQ(kztns::visible("\xE2\x82"), "\\xe2\\x82");
}

TEST(Excerpt, CutsLongTextsBetweenCharacters) {
  EXPECT_EQ(kztns::excerpt(std::string(40, 'x')), std::string(40, 'x'));
  EXPECT_EQ(kztns::excerpt(std::string(41, 'x')), std::string(40, 'x') + "...");
  EXPECT_EQ(kztns::excerpt(std::string(39, 'x') + "\xC3\xA4\xC3\xA4"),
            std::string(39, 'x') + "...");
}

TEST(Rules, HaveDifferentIdsAndWords) {
  std::set<std::string_view> ids;
  for (std::size_t i = 0; i < kztns::rule_count; ++i) {
    const kztns::RuleRow &rule = kztns::row_of(static_cast<kztns::Rule>(i));
    EXPECT_TRUE(ids.insert(rule.id).second) << rule.id;
    EXPECT_EQ(rule.id.find_first_not_of("abcdefghijklmnopqrstuvwxyz-16"), std::string_view::npos);
    EXPECT_FALSE(rule.text.empty()) << rule.id;
    EXPECT_FALSE(rule.remedy.empty()) << rule.id;
  }
}

TEST(EditDistance, CountsSlips) {
  EXPECT_EQ(kztns::edit_distance("PORT", "port", 3), 0u);
  EXPECT_EQ(kztns::edit_distance("PROT", "PORT", 3), 1u);
  EXPECT_EQ(kztns::edit_distance("PORTS", "PORT", 3), 1u);
  EXPECT_EQ(kztns::edit_distance("PRT", "PORT", 3), 1u);
  EXPECT_EQ(kztns::edit_distance("PONT", "PORT", 3), 1u);
  EXPECT_EQ(kztns::edit_distance("SERVICENAMES", "SERVICE_NAME", 3), 2u);
  EXPECT_EQ(kztns::edit_distance("", "AB", 3), 2u);
  EXPECT_EQ(kztns::edit_distance("HOST", "WEIGHT", 2), 3u);
  EXPECT_EQ(kztns::edit_distance("A", std::string(100, 'A'), 2), 3u);
  // Longer words are near none, not even themselves.
  EXPECT_EQ(kztns::edit_distance(std::string(24, 'A'), std::string(24, 'A'), 2), 0u);
  EXPECT_EQ(kztns::edit_distance(std::string(25, 'A'), std::string(25, 'A'), 2), 3u);
}

TEST(NearKey, PrefersTheKeysOfTheBlock) {
  EXPECT_EQ(kztns::near_key("PROT", kztns::Block::address), "PORT");
  EXPECT_EQ(kztns::near_key("ADRESS", kztns::Block::description), "ADDRESS");
  EXPECT_EQ(kztns::near_key("SERVICENAME", kztns::Block::connect_data), "SERVICE_NAME");
  EXPECT_EQ(kztns::near_key("KZ-user-EXTRA-INFO", kztns::Block::connect_data),
            "KZ_USER_EXTRA_INFO");
  EXPECT_EQ(kztns::near_key("connect-timeout", kztns::Block::description), "KZLB_CONNECT_TIMEOUT");
  EXPECT_EQ(kztns::near_key("SERVER", kztns::Block::connect_data), "");
  EXPECT_EQ(kztns::near_key("FAILOVER", kztns::Block::description), "");
}

TEST(FindingLine, HasAllPartsThatThereAre) {
  kztns::Finding finding = {};
  finding.rule = kztns::Rule::unknown_key;
  finding.severity = kztns::Severity::error;
  finding.position = {3, 17};
  finding.text = "unknown key SERVER";
  finding.remedy = "remove the item";
  EXPECT_EQ(kztns::finding_line("f", finding),
            "f:3:17: error: unknown key SERVER; remove the item [unknown-key]");
  finding.entry = "sales";
  EXPECT_EQ(kztns::finding_line("f", finding),
            "f:3:17: error: sales: unknown key SERVER; remove the item [unknown-key]");
  finding.path = "DESCRIPTION/CONNECT_DATA";
  finding.severity = kztns::Severity::note;
  EXPECT_EQ(kztns::finding_line("f", finding),
            "f:3:17: note: sales: DESCRIPTION/CONNECT_DATA: unknown key SERVER; remove the item "
            "[unknown-key]");
}

TEST(Caret, StandsUnderItsPlace) {
  EXPECT_EQ(kztns::with_caret("abc", 0), "  abc\n  ^");
  EXPECT_EQ(kztns::with_caret("abc", 2), "  abc\n    ^");
  EXPECT_EQ(kztns::with_caret("abc", 3), "  abc\n     ^");
  EXPECT_EQ(kztns::with_caret("\ta", 1), "  \ta\n  \t^");
  EXPECT_EQ(kztns::with_caret("\x01z", 1), "  \\x01z\n      ^");
  EXPECT_EQ(kztns::with_caret("\xC3\xA4z", 2), "  \xC3\xA4z\n   ^");
  EXPECT_EQ(kztns::with_caret("", 0), "  \n  ^");
  // Two ideographs, and an e with an accent of its own.
  EXPECT_EQ(kztns::with_caret("\xE6\x97\xA5\xE6\x9C\xACz", 6),
            "  \xE6\x97\xA5\xE6\x9C\xACz\n      ^");
  EXPECT_EQ(kztns::with_caret("e\xCC\x81z", 3), "  e\xCC\x81z\n   ^");
  EXPECT_EQ(kztns::with_caret("\xE6\x97\xA5\tz", 4), "  \xE6\x97\xA5\tz\n    \t^");
}

TEST(TextReport, ColoursWhereItIsAskedTo) {
  const kztns::CheckReport report = report_of("a = x\n");
  EXPECT_EQ(
      kztns::render_text(report, {true, true}),
      "\x1b[1mnames.ora:1:5:\x1b[0m \x1b[1;31merror:\x1b[0m a: expected \"(\" after \"=\", found "
      "\"x\"; no lookup gets past it; write NAME = (DESCRIPTION = ...) [no-block]\n"
      "  a = x\n"
      "\x1b[32m      ^\x1b[0m\n"
      "names.ora: 1 entry: 0 ok, 1 refused, 0 unreachable, 0 shadowed, 0 reserved\n");
}

TEST(CheckReport, CountsEntriesBySumOfVerdicts) {
  const kztns::CheckReport report = varied_report();
  EXPECT_EQ(kztns::summary(kztns::totals_of(report)),
            "6 entries: 3 ok, 1 refused, 1 unreachable, 1 shadowed, 0 reserved; 1 fixable with "
            "kztns fix (2 more with --unsafe)");
  EXPECT_EQ(report.entries.size(), 6u);
}

TEST(CheckReport, LeavesOutWhatIsTooMuch) {
  std::string content;
  for (int i = 0; i < 1500; ++i)
    content += "n" + std::to_string(i) + " = (DESCRIPTION = (SERVER = 1))\n";
  const kztns::CheckReport report = report_of(content);
  EXPECT_EQ(report.findings.size(), 1000u);
  EXPECT_EQ(kztns::left_out(report, kztns::Rule::unknown_key), 500u);
  EXPECT_EQ(count(report, kztns::Severity::error), 1500u);
  EXPECT_NE(kztns::render_text(report, {}).find("names.ora: and 500 more of [unknown-key]\n"),
            std::string::npos);
}

TEST(CheckReport, CountsAtLeastTheFixesThatAreShown) {
  std::string content;
  for (int i = 0; i < 1200; ++i)
    content += "n" + std::to_string(i) +
               " = (DESCRIPTION = (ADDRES = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))\n";
  EXPECT_NE(kztns::render_text({{report_of(content)}}, {})
                .find("; at least 1000 fixable with kztns fix --unsafe\n"),
            std::string::npos);
}

TEST(CheckReport, TellsTheFaultsOfEachDescriptionOfAList) {
  const std::string address = "(ADDRESS=(HOST=h)(PORT=1))";
  const kztns::CheckReport report = report_of(
      "a = (DESCRIPTION_LIST=\n"
      "  (DESCRIPTION=(SDU=1)" +
      address +
      "(CONNECT_DATA=(SID=s)))\n"
      "  (DESCRIPTION=(TDU=2)" +
      address + "(CONNECT_DATA=(SID=s)(SERVER=SHARED))))\n" + good_entry("b"));
  std::vector<std::string> told;
  for (const kztns::Finding &finding : report.findings)
    told.push_back(to_string(finding.position) + " " + finding.text);
  EXPECT_EQ(told,
            (std::vector<std::string>{"1:6 unknown key DESCRIPTION_LIST", "2:17 unknown key SDU",
                                      "3:17 unknown key TDU", "3:71 unknown key SERVER"}));
}

// Only the copy that is checked on has an entry a_2.
TEST(CheckReport, TellsOfNoNameThatNobodyWrote) {
  const std::string block = "(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=70000))(CONNECT_DATA=(SID=s)))";
  for (const std::string names : {"a", "a, b"}) {
    const kztns::CheckReport report = report_of(names + " = (DESCRIPTION_LIST=\n" + block + "\n" +
                                                block + ")\n" + "A_2 = " + block + "\n");
    std::size_t ports = 0;
    for (const kztns::Finding &finding : report.findings) {
      EXPECT_EQ(finding.entry.find("a_2"), std::string::npos) << finding.text;
      EXPECT_EQ(finding.text.find("a_2"), std::string::npos) << finding.text;
      if (finding.rule == kztns::Rule::bad_port && finding.entry == "a") ++ports;
    }
    EXPECT_EQ(ports, 2u) << names;
  }
}

TEST(JsonReport, FollowsItsSchema) {
  const json report = json::parse(kztns::render_json(varied_report()));
  EXPECT_EQ(violations_of("/docs/check.schema.json", report), "");
  EXPECT_EQ(report["summary"]["entries"], 6);
  const auto &findings = report["findings"];
  const auto unknown_key = std::find_if(findings.begin(), findings.end(), [](const json &finding) {
    return finding["rule"] == "unknown-key";
  });
  ASSERT_NE(unknown_key, findings.end());
  EXPECT_EQ((*unknown_key)["remedy"], "did you mean PORT?");
  EXPECT_EQ(
      violations_of("/docs/check.schema.json", json::parse(kztns::render_json(report_of("")))), "");
}

TEST(JsonReport, IsJsonForAnyBytes) {
  std::string noise;
  for (int i = 0; i < 256; ++i) noise += static_cast<char>(i);
  const json report = json::parse(kztns::render_json(report_of(noise + " = (" + noise)));
  EXPECT_EQ(violations_of("/docs/check.schema.json", report), "");
}

// The name of an entry in a finding is the one of the list of entries, however long.
TEST(JsonReport, NamesAnEntryInFullInItsFindings) {
  const std::string name = std::string(100, 'n') + "\xFF";
  const json report = json::parse(kztns::render_json(report_of(name + " = x")));
  EXPECT_EQ(report["entries"][0]["name"], std::string(100, 'n') + "\\xff");
  EXPECT_EQ(report["findings"][0]["entry"], std::string(100, 'n') + "\\xff");
}

TEST(SarifReport, FollowsTheStandardsSchema) {
  kztns::CheckReport report = varied_report();
  report.file = "a b/names.ora";
  const json log = json::parse(kztns::render_sarif(report));
  EXPECT_EQ(violations_of("/tests/schemas/sarif.schema.json", log), "");
  const json &run = log["runs"][0];
  EXPECT_EQ(run["tool"]["driver"]["rules"].size(), kztns::rule_count);
  const json &result = run["results"][0];
  EXPECT_EQ(run["tool"]["driver"]["rules"][result["ruleIndex"].get<std::size_t>()]["id"],
            result["ruleId"]);
  const json &location = result["locations"][0]["physicalLocation"];
  EXPECT_EQ(location["artifactLocation"]["uri"], "a%20b/names.ora");
  EXPECT_EQ(location["region"]["startLine"], 2);
}

TEST(ListLine, HasThreeForms) {
  const kztns::ListedEntry entry = {"sales", 7, kztns::Verdict::ok, "h:1/s"};
  EXPECT_EQ(kztns::list_line(entry, kztns::ListFormat::tabs, {}), "sales\t7\tok\th:1/s\n");
  EXPECT_EQ(kztns::list_line(entry, kztns::ListFormat::columns, {7, 3}),
            "sales    7    ok           h:1/s\n");
  EXPECT_EQ(
      kztns::list_line({"x", 1, kztns::Verdict::refused, ""}, kztns::ListFormat::columns, {1, 1}),
      "x  1  refused\n");
  const json object = json::parse(kztns::list_line(entry, kztns::ListFormat::json, {}));
  EXPECT_EQ(violations_of("/docs/list.schema.json", json::array({object})), "");
}

namespace {

// Finds no memory for its first record.
class WithoutMemory : public kztns::LogListener {
 public:
  int records = 0;

 private:
  void record(log_level, const char *, std::va_list) override {
    if (++records == 1) throw std::bad_alloc();
  }
};

}  // namespace

TEST(AllocationScope, TellsThatAListenerFoundNoMemory) {
  const kztns::AllocationScope scope;
  scope.require_memory();
  WithoutMemory listener;
  {
    const kztns::Listening listening(listener);
    kzoci::Tns tns;
    EXPECT_FALSE(tns.look_up("(DESCRIPTION=(x=y))"));
  }
  EXPECT_GT(listener.records, 1);
  EXPECT_THROW(scope.require_memory(), std::bad_alloc);
}

TEST(AllocationScope, ReleasesWhatAFailedBuildLeaves) {
  // The first address hangs at a description that fails at its second one; the
  // address sanitizer would tell if it were lost.
  for (int i = 0; i < 3; ++i)
    report_of("a = (DESCRIPTION = (ADDRESS = (HOST = h))(ADDRESS = (HOST = i)))\n");
}
