// Mending a file: what the library serves stays, what it refuses is mended or reported.
#include <set>

#include <gtest/gtest.h>

#include "check/check_file.h"
#include "kzoci/oci_tnsname/grammar.h"
#include "mend/describe_edits.h"
#include "mend/mend_file.h"
#include "report/tree_json.h"
#include "report/unified_diff.h"
#include "scan/tree_digest.h"
#include "support/names_entry.h"

namespace {

using kztns::Block;
using kztns::Edit;
using kztns::Mender;
using kztns::NamesText;
using kztns::Offset;
using kztns::ValueKind;
using support::entry;

struct Result {
  std::string text;
  std::vector<std::string> done;
};

Result mend(const std::string &content, bool with_unsafe = false) {
  const NamesText original(content);
  Mender mender(original, {.file = "names.ora", .with_unsafe = with_unsafe});
  mender.apply_fixes();
  Result result = {mender.text().text(), {}};
  for (const kztns::MendedFinding &one : mender.mended())
    result.done.push_back(to_string(one.finding.position) + " " + one.done);
  return result;
}

// The only service of a text, as JSON and as a digest.
class OneTree : public kztns::EntryVisitor {
 public:
  explicit OneTree(const std::string &content) {
    const NamesText text(content);
    const kztns::FileScan scan(text, *this);
  }

  void visit(const kztns::EntryView &view) override {
    if (view.service == nullptr) return;
    KZCITns tns = {};
    tns.tns_service = view.service;
    tns.tns_service_count = 1;
    json = kztns::tree_json(tns);
    digest = kztns::tree_digest(*view.service);
  }
  void progress(Offset) override {}

  std::string json;
  std::uint64_t digest = 0;
};

// Two values of a key: different ones unless there is only one.
std::pair<std::string, std::string> two_values(const kztns::Key &key) {
  if (key.type == LB_PROTOCOL) return {"TCP", "TCP"};
  if (key.value.kind == ValueKind::integer) return {"7654321", "7654322"};
  if (key.value.kind == ValueKind::text) return {"77", "78"};
  return {key.value.words->words.front().text, key.value.words->words.back().text};
}

// An entry with one item in a block, and what the block needs around it.
std::string entry_with(Block block, const std::string &item) {
  switch (block) {
    case Block::system_variables:
      return "KZCISYSTEMVARIABLES = " + item;
    case Block::description:
      return "a = (DESCRIPTION = " + item + ")";
    case Block::address_list:
      return "a = (DESCRIPTION = (ADDRESS_LIST = " + item + "))";
    case Block::address:
      return "a = (DESCRIPTION = (ADDRESS = " + item + "))";
    case Block::connect_data:
      return "a = (DESCRIPTION = (CONNECT_DATA = " + item + "))";
    case Block::remove_strategy:
      return "a = (DESCRIPTION = (KZLB_BLACKLIST = (REMOVE_STRATEGY = " + item + ")))";
    case Block::append_strategy:
      return "a = (DESCRIPTION = (KZLB_BLACKLIST = (APPEND_STRATEGY = " + item + ")))";
    default:
      return "";
  }
}

}  // namespace

TEST(TreeDigest, TellsEveryFieldThatTheJsonTells) {
  const std::vector<Block> blocks = {
      Block::system_variables, Block::description,     Block::address_list,   Block::address,
      Block::connect_data,     Block::remove_strategy, Block::append_strategy};
  for (const Block block : blocks) {
    for (const kztns::Key &key : kzoci::tns::grammar) {
      if (key.block != block || key.name == nullptr) continue;
      SCOPED_TRACE(key.word);
      const auto [value, other_value] = two_values(key);
      const std::string word = key.word;
      const OneTree tree(entry_with(block, "(" + word + " = " + value + ")"));
      const OneTree other(entry_with(block, "(" + word + " = " + other_value + ")"));
      ASSERT_NE(tree.json, "");
      EXPECT_EQ(tree.json == other.json, value == other_value);
      EXPECT_EQ(tree.digest == other.digest, value == other_value);
    }
  }
}

TEST(TreeDigest, TellsTheName) {
  EXPECT_NE(OneTree("a = (DESCRIPTION = (ADDRESS = (HOST = h)))").digest,
            OneTree("b = (DESCRIPTION = (ADDRESS = (HOST = h)))").digest);
}

TEST(TreeDigest, TellsTheShapeOfTheTree) {
  const std::vector<std::string> entries = {
      entry_with(Block::address, "(HOST = h)"),
      entry_with(Block::address_list, "(ADDRESS = (HOST = h))(ADDRESS = (HOST = h))"),
      entry_with(Block::address_list, "(KZLB_STRATEGY = ROTATION)"),
      entry_with(Block::address_list, "(KZLB = OFF)"),
      entry_with(Block::description, "(KZLB = ON)"),
      entry_with(Block::description, "(CONNECT_DATA = (KZ_MODE = 0))"),
      entry_with(Block::address, "(HOST = h)(PORT = 1)"),
      entry_with(Block::address, "(HOST = h1)")};
  std::set<std::uint64_t> digests;
  for (const std::string &text : entries)
    EXPECT_TRUE(digests.insert(OneTree(text).digest).second) << text;
}

TEST(Mend, LeavesAFileWithoutFindingsAsItIs) {
  const std::string text = "# c\r\n\n" + entry("a") + "  \t# d\n" + entry("b");
  EXPECT_EQ(mend(text).text, text);
  EXPECT_TRUE(mend(text).done.empty());
  EXPECT_EQ(mend("").text, "");
}

TEST(Mend, AppliesFixesAndTellsThemAtTheirPlaces) {
  const Result result = mend(entry("a") + entry("b", "x=y") + entry("c", "u=v=w"));
  EXPECT_EQ(result.text, entry("a") + entry("b", "\"x=y\"") + entry("c", "\"u=v=w\""));
  ASSERT_EQ(result.done.size(), 2u);
  EXPECT_EQ(result.done[0].substr(0, 2), "2:");
  EXPECT_EQ(result.done[0].substr(result.done[0].find(' ')), " put '\"' around \"x=y\"");
  EXPECT_EQ(result.done[1].substr(0, 2), "3:");
}

TEST(Mend, LeavesWhatIsServedAndWhatItCannotMend) {
  const std::string foreign = "c = (DESCRIPTION = (NOBODY_KNOWS = x))\n";
  EXPECT_EQ(mend(entry("a") + foreign + entry("b", "x=y")).text,
            entry("a") + foreign + entry("b", "\"x=y\""));
}

// A parenthesis in a comment hides the entries after it; what is told first needs --unsafe.
TEST(Mend, ReachesWhatUnsafeFixesHide) {
  const std::string rest =
      "(ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)"
      "(TYPE_OF_SERVICE = x)))\n" +
      entry("b");
  EXPECT_EQ(mend("a = (DESCRIPTION = # c (\n" + rest).text, "a = (DESCRIPTION = # c [\n" + rest);
}

TEST(Mend, LeavesAnEntryThatStaysRefusedAsItIs) {
  const std::string text =
      "a = (DESCRIPTION = (ADDRESS = (PROTOCOL = TCPS)(HOST = h)(PORT = 1))"
      "(CONNECT_DATA = (SID = s)(SERVER = DEDICATED)))\n" +
      entry("b");
  EXPECT_EQ(mend(text).text, text);
  EXPECT_EQ(mend(text, true).text, text);
}

// An ignored fault keeps the entry refused, too.
TEST(Mend, LeavesAnEntryWhoseFaultIsIgnoredAsItIs) {
  const std::string text =
      "# kztns: ignore bad-number\n"
      "a = (DESCRIPTION = (KZLB_READ_TIMEOUT = x)(ADDRESS = (HOST = h)(PORT = 1))"
      "(CONNECT_DATA = (SID = s)(SERVER = DEDICATED)))\n";
  EXPECT_EQ(mend(text, true).text, text);
}

TEST(Mend, LeavesWhatCommentsIgnore) {
  const std::string ignored =
      "# kztns: ignore unquoted-value -- a test\n" + entry("a", "x=y") +
      "b = (DESCRIPTION = (CONNECT_DATA = (SID = u=v))) # kztns: ignore unquoted-value\n";
  EXPECT_EQ(mend(ignored).text, ignored);
  EXPECT_EQ(mend(ignored + entry("c", "x=y")).text, ignored + entry("c", "\"x=y\""));
}

TEST(Mend, LeavesWhatIsDisabled) {
  const NamesText original(entry("a", "x=y") + "-- remark\n" + entry("b"));
  kztns::RuleSet disabled;
  disabled.set(static_cast<std::size_t>(kztns::Rule::stray_text));
  Mender mender(original, {.file = "names.ora", .disabled = disabled});
  mender.apply_fixes();
  EXPECT_EQ(mender.text().text(), entry("a", "\"x=y\"") + "-- remark\n" + entry("b"));
}

// A fix that would lose a name does not keep the others of its entry from being applied.
TEST(Mend, DoesWithUnsafeFixesWhatItDoesWithout) {
  const auto of = [](const std::string &item) {
    const std::string block =
        "(DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)" + item + "))";
    return "a = " + block + " " + block + "\n" + entry("b") + "c = " + block + " " + block + "\n" +
           entry("d");
  };
  EXPECT_EQ(mend(of("(SERVER = x)")).text, of(""));
  EXPECT_EQ(mend(of("(SERVER = x)"), true).text.find("SERVER"), std::string::npos);
}

TEST(Mend, RemovesCommasAroundAName) {
  EXPECT_EQ(mend(entry("a") + "," + entry("b")).text, entry("a") + entry("b"));
  EXPECT_EQ(mend(entry("a") + entry("b,")).text, entry("a") + entry("b"));
  EXPECT_EQ(mend(entry("a") + entry(",b,,")).text, entry("a") + entry("b"));
  EXPECT_EQ(mend(entry("a") + entry(",b,c")).text, entry("a") + entry("b") + entry("c"));
}

TEST(TryEdits, RefusesToLoseAName) {
  const std::string text = entry("a") + entry("b");
  const NamesText original(text);
  Mender mender(original, {"names.ora"});
  EXPECT_FALSE(mender.try_edits({{0, 1, "c"}}));
  EXPECT_FALSE(mender.try_edits({{0, 1, "c"}}, {0}));
  EXPECT_EQ(mender.text().text(), text);
}

TEST(TryEdits, RefusesToChangeATree) {
  const std::string text = entry("a") + entry("b");
  const NamesText original(text);
  Mender mender(original, {"names.ora"});
  const auto host = static_cast<Offset>(text.find("h)"));
  EXPECT_FALSE(mender.try_edits({{host, host + 1, "x"}}));
  EXPECT_FALSE(mender.try_edits({{host, host + 1, "x"}}, {static_cast<Offset>(text.find("b = "))}));
  EXPECT_FALSE(mender.try_edits({{0, 0, "stray\n"}}));
  EXPECT_TRUE(mender.try_edits({{0, 0, "# comment\n"}}));
  EXPECT_EQ(mender.text().text(), "# comment\n" + text);
}

TEST(TryEdits, ChangesTheTreesOfWhatIsExempt) {
  const std::string text = entry("a") + entry("b");
  const NamesText original(text);
  Mender mender(original, {"names.ora"});
  const auto sid = static_cast<Offset>(text.find("s)"));
  EXPECT_TRUE(mender.try_edits({{sid, sid + 1, "x"}}, {0}));
  EXPECT_EQ(mender.text().text(), entry("a", "x") + entry("b"));
}

TEST(TryEdits, GivesInsertedLinesTheEndsOfTheFile) {
  const std::string text = "# c\r\n" + entry("a");
  const NamesText original(text);
  Mender mender(original, {"names.ora"});
  EXPECT_TRUE(mender.try_edits({{0, 0, "# d\n# e\r\n"}}));
  EXPECT_EQ(mender.text().text(), "# d\r\n# e\r\n" + text);
}

// What is moved keeps its own.
TEST(Mending, MovesLinesOfBothKindsOfEnds) {
  const std::string reserved = "KZCISYSTEMVARIABLES = (LOG_COUNT =\r\n  5)\n";
  const NamesText original(reserved + entry("a"));
  Mender mender(original, {"names.ora"});
  mender.apply_fixes();
  EXPECT_EQ(mender.text().text(), entry("a") + reserved);
}

TEST(Mender, TellsWhatIsLostAndNew) {
  const NamesText original(entry("a") + entry("b", "x=y"));
  Mender mender(original, {"names.ora"});
  mender.apply_fixes();
  const kztns::ServedNames result = kztns::served_names(NamesText(mender.text().text()));
  EXPECT_TRUE(mender.lost_in(result).empty());
  ASSERT_EQ(mender.new_in(result).size(), 1u);
  EXPECT_EQ(mender.new_in(result)[0].name, kztns::digest_of("b"));
  const kztns::ServedNames other = kztns::served_names(NamesText(entry("b")));
  ASSERT_EQ(mender.lost_in(other).size(), 1u);
  EXPECT_EQ(mender.lost_in(other)[0].name, kztns::digest_of("a"));
}

TEST(Description, OfEdits) {
  const std::string text = "0123456789";
  EXPECT_EQ(kztns::describe({{2, 2, ")"}}, text), "inserted \")\"");
  EXPECT_EQ(kztns::describe({{2, 4, ""}}, text), "removed \"23\"");
  EXPECT_EQ(kztns::describe({{2, 4, " \"x\"\n"}}, text), "replaced \"23\" by '\"x\"'");
  EXPECT_EQ(kztns::describe({{2, 2, "\""}, {5, 5, "\""}}, text), "put '\"' around \"234\"");
  EXPECT_EQ(kztns::describe({{1, 1, ""}, {2, 4, ""}}, text), "rearranged the lines");
  EXPECT_EQ(kztns::describe({{0, 0, "# "}, {4, 4, "# "}}, text), "commented out");
  EXPECT_EQ(kztns::describe({{1, 2, ""}, {3, 3, "a"}, {4, 5, ""}, {6, 7, ""}}, text),
            "removed \"1\", inserted \"a\" and 2 more");
}

namespace {

std::string diff(const std::string &text, const std::vector<Edit> &edits,
                 const std::string &name = "f") {
  kztns::EditedText edited(text);
  edited.apply(edits);
  return kztns::unified_diff(name, text, edited);
}

}  // namespace

TEST(UnifiedDiff, IsEmptyOfNoChange) {
  EXPECT_EQ(diff("a\nb\n", {}), "");
  EXPECT_EQ(diff("", {}), "");
  EXPECT_EQ(diff("a\nb\n", {{2, 2, ""}}), "");
}

TEST(UnifiedDiff, HasThreeLinesOfContext) {
  EXPECT_EQ(diff("1\n2\n3\n4\n5\n6\n7\n8\n9\n", {{8, 9, "x"}}),
            "--- f\n+++ f\n@@ -2,7 +2,7 @@\n 2\n 3\n 4\n-5\n+x\n 6\n 7\n 8\n");
}

TEST(UnifiedDiff, JoinsChangesWhoseContextsMeet) {
  EXPECT_EQ(diff("1\n2\n3\n4\n5\n6\n7\n8\n", {{0, 2, ""}, {14, 15, "x"}}),
            "--- f\n+++ f\n@@ -1,8 +1,7 @@\n-1\n 2\n 3\n 4\n 5\n 6\n 7\n-8\n+x\n");
  EXPECT_EQ(diff("1\n2\n3\n4\n5\n6\n7\n8\n9\n", {{0, 2, ""}, {16, 17, "x"}}),
            "--- f\n+++ f\n@@ -1,4 +1,3 @@\n-1\n 2\n 3\n 4\n@@ -6,4 +5,4 @@\n 6\n 7\n 8\n-9\n+x\n");
}

TEST(UnifiedDiff, TellsAMissingLastLineFeed) {
  EXPECT_EQ(
      diff("a\nb", {{2, 3, "c"}}),
      "--- f\n+++ f\n@@ -1,2 +1,2 @@\n a\n-b\n\\ No newline at end of file\n+c\n\\ No newline "
      "at end of file\n");
  EXPECT_EQ(diff("a", {{1, 1, "\n"}}),
            "--- f\n+++ f\n@@ -1,1 +1,1 @@\n-a\n\\ No newline at end of file\n+a\n");
}

TEST(UnifiedDiff, CountsFromTheLineBeforeAnEmptyRange) {
  EXPECT_EQ(diff("", {{0, 0, "a\n"}}), "--- f\n+++ f\n@@ -0,0 +1,1 @@\n+a\n");
  EXPECT_EQ(diff("a\n", {{0, 2, ""}}), "--- f\n+++ f\n@@ -1,1 +0,0 @@\n-a\n");
}

TEST(UnifiedDiff, CountsTheLinesBeforeEachHunk) {
  std::string text;
  for (char c = 'a'; c <= 't'; ++c) text += {c, '\n'};
  EXPECT_EQ(diff(text, {{8, 9, "E"}, {28, 29, "O"}}),
            "--- f\n+++ f\n@@ -2,7 +2,7 @@\n b\n c\n d\n-e\n+E\n f\n g\n h\n"
            "@@ -12,7 +12,7 @@\n l\n m\n n\n-o\n+O\n p\n q\n r\n");
}

TEST(UnifiedDiff, TakesOneOfTwoPartsThatChangedPlacesForMoved) {
  std::vector<Edit> edits = {{0, 0, "g\n", 12}, {12, 14, ""}};
  EXPECT_EQ(diff("a\nb\nc\nd\ne\nf\ng\nh\n", edits),
            "--- f\n+++ f\n@@ -1,8 +1,8 @@\n+g\n a\n b\n c\n d\n e\n f\n-g\n h\n");
}

TEST(UnifiedDiff, EndsANameWithBlanksAtATab) {
  EXPECT_EQ(diff("a\n", {{0, 2, ""}}, "a b").substr(0, 18), "--- a b\t\n+++ a b\t\n");
}
