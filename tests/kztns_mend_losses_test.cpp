// Mending where a fix would cost something: what is served stays, what does not help is taken
// back, and the other fixes are applied all the same.
#include <string>

#include <gtest/gtest.h>

#include "mend/comment_out.h"
#include "mend/mend_file.h"
#include "support/mended.h"
#include "support/names_entry.h"

namespace {

using kztns::Mender;
using kztns::NamesText;
using support::entry;
using support::mended;

const std::string address = "(ADDRESS = (HOST = h)(PORT = 1))";

// Lookups of other names pass over the first of these two as if it were both: a ")" is missing
// in it, and one is too many in the second.
const std::string unclosed =
    "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)\n  (CONNECT_DATA = (SID = s)))\n";
const std::string closed_twice =
    "b = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n  (CONNECT_DATA = (SID = s))))\n";

std::string commented(const std::string &content) {
  const NamesText original(content);
  Mender mender(original, {"names.ora"});
  kztns::comment_out_unserved(mender);
  return mender.text().text();
}

// An entry with a fault of many items, and one that cannot be mended after as many faults as
// are looked for.
std::string entry_with_many_faults() {
  std::string text = "a = (DESCRIPTION = ";
  for (int i = 0; i < 60; ++i) text += "(SDU = 1)";
  return text + "(ADDRESS = (PROTOCOL = TCPS)(HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))\n";
}

}  // namespace

TEST(MendingInVain, LeavesTheEntryAsItWas) {
  const std::string text = entry_with_many_faults();
  EXPECT_EQ(mended(text + entry("b", "x=y")), text + entry("b", "\"x=y\""));
}

TEST(MendingInVain, TellsOfTheOtherFixesOnly) {
  const NamesText original(entry_with_many_faults() + entry("b", "x=y"));
  Mender mender(original, {"names.ora"});
  mender.apply_fixes();
  ASSERT_EQ(mender.mended().size(), 1u);
  EXPECT_EQ(mender.mended()[0].finding.position.line, 2u);
  EXPECT_EQ(mender.steps(), 1u);
}

TEST(MendingInVain, KeepsWhatWasDoneBefore) {
  const std::string text = entry_with_many_faults();
  const NamesText original(text);
  Mender mender(original, {"names.ora"});
  ASSERT_TRUE(mender.try_edits({{0, 0, "# c\n"}}));
  mender.apply_fixes();
  EXPECT_EQ(mender.text().text(), "# c\n" + text);
}

// The ")" that is missing would end the first entry, and lookups the one that is too many.
TEST(MendingParentheses, LeavesWhatWouldLoseAnotherEntry) {
  const std::string text = unclosed + closed_twice + entry("c");
  EXPECT_EQ(mended(text + entry("d", "x=y") + entry("e", "u=v")),
            text + entry("d", "\"x=y\"") + entry("e", "\"u=v\""));
}

// The parentheses are mended in an entry that is refused all the same, since they keep lookups
// from the entries after it.
TEST(MendingParentheses, MendsThemInAnEntryOfManyOtherFaults) {
  std::string faults = "\n  (CONNECT_DATA = (SID = s))";
  for (int i = 0; i < 60; ++i) faults += "\n  (SOURCE_ROUTE = YES)";
  faults += ")\n" + entry("b");
  const std::string begin = "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)";
  EXPECT_EQ(mended(begin + faults), begin + ")" + faults);
}

TEST(Mending, KeepsAMisspeltDescriptionOfAList) {
  const auto description = [](const std::string &key, const std::string &host) {
    return "(" + key + " = (ADDRESS = (HOST = " + host + ")(PORT = 1))(CONNECT_DATA = (SID = s)))";
  };
  const std::string before = "a = (DESCRIPTION_LIST = " + description("DESCRIPTION", "h") +
                             description("DESCRIPTON", "i") + ")\n";
  EXPECT_EQ(mended(before + entry("b")), "a = " + description("DESCRIPTION", "h") + "\na_2 =\n  " +
                                             description("DESCRIPTION", "i") + "\n" + entry("b"));
}

// Between a key and its "=" they are not all that is in the block.
TEST(Mending, RemovesEmptyParenthesesAlone) {
  EXPECT_EQ(mended("a = (DESCRIPTION = (ADDRESS = () = (HOST = h)(PORT = 1))"
                   "(CONNECT_DATA = (SID = s)))\n"),
            "a = (DESCRIPTION = (ADDRESS =  (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))\n");
  EXPECT_EQ(mended("a = (DESCRIPTION=()=(HOST=h)(PORT=1)(CONNECT_DATA=(SID=s)))\n"),
            "a = (DESCRIPTION=(ADDRESS = (HOST=h)(PORT=1))(CONNECT_DATA=(SID=s)))\n");
}

// Other than the items of other readers that say nothing here.
TEST(Mending, MakesCommentsOfRemarksInParentheses) {
  std::string on_its_line = entry("a");
  on_its_line.pop_back();
  for (const std::string remark : {"(old server)", "(server of b)"})
    for (const std::string &rest : {std::string(), entry("b")}) {
      const std::string after = "# " + remark + "\n" + rest;
      EXPECT_EQ(mended(entry("a") + remark + "\n" + rest), entry("a") + after);
      EXPECT_EQ(mended(on_its_line + " " + remark + "\n" + rest), on_its_line + " " + after);
    }
  EXPECT_EQ(mended(entry("a") + "(TDU = 1)\n" + entry("b")), entry("a") + entry("b"));
}

TEST(Mending, NumbersTheDescriptionsOfEachNameOfAList) {
  const std::string of_name = entry("").substr(3);
  const std::string block = of_name.substr(0, of_name.size() - 1);
  const std::string list = "a, b = (DESCRIPTION_LIST = " + block + block + ")\n";
  const std::string split = "a = " + block + "\na_2 =\n  " + of_name + "b = " + block;
  EXPECT_EQ(mended(list + entry("c")), split + "\nb_2 =\n  " + of_name + entry("c"));
  EXPECT_EQ(mended(list), split + of_name);
}

TEST(CommentingOut, TellsTheErrorAndNotTheWarningBeforeIt) {
  EXPECT_EQ(
      commented(entry("a") +
                "b = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 70000))(NOBODY_KNOWS = x)) # c\n"),
      entry("a") +
          "# unknown key NOBODY_KNOWS [unknown-key]\n"
          "# b = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 70000))(NOBODY_KNOWS = x)) # c\n");
}

TEST(CommentingOut, TakesARefusedNamesakeOfAServedEntry) {
  const std::string served = entry("a") + entry("a", "i");
  const std::string result = commented(served + "a = (DESCRIPTION = (NOBODY_KNOWS = x))\n");
  EXPECT_TRUE(result.starts_with(served + "# ")) << result;
  EXPECT_TRUE(result.ends_with("\n# a = (DESCRIPTION = (NOBODY_KNOWS = x))\n")) << result;
}

// Without one of them lookups get no further.
TEST(Mending, LeavesWhatItsFixesDoNotMend) {
  const std::string text =
      "a = (DESCRIPTION =\n  (ADDRESS_LIST =\n    (ADDRESS = (HOST = h)(PORT = 1))))\n  )\n"
      "  (CONNECT_DATA = (SID = s))\n)\n" +
      entry("b");
  EXPECT_EQ(mended(text), text);
}

TEST(CommentingOut, LeavesWhatWouldLoseAnotherEntry) {
  const std::string text = unclosed + closed_twice + entry("c");
  EXPECT_EQ(commented(text), text);
}

// Of several parts those become comments that cost nothing.
TEST(CommentingOut, TakesTheOthersOneByOne) {
  const std::string text = unclosed + closed_twice + entry("c");
  EXPECT_EQ(commented(text + "d = (DESCRIPTION = (NOBODY_KNOWS = x))\n" + entry("e")),
            text +
                "# unknown key NOBODY_KNOWS [unknown-key]\n"
                "# d = (DESCRIPTION = (NOBODY_KNOWS = x))\n" +
                entry("e"));
}

TEST(CommentingOut, TakesStrayTextAfterTheReservedEntryToo) {
  const std::string reserved = "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n";
  const std::string result = commented(reserved + entry("a") + "stray text\n" + entry("b"));
  EXPECT_TRUE(result.starts_with(reserved + entry("a") + "# ")) << result;
  EXPECT_TRUE(result.ends_with("\n# stray text\n" + entry("b"))) << result;
}

// The names of a list have one value, which becomes a comment with them.
TEST(CommentingOut, TakesAListOfNamesAsOne) {
  const std::string list = "a, b, c = (DESCRIPTION =\n  (NOBODY_KNOWS = x))\n";
  const std::string result = commented(entry("d") + list + entry("e"));
  EXPECT_TRUE(result.starts_with(entry("d") + "# ")) << result;
  EXPECT_NE(result.find("\n# a, b, c = (DESCRIPTION =\n#   (NOBODY_KNOWS = x))\n" + entry("e")),
            std::string::npos)
      << result;
}

TEST(KeepingOneOfAName, LeavesListsOfNames) {
  const std::string text = "a, b" + entry("") + "c, d" + entry("");
  const NamesText original(text);
  Mender mender(original, {"names.ora"});
  kztns::comment_out_duplicates(mender, kztns::Keep::first);
  EXPECT_EQ(mender.text().text(), text);
}

// An item without parentheses of its own may be what counts, whatever stands before it.
TEST(Mending, KeepsWhatCountsAmongItemsWithoutParentheses) {
  for (const std::string items :
       {"SERVER = DEDICATED, ENCRYPTION = on, SERVICE_NAME = t",
        "SERVER = DEDICATED, FOO = 1, SERVICE_NAME = t", "FAILOVER = ON, WALLET_DIR = t"}) {
    const std::string text =
        "a = (DESCRIPTION = " + address + "(CONNECT_DATA = (" + items + ")(SID = s)))\n";
    EXPECT_NE(mended(text).find("= t"), std::string::npos) << mended(text);
  }
}

TEST(Mending, TakesNoMisspeltKeyForOneAboutEncryption) {
  EXPECT_EQ(
      mended("a = (DESCRIPTION = (ADDRESSLIST = " + address + ")(CONNECT_DATA = (SID = s)))\n"),
      "a = (DESCRIPTION = (ADDRESS_LIST = " + address + ")(CONNECT_DATA = (SID = s)))\n");
}

TEST(Mending, OfAListOfDescriptionsKeepsItsRemarksAndSettings) {
  const std::string one = "(DESCRIPTION = " + address + "(CONNECT_DATA = (SID = s)))";
  for (const std::string item : {"(main site)", "(KZLB_CONNECT_TIMEOUT = 7)"}) {
    const std::string text = "a = (DESCRIPTION_LIST = " + item + one + one + ")\n";
    EXPECT_NE(mended(text).find(item.substr(1, 4)), std::string::npos) << mended(text);
  }
}

// Its lines count only together.
TEST(Mending, OfHalfADiffBringsNothingBack) {
  const std::string before = "a = (DESCRIPTION = " + address + "\n";
  const std::string text =
      before + "-  (CONNECT_DATA = (SID = old)))\n+  (CONNECT_DATA = (SID = s)))\n";
  const kztns::NamesText mended_text(mended(text + entry("b")));
  const kztns::FileScan scan(mended_text);
  for (const kztns::Entry &served : scan.entries())
    EXPECT_FALSE(served.built && scan.name(served) == "a") << mended_text.text();
}
