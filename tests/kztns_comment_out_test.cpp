// Making comments: of what cannot be served, and of the other entries of a name.
#include <gtest/gtest.h>

#include "mend/comment_out.h"
#include "mend/mend_file.h"
#include "support/names_entry.h"

namespace {

using kztns::Mender;
using kztns::NamesText;
using support::entry;

std::string bad(const std::string &name) {
  return name + " = (DESCRIPTION = (NOBODY_KNOWS = x))\n";
}

std::string comment_out(const std::string &content, kztns::RuleSet disabled = {}) {
  const NamesText original(content);
  Mender mender(original, {.file = "names.ora", .disabled = disabled});
  kztns::comment_out_unserved(mender);
  return mender.text().text();
}

std::string keep(const std::string &content, kztns::Keep which) {
  const NamesText original(content);
  Mender mender(original, {"names.ora"});
  kztns::comment_out_duplicates(mender, which);
  return mender.text().text();
}

}  // namespace

TEST(CommentOut, MakesCommentsOfWhatIsRefused) {
  EXPECT_EQ(
      comment_out(entry("a") + "b = (DESCRIPTION =\n  (NOBODY_KNOWS = x))\n# c\n" + entry("c")),
      entry("a") +
          "# unknown key NOBODY_KNOWS [unknown-key]\n"
          "# b = (DESCRIPTION =\n#   (NOBODY_KNOWS = x))\n# c\n" +
          entry("c"));
}

// The error of an entry without a block stands where the next entry begins, which has none.
TEST(CommentOut, LeavesTheEntryAfterOneWithoutABlock) {
  EXPECT_EQ(comment_out("a =\n" + entry("b") + entry("c")),
            "# expected \"(\" after \"=\", found \"b\"; the 2 entries after it are lost: b, c "
            "[no-block]\n# a =\n" +
                entry("b") + entry("c"));
  EXPECT_EQ(comment_out("IFILE =\n" + entry("b")),
            "# IFILE is read as a name, and names no file; the entry after it is lost: b [ifile]\n"
            "# IFILE =\n" +
                entry("b"));
}

TEST(CommentOut, LeavesTheEntryAfterSigns) {
  EXPECT_EQ(comment_out(entry("a") + "},\n" + entry("b")),
            entry("a") +
                "# a list of names is not an entry: no lookup finds }, b [comma-list]\n# },\n" +
                entry("b"));
}

TEST(CommentOut, MakesCommentsOfWhatNoFixDoes) {
  const std::string stray = "export a='" + entry("a").substr(4, entry("a").size() - 5) + "'\n";
  const std::string left = comment_out(stray + entry("b"));
  EXPECT_TRUE(left.ends_with("\n# " + stray + entry("b"))) << left;
}

TEST(CommentOut, MakesCommentsOfStrayText) {
  EXPECT_EQ(
      comment_out(entry("a") + "stray text\n" + entry("b")),
      entry("a") +
          "# \"stray\" is read as a name, but no \"=\" follows: the entry after it is lost: b "
          "[stray-text]\n# stray text\n" +
          entry("b"));
}

TEST(CommentOut, MakesCommentsOfWhatEndsLookupsAfterTheReservedEntry) {
  const std::string result = comment_out("KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n" + entry("a") +
                                         "IFILE = x\n" + entry("b"));
  EXPECT_TRUE(result.ends_with("\n# IFILE = x\n" + entry("b"))) << result;
}

// Nothing is wrong with them but what is before them.
TEST(CommentOut, LeavesSoundEntriesThatNoLookupReaches) {
  const std::string block = entry("a").substr(std::string("a =").size());
  for (const std::string &before :
       {"KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n" + entry("a"), entry("a") + "#b =\n " + block,
        std::string("a = (DESCRIPTION = (ADDRESS = (HOST = \"h)\")(PORT = 1)))\n")})
    EXPECT_EQ(comment_out(before + entry("c")), before + entry("c"));
}

TEST(CommentOut, MakesACommentOfASurplusParenthesisInALineOfItsOwn) {
  const std::string open = "a = (DESCRIPTION =\n  (ADDRESS = (HOST = h)(PORT = 1))\n  )\n";
  EXPECT_EQ(
      comment_out(open + ")\n" + entry("b")),
      open + "# unmatched \")\": the entry after it is lost: b [extra-close]\n# )\n" + entry("b"));
}

// Each of them keeps lookups from those after it.
TEST(CommentOut, MakesCommentsOfManyAtOnce) {
  std::string text;
  for (int i = 0; i < 1000; ++i)
    text += "a" + std::to_string(i) +
            " = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)\n"
            "  (CONNECT_DATA = (SERVICE_NAME = s)))\n";
  const NamesText original(text);
  Mender mender(original, {"names.ora"});
  kztns::comment_out_unserved(mender);
  EXPECT_FALSE(mender.stopped());
  EXPECT_EQ(mender.mended().size(), 1000u);
  EXPECT_EQ(mender.steps(), 1u);
}

TEST(CommentOut, TellsNothingOfTheCheckInTheReason) {
  const std::string result = comment_out("a = h:1/s (HOST = x)\n" + entry("b"));
  EXPECT_EQ(result.substr(0, 1), "#");
  EXPECT_EQ(result.find("not checked"), std::string::npos) << result;
}

// What is wrong in the first entry shows in the second one, or in a comment at its end.
TEST(CommentOut, FindsTheReasonAfterTheEntry) {
  const std::string open = "a = (DESCRIPTION = (ADDRESS = (HOST = h #1)(PORT = 1)))\n";
  EXPECT_NE(comment_out(open).find("[comment-in-value]\n# a = "), std::string::npos)
      << comment_out(open);
  const std::string same = bad("a") + "# kztns: ignore unknown-key, no-address\n" + bad("a");
  EXPECT_EQ(comment_out(same).substr(0, 2), "# ");
  const std::string other = "# kztns: ignore unknown-key, no-address\n" + bad("a");
  EXPECT_EQ(comment_out(other + bad("a")),
            other + "# unknown key NOBODY_KNOWS [unknown-key]\n# " + bad("a"));
}

TEST(CommentOut, IsNoFixOfTheFinding) {
  const NamesText original(entry("a") + "stray text\n" + entry("b"));
  Mender mender(original, {"names.ora"});
  kztns::comment_out_unserved(mender);
  ASSERT_EQ(mender.mended().size(), 1u);
  EXPECT_FALSE(mender.mended()[0].finding.fix);
}

TEST(CommentOut, LeavesWhatIsServed) {
  const std::string text = entry("a") + entry("a", "i") + entry("b");
  EXPECT_EQ(comment_out(text), text);
}

// Nobody wants to be told of it, and other readers may serve it.
TEST(CommentOut, LeavesWhatIsRefusedForIgnoredFindingsOnly) {
  const std::string ignored = "# kztns: ignore unknown-key, no-address\n" + bad("b");
  EXPECT_EQ(comment_out(ignored + entry("c")), ignored + entry("c"));
  EXPECT_EQ(comment_out("# kztns: ignore no-port\n" + bad("b")),
            "# kztns: ignore no-port\n# unknown key NOBODY_KNOWS [unknown-key]\n# " + bad("b"));
}

TEST(CommentOut, LeavesWhatIsRefusedForDisabledRulesOnly) {
  const auto disabled = kztns::RuleSet().set(static_cast<std::size_t>(kztns::Rule::unknown_key));
  EXPECT_EQ(comment_out(bad("b") + entry("c"), disabled), bad("b") + entry("c"));
  const std::string result = comment_out(bad("b") + "c = x\n", disabled);
  EXPECT_EQ(result.substr(0, bad("b").size() + 2), bad("b") + "# ");
}

TEST(CommentOut, GivesTheReasonThatIsNotIgnored) {
  const std::string result = comment_out(
      "b = (DESCRIPTION = (NOBODY_KNOWS = x) # kztns: ignore unknown-key\n"
      "(NOR_THIS = y))\n");
  EXPECT_EQ(result.substr(0, result.find('\n')), "# unknown key NOR_THIS [unknown-key]");
}

// As comments they would be lost for something that nobody is told of.
TEST(CommentOut, LeavesWhatIsUnreachableForIgnoredFindingsOnly) {
  const std::string stray = "stray # kztns: ignore stray-text\n" + entry("b") + entry("c");
  EXPECT_EQ(comment_out(stray), stray);
  const std::string after =
      "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n"
      "# kztns: ignore after-reserved\n" +
      entry("a") + entry("b");
  EXPECT_EQ(comment_out(after), after);
}

TEST(CommentOut, BeginsALineWhereAnotherEntryStands) {
  const std::string good = "a = (DESCRIPTION = (ADDRESS = (HOST = h)))";
  const std::string result = comment_out(good + ") " + entry("b"));
  EXPECT_EQ(result.substr(0, good.size() + 3), good + "\n# ");
}

TEST(AsComments, TakeEachLineOfAPart) {
  const std::string text = "a b\nc\nd e";
  kztns::EditedText edited(text);
  edited.apply(kztns::as_comments(text, {{2, 5, "why"}, {6, 7, "too"}}));
  EXPECT_EQ(edited.text(), "a \n# why\n# b\n# c\n# too\n# d\n e");
}

// To the library a comment ends there.
TEST(AsComments, EscapeZeroBytes) {
  const std::string text("a\0b", 3);
  kztns::EditedText edited(text);
  edited.apply(kztns::as_comments(text, {{0, 3, "why"}}));
  EXPECT_EQ(edited.text(), "# why\n# a\\x00b");
}

TEST(KeepOfDuplicates, CommentsTheOthersOut) {
  const std::string text = entry("a", "1") + entry("b") + entry("a", "2") + entry("a", "3");
  const std::string first = keep(text, kztns::Keep::first);
  EXPECT_EQ(first, entry("a", "1") + entry("b") + "# duplicate name: the entry at 1:1 is kept\n# " +
                       entry("a", "2") + "# duplicate name: the entry at 1:1 is kept\n# " +
                       entry("a", "3"));
  EXPECT_EQ(keep(text, kztns::Keep::last), "# duplicate name: the entry at 4:1 is kept\n# " +
                                               entry("a", "1") + entry("b") +
                                               "# duplicate name: the entry at 4:1 is kept\n# " +
                                               entry("a", "2") + entry("a", "3"));
  EXPECT_EQ(keep(first, kztns::Keep::last), first);
}

// A lookup that found an entry finds one afterwards.
TEST(KeepOfDuplicates, LastIsTheLastThatIsBuilt) {
  const std::string refused = bad("a");
  EXPECT_EQ(keep(entry("a", "1") + entry("a", "2") + refused, kztns::Keep::last),
            "# duplicate name: the entry at 2:1 is kept\n# " + entry("a", "1") + entry("a", "2") +
                "# duplicate name: the entry at 2:1 is kept\n# " + refused);
}

// Lookups come to the last entry once the first one, which ends them, is a comment.
TEST(KeepOfDuplicates, LastMayComeIntoReach) {
  const std::string block =
      "(DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))";
  const std::string stop = "a = " + block + " " + block + "\n";
  EXPECT_EQ(keep(stop + entry("a", "2"), kztns::Keep::last),
            "# duplicate name: the entry at 2:1 is kept\n# " + stop + entry("a", "2"));
}

TEST(KeepOfDuplicates, LastIsReachedWhereTheOtherStaysOutOfReach) {
  const std::string text = entry("a", "1") + entry("a", "2") + "stray\n" + entry("a", "3");
  EXPECT_EQ(keep(text, kztns::Keep::last),
            "# duplicate name: the entry at 2:1 is kept\n# " + entry("a", "1") + entry("a", "2") +
                "stray\n# duplicate name: the entry at 2:1 is kept\n# " + entry("a", "3"));
}
