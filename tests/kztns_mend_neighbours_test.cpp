// What fix --unsafe leaves of entries that reach into each other: rests, quotes, entries in
// entries.
#include <algorithm>

#include "mend/mend_file.h"
#include "scan/half_comment.h"
#include "support/checked_file.h"
#include "support/mended.h"

using support::entry;
using support::mended;
using namespace support::sound;

TEST(Mending, OfAHalfCommentedEntryEndsWithItsBlock) {
  const std::string half = entry("a") + "#b =\n  " + block;
  const std::string commented = entry("a") + "#b =\n#   " + block;
  EXPECT_EQ(mended(half + "\nc " + block + "\n" + entry("d")),
            commented + "\n" + entry("c") + entry("d"));
  // Another entry is on its line.
  EXPECT_EQ(mended(half + " " + entry("c")), half + " " + entry("c"));
}

TEST(Mending, KnowsNoEndOfAHalfThatIsNotThere) {
  EXPECT_FALSE(kztns::end_of_rest("a = (b)", 7));
  EXPECT_FALSE(kztns::end_of_rest("a = (b)", 8));
  EXPECT_FALSE(kztns::end_of_rest("(b", 0));
  EXPECT_EQ(kztns::end_of_rest("(b))", 0), 4u);
}

TEST(Mending, TakesNoSettingForAHalfCommentedEntry) {
  const std::string settings =
      "KZCISYSTEMVARIABLES =\n  (LOG_LEVEL = INFO)\n  # rotation =\n  (LOG_COUNT = 3)\n";
  EXPECT_EQ(mended(settings), settings);
  const std::string nameless = entry("a") + "#=\n " + block + "\n";
  EXPECT_EQ(mended(nameless), nameless);
}

TEST(Mending, OfAHalfCommentedEntryThatIsTheFirstOne) {
  EXPECT_EQ(mended("#b =\n" + block + "\n" + entry("c")), "#b =\n# " + block + "\n" + entry("c"));
}

TEST(Mending, OfTheRestOfAnEntryMakesComments) {
  const std::string sound = "a =\n  " + block + "\n";
  EXPECT_EQ(mended(sound + "  " + address + "\n  " + data + ")\n" + entry("b")),
            sound + "#   " + address + "\n#   " + data + ")\n" + entry("b"));
  EXPECT_EQ(mended(sound + "(HOST = i)(PORT = 2))\n  " + data + " # old\n  )\n\n" + entry("b")),
            sound + "# (HOST = i)(PORT = 2))\n#   " + data + " # old\n#   )\n\n" + entry("b"));
  EXPECT_EQ(mended(sound + data + "\n"), sound + "# " + data + "\n");
  EXPECT_EQ(mended(entry("a") + "    " + address + "\n" + entry("b")),
            entry("a") + "#     " + address + "\n" + entry("b"));
  EXPECT_EQ(mended(entry("a") + ")\n(CONNECT_DATA =\n" + entry("b")),
            entry("a") + "# )\n# (CONNECT_DATA =\n" + entry("b"));
}

// Nothing is lost by it once the lookups come so far.
TEST(Mending, LeavesTheSecondBlockOfTheLastEntry) {
  const std::string two = entry("c") + "  " + block + "\n";
  EXPECT_EQ(mended("a, b = " + block + "\n" + two), entry("a") + entry("b") + two);
}

TEST(Mending, TakesNoCommaOfACommentForAListOfNames) {
  const std::string rest = "\n# moved (Ines, 2019-04-13)\n" + entry("b");
  EXPECT_EQ(mended(entry("a") + "```\n" + rest), entry("a") + "# ```\n" + rest);
}

// In a block that has no item before it.
TEST(Mending, MovesAnEntryOutOfAnother) {
  const std::string begin = "a = (DESCRIPTION = " + address + "\n  (CONNECT_DATA =\n";
  const std::string rest = "    (SID = s)\n  ))\n";
  EXPECT_EQ(mended(begin + entry("b") + rest + entry("c")), begin + rest + entry("b") + entry("c"));
  const std::string list = begin.substr(1);
  EXPECT_EQ(mended("a, d" + list + entry("b") + rest),
            "a" + list + rest + "d" + list + rest + entry("b"));
}

TEST(Mending, OfANameOnTwoLinesRemovesOne) {
  EXPECT_EQ(mended(entry("a") + "b =\n\nb =\n  " + block + "\n" + entry("c")),
            entry("a") + "b =\n  " + block + "\n" + entry("c"));
  EXPECT_EQ(mended(entry("a") + "b =\n# b is\nb =\n  " + block + "\n" + entry("c")),
            entry("a") + "# b =\n# b is\nb =\n  " + block + "\n" + entry("c"));
  EXPECT_EQ(mended(entry("a") + "b =\n" + entry("bc")), entry("a") + "# b =\n" + entry("bc"));
}

TEST(Mending, OfQuotesThatALaterEntryClosesClosesThem) {
  for (const std::string host : {"\"h", "h\""}) {
    std::string text;
    std::string sound;
    for (const std::string name : {"a", "b"}) {
      std::string one = entry(name);
      text += one.replace(one.find("= h)") + 2, 1, host);
    }
    const std::string closed = host == "\"h" ? "\"h\"" : "h";
    for (const std::string name : {"a", "b"}) {
      std::string one = entry(name);
      sound += one.replace(one.find("= h)") + 2, 1, closed);
    }
    EXPECT_EQ(mended(text + entry("c")), sound + entry("c"));
  }
}

TEST(Mending, LeavesQuotesThatAreClosedRightly) {
  const std::string text =
      "a = (DESCRIPTION = " + address + "(CONNECT_DATA = (SERVICE_NAME = \"two\nlines\" x)))\n";
  EXPECT_EQ(mended(text), text);
}

TEST(Mending, OfAnEntryThatAnotherOneFollowsOnTheLineClosesItBefore) {
  const std::string open = "a = (DESCRIPTION = " + address + data;
  EXPECT_EQ(mended(open + entry("b") + entry("c")), open + ")" + entry("b") + entry("c"));
  EXPECT_EQ(mended(open + "b =\n  " + block + "\n"), open + ")b =\n  " + block + "\n");
}

TEST(Mending, OfAnEntryBeforeOneOfAnotherNotationClosesItBefore) {
  const std::string open = "a = (DESCRIPTION = " + address + data;
  const std::string connected =
      "(DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))"
      "(CONNECT_DATA = (SERVICE_NAME = s)))\n";
  EXPECT_EQ(mended(open + "\nb = \"" + block + "\"\n" + entry("c")),
            open + ")\n" + entry("b") + entry("c"));
  EXPECT_EQ(mended(open + "\nb = h:1/s\n" + entry("c")), open + ")\nb = " + connected + entry("c"));
  EXPECT_EQ(mended(open + "\nb = h:1:s\n" + entry("c")), open + ")\n" + entry("b") + entry("c"));
  EXPECT_EQ(mended("b = h:1:\n"), "b = h:1:\n");
  EXPECT_EQ(mended(open + "\nIFILE = more.ora\n"), open + ")\nIFILE = more.ora\n");
}

TEST(Mending, OfAnEntryAfterOneThatStaysRefused) {
  EXPECT_EQ(mended("a = (DESCRIPTION = (ADDRESS = (PROTOCOL = TCPS)(HOST = h)(PORT = 1)))\nb => " +
                   block + "\n"),
            "a = (DESCRIPTION = (ADDRESS = (PROTOCOL = TCPS)(HOST = h)(PORT = 1)))\n" + entry("b"));
}

TEST(Mending, OfAnEntryThatIsNotCompleteKeepsWhatFollows) {
  const std::string service = "(CONNECT_DATA = (SERVICE_NAME = s2)))\n";
  for (const std::string rest : {"(CONNECT_DATA = (KZ_MODE = 1))", "(CONNECT_DATA = (SID = ))"}) {
    const std::string result =
        mended("a = (DESCRIPTION = " + address + rest + ")\n  " + service + entry("b"));
    EXPECT_EQ(result.find('#'), std::string::npos) << result;
    EXPECT_NE(result.find("s2"), std::string::npos) << result;
  }
  const std::string result = mended("a = (DESCRIPTION = (ADDRESS = (PROTOCOL = TCP))" + data +
                                    ")\n  (ADDRESS = (HOST = h2)(PORT = 2))" + service);
  EXPECT_EQ(result.find('#'), std::string::npos) << result;
}

TEST(Check, TellsOfTheRestOfAnEntryAlone) {
  const std::string rest = address + "\n" + data + ")\n";
  for (const std::string &text :
       {entry("a") + rest, entry("a") + rest + entry("b") + rest + entry("c")})
    for (const kztns::Finding &finding :
         kztns::check_file(kztns::NamesText(text), {"names"}).findings)
      EXPECT_EQ(finding.rule, kztns::Rule::left_over) << finding.text;
}

TEST(Mending, OfAQuoteThatIsForgottenInEveryEntryClosesAllOfThem) {
  std::string damaged;
  std::string whole;
  for (int i = 0; i < 40; ++i) {
    const std::string name = "s" + std::to_string(i);
    const std::string before = name + " = (DESCRIPTION = (ADDRESS = (HOST = \"h" + name;
    const std::string after = ")(PORT = 1))" + data + ")\n";
    damaged += before + after;
    whole += before + '"' + after;
  }
  EXPECT_EQ(mended(damaged), whole);
}

TEST(Mending, OfAnEntryBetweenTheItemsOfAnotherMovesItAfterThat) {
  const std::string begin = "a =\n  (DESCRIPTION =\n    " + address + "\n";
  const std::string end = "    " + data + "\n  )\n";
  const std::string rest = "\n" + entry("c");
  EXPECT_EQ(mended(begin + entry("b") + end + rest), begin + end + entry("b") + rest);
  EXPECT_EQ(mended(begin + "# of b\n" + entry("b") + "\n" + end + rest),
            begin + end + "\n# of b\n" + entry("b") + rest);
  EXPECT_EQ(mended(begin + entry("b") + end.substr(0, end.size() - 1)), begin + end + entry("b"));
  EXPECT_EQ(mended(begin + entry("b") + end + begin + entry("c") + end),
            begin + end + entry("b") + begin + end + entry("c"));
  // What is wrong with it otherwise is mended as well.
  std::string faulty = entry("b");
  faulty.replace(faulty.find("PORT"), 4, "PROT");
  EXPECT_EQ(mended(begin + faulty + end), begin + end + entry("b"));
}

TEST(Mending, OfWhatIsLeftAfterAListOfDescriptions) {
  const std::string list = "a = (DESCRIPTION_LIST =" + block + block + ")\n";
  EXPECT_EQ(mended(list + address + "\n" + data + "\n))\n" + entry("b")),
            entry("a") + "a_2 =\n  " + block + "\n# " + address + "\n# " + data + "\n# ))\n" +
                entry("b"));
}

TEST(Mending, OfAnItemAfterAnEntryKeepsTheNextOne) {
  const std::string ur = "b = (DESCRIPTION = " + address + "(CONNECT_DATA = (SID = s)(UR = A)))\n";
  EXPECT_EQ(mended(entry("a") + "(FAILOVER = on)\n" + ur), entry("a") + entry("b"));
}

TEST(Mending, OfAnEntryThatAnotherOneFollowsAfterABlankClosesItBefore) {
  const std::string open = "a = (DESCRIPTION = " + address + data;
  EXPECT_EQ(mended(open + " " + entry("b")), open + ") " + entry("b"));
  EXPECT_EQ(mended(open + "\r" + entry("b")), open + ")\r" + entry("b"));
}

TEST(Mending, OfAQuoteThatAValueOfALaterEntryCloses) {
  const std::string later = "b = (DESCRIPTION = " + address +
                            "(CONNECT_DATA = (SID = s)(KZ_USER_EXTRA_INFO = \"x y\")))\n";
  EXPECT_EQ(mended("a = (DESCRIPTION = (ADDRESS = (HOST = \"h)(PORT = 1))" + data + ")\n" + later),
            "a = (DESCRIPTION = (ADDRESS = (HOST = \"h\")(PORT = 1))" + data + ")\n" + later);
}

TEST(Mending, PromisesSafeFixesOnlyWhereTheEntryHasNoOthers) {
  const kztns::CheckReport report =
      kztns::check_file(kztns::NamesText("a =\n)\n(CONNECT_DATA = (SID = s))\n)\n"), {"names.ora"});
  for (const kztns::Finding &finding : report.findings)
    EXPECT_NE(finding.applied_among, kztns::Applicability::safe) << finding.text;
}

TEST(Mending, OfAParenthesisTooManyIsToldOnce) {
  const std::string text = "a = (ADDRESS = (HOST = h)(PORT = 1))\n" + data + "\n)\n" + entry("b");
  const kztns::CheckReport report = kztns::check_file(kztns::NamesText(text), {"names.ora"});
  EXPECT_EQ(std::count_if(report.findings.begin(), report.findings.end(),
                          [](const kztns::Finding &finding) {
                            return finding.rule == kztns::Rule::extra_close;
                          }),
            1);
}

// Copies of an entry begin where the next one does, which may be refused.
TEST(Mending, OfAListOfNamesBeforeARefusedEntryMendsTheEntryOfEachName) {
  const std::string text =
      "p =\n (DESCRIPTION = " + address + data + "\nq = " + block +
      "\na, b =\n  (DESCRIPTION_LIST =\n    (DESCRIPTION = (ADDRESS = (HOST = h)(POT = 1))\n"
      "      (CONNECT_DATA = (SERVICE_NAME =)s)))\n    " +
      block +
      "\n  )\n"
      "hr = (DESCRIPTION = " +
      address + "(CONNECT_DATA = (SERVICE_NAME = h\nr)))\n";
  const std::string result = mended(text);
  EXPECT_EQ(mended(result), result);
}
