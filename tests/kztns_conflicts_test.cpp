// The markers of a version control conflict: told once, and nothing is mended between them.
#include <gtest/gtest.h>

#include "check/check_file.h"
#include "mend/comment_out.h"
#include "mend/mend_file.h"
#include "support/names_entry.h"

namespace {

using kztns::Finding;
using kztns::NamesText;
using kztns::Rule;
using support::entry;

// A value with a blank has to be in quotes.
std::string entry_with_info(const std::string &name, const std::string &value = "web shop") {
  return name + " = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)" +
         "(KZ_USER_EXTRA_INFO = " + value + ")))\n";
}

std::string conflict(const std::string &ours, const std::string &theirs) {
  return "<<<<<<< HEAD\n" + ours + "=======\n" + theirs + ">>>>>>> topic\n";
}

std::vector<Finding> findings_in(const std::string &content) {
  return kztns::check_file(NamesText(content), {.file = "names.ora"}).findings;
}

// The findings as "1:3 unknown-key", one a line.
std::string found_in(const std::string &content) {
  std::string text;
  for (const Finding &finding : findings_in(content))
    text.append(to_string(finding.position)).append(" ").append(row_of(finding.rule).id) += "\n";
  return text;
}

std::string mend(const std::string &content, const kztns::Commenting &commenting = {}) {
  const NamesText original(content);
  kztns::Mender mender(original, {.file = "names.ora", .with_unsafe = true});
  kztns::mend(mender, commenting);
  return mender.text().text();
}

}  // namespace

TEST(Conflicts, OfAWholeBlockIsToldAlone) {
  const std::string block =
      "  (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n  (CONNECT_DATA = (SID = s)))\n";
  EXPECT_EQ(found_in("a =\n" + conflict(block, block)), "2:1 conflict-marker\n");
}

TEST(Conflicts, BetweenEntriesAreOneFinding) {
  const std::string text = entry("a") + conflict(entry("b"), entry("c")) + entry("d");
  ASSERT_EQ(found_in(text), "2:1 conflict-marker\n");
  const Finding finding = findings_in(text)[0];
  EXPECT_EQ(finding.text, "version control conflict marker");
  EXPECT_EQ(finding.remedy, "resolve the conflict, and remove the markers");
  EXPECT_EQ(finding.severity, kztns::Severity::error);
  EXPECT_FALSE(finding.fix);
  EXPECT_EQ(finding.entry, "");
}

TEST(Conflicts, WithinAnEntryNameIt) {
  const std::string address = "(ADDRESS = (HOST = h)(PORT = 1))\n";
  const std::string text = "a = (DESCRIPTION =\n" + conflict(address, address) +
                           "(CONNECT_DATA = (SID = s)))\n" + entry("b");
  ASSERT_EQ(found_in(text), "2:1 conflict-marker\n");
  EXPECT_EQ(findings_in(text)[0].entry, "a");
  EXPECT_EQ(findings_in(text)[0].path, "DESCRIPTION");
}

TEST(Conflicts, AreCountedOnce) {
  const kztns::CheckReport report =
      check_file(NamesText(conflict(entry("a"), entry("b"))), {.file = "names.ora"});
  EXPECT_EQ(count(report, kztns::Severity::error), 1u);
}

TEST(Conflicts, OfAFileAreToldEach) {
  EXPECT_EQ(found_in(conflict(entry("a"), entry("b")) + conflict(entry("c"), entry("d"))),
            "1:1 conflict-marker\n6:1 conflict-marker\n");
}

TEST(Conflicts, MayShowTheCommonVersion) {
  EXPECT_EQ(found_in(conflict(entry("a") + "||||||| base\n" + entry("b"), entry("c"))),
            "1:1 conflict-marker\n");
}

TEST(Conflicts, MayEndLinesInCrLf) {
  EXPECT_EQ(found_in("<<<<<<<\r\n" + entry("a") + "=======\r\n" + entry("b") + ">>>>>>>\r\n"),
            "1:1 conflict-marker\n");
}

TEST(Conflicts, MayBeHalfResolved) {
  EXPECT_EQ(found_in(entry("a") + ">>>>>>> topic\n" + entry("b")), "2:1 conflict-marker\n");
  EXPECT_EQ(found_in(entry("a") + "<<<<<<< HEAD\n" + entry("b")), "2:1 conflict-marker\n");
}

TEST(Conflicts, AreNotWhatOnlyLooksLikeThem) {
  EXPECT_EQ(found_in("# <<<<<<< HEAD\n" + entry("a")), "");
  EXPECT_EQ(found_in("<<<<<<<< x\n" + entry("a")), "1:1 stray-text\n");
  EXPECT_EQ(found_in(">>>>>>>x\n" + entry("a")), "1:1 stray-text\n");
  EXPECT_EQ(found_in(" <<<<<<< x\n" + entry("a")), "1:2 stray-text\n");
  EXPECT_EQ(found_in("=======\n" + entry("a")), "1:1 stray-text\n");
}

TEST(Conflicts, AreNotMended) {
  const std::string text = conflict(entry_with_info("a"), entry("b")) + "stray\n";
  const std::vector<Finding> findings = findings_in(entry_with_info("c") + text);
  ASSERT_GE(findings.size(), 3u);
  EXPECT_EQ(findings[0].rule, Rule::unquoted_value);
  EXPECT_TRUE(findings[0].fix);
  EXPECT_EQ(findings[1].rule, Rule::conflict_marker);
  EXPECT_EQ(findings[2].rule, Rule::unquoted_value);
  EXPECT_FALSE(findings[2].fix);
  const std::string markers = conflict(entry_with_info("a"), entry("b"));
  EXPECT_EQ(mend(entry_with_info("c") + markers), entry_with_info("c", "\"web shop\"") + markers);
}

// An item before a conflict may go on to after it.
TEST(Conflicts, AreNotChangedByTheFixesOfOtherFindings) {
  const std::string text =
      "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)\n"
      "(FAILOVER_MODE = (TYPE = SELECT)\n" +
      conflict("(DELAY = 1)\n", "(DELAY = 2)\n") + ")))\n";
  EXPECT_EQ(mend(text), text);
}

// Of two versions one would be served, and nobody said which.
TEST(Conflicts, KeepEntriesFromBecomingComments) {
  const std::string text = conflict(entry("a", "1"), entry("a", "2")) + entry("b");
  EXPECT_EQ(mend(text), text);
  EXPECT_EQ(mend(text, {.keep = {}, .unserved = true}), text);
  EXPECT_EQ(mend(text, {.keep = kztns::Keep::last, .unserved = false}), text);
}
