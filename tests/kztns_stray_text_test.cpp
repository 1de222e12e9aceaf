// Text where none belongs, in entries and between them: what is told of it, and what fix leaves.
#include "mend/mend_file.h"
#include "support/checked_file.h"

using namespace std::string_literals;
using namespace support;

namespace {

std::string left_by_mender(const std::string &content, bool with_unsafe) {
  const kztns::NamesText original(content);
  kztns::Mender mender(original, {.file = "names.ora", .with_unsafe = with_unsafe});
  mender.apply_fixes();
  return mender.text().text();
}

}  // namespace

TEST_F(FileRules, ACommentOfSeveralLinesHidesItsEntries) {
  const std::string comment = "/* old:\n" + entry("b") + "*/\n";
  EXPECT_EQ(told(entry("a") + comment + entry("c")),
            "2:1 stray-text: \"/*\" is read as a name, but no \"=\" follows: the entry after it is "
            "lost: c\n");
  EXPECT_EQ(unsafely_fixed(entry("a") + comment + entry("c")),
            entry("a") + "# /* old:\n# " + entry("b") + "# */\n" + entry("c"));
  // An entry on its last line, and one that has no end.
  EXPECT_EQ(unsafely_fixed("/* one */ " + entry("a")), "# /* one */\n" + entry("a"));
  EXPECT_EQ(unsafely_fixed("/* one\n" + entry("a")), "# /* one\n" + entry("a"));
}

TEST_F(FileRules, ACommentOfMarkupHidesItsEntries) {
  const std::string text = "<!-- old\n" + entry("a") + "-->\n" + entry("b");
  EXPECT_EQ(
      told(text),
      "1:1 stray-text: \"<!--\" is read as a name, but no \"=\" follows: the entry after it is "
      "lost: b\n");
  EXPECT_EQ(unsafely_fixed(text), "# <!-- old\n# " + entry("a") + "# -->\n" + entry("b"));
}

TEST_F(FileRules, ACommentOfOtherReadersMayHoldAParenthesis) {
  const std::string begin = "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n";
  const std::string close = begin + "(CONNECT_DATA = (SID = s) -- x)\n))\n" + entry("b");
  EXPECT_EQ(told(close),
            "2:27 extra-close: unmatched \")\" after \"--\"; the entry after it is lost: b\n");
  EXPECT_EQ(remedies(close), "begin the comment with \"#\", and remove the parenthesis from it\n");
  EXPECT_EQ(unsafely_fixed(close), begin + "(CONNECT_DATA = (SID = s) # -- x]\n))\n" + entry("b"));
  EXPECT_EQ(unsafely_fixed(begin + "(CONNECT_DATA = (SID = s) // :-(\n))\n" + entry("b")),
            begin + "(CONNECT_DATA = (SID = s) # // :-[\n))\n" + entry("b"));
}

// The host or the service is what another key becomes, and SERVER the kind of process.
TEST_F(FileRules, KeysOfOtherReadersAreMendedTogether) {
  EXPECT_EQ(left_by_mender("a = (DESCRIPTION = (ADDRESS = (COMMUNITY = c)(HOSTNAME = h)(PORT = 1))"
                           "(CONNECT_DATA = (SERVER = x)(UR = A)(SERVICE = s)))\n",
                           true),
            "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))"
            "(CONNECT_DATA = (SERVICE_NAME = s)))\n");
  EXPECT_EQ(left_by_mender("a = (DESCRIPTION = (ADDRESS = (SERVER = x)(HOSTNAME = h)(PORT = 1))"
                           "(CONNECT_DATA = (SID = s)))\n",
                           true),
            "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))\n");
}

TEST_F(FileRules, ARemarkInACommentThatIsNotClosedIsNoName) {
  const std::string text = "=" + block + "\n" + entry("a") + "# old (remark\n " + block + "\n";
  EXPECT_EQ(count_of(told(text), "half-comment"), 0u);
}

TEST_F(FileRules, WhatTheEntryBeforeLacksStaysWhateverItsQuotes) {
  const std::string text =
      "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)))\n"
      "(CONNECT_DATA = (SID = s)(KZ_USER_EXTRA_INFO = \"x))\n)\n" +
      entry("b");
  EXPECT_EQ(unsafely_fixed(text).find('#'), std::string::npos);
  const kztns::NamesText names(text);
  EXPECT_EQ(kztns::check_file(names, {.file = "names"}).findings[0].remedy,
            "move it into the entry before it");
}

TEST_F(FileRules, AByteOrderMarkBeforeACommentIsRemoved) {
  const std::string text = entry("a") + "\xEF\xBB\xBF# b\n" + entry("b");
  EXPECT_EQ(told(text),
            "2:1 odd-bytes: the invisible character \\xef\\xbb\\xbf is read as a name: "
            "the entry after it is lost: b\n");
  EXPECT_EQ(left_by_mender(text, false), entry("a") + "# b\n" + entry("b"));
}

TEST_F(FileRules, AnEntryInQuotesAtTheEndIsOneToo) {
  EXPECT_EQ(left_by_mender("\"a = " + block + "\"\n", true), "a = " + block + "\n");
}

TEST_F(FileRules, TheReservedNameInSmallLettersIsMeantInCapitals) {
  EXPECT_EQ(told("kzcisystemvariables = (LOG_LEVEL = debug)\n"),
            "1:1 reserved-part: not in capitals: KZCISYSTEMVARIABLES: read as system variables\n");
}

TEST_F(FileRules, ABracketForAParenthesisIsReplaced) {
  const std::string rest = "(PORT = 1))(CONNECT_DATA = (SID = s)))\n";
  const std::string begin = "a = (DESCRIPTION = (ADDRESS = (HOST = h";
  EXPECT_EQ(unsafely_fixed(begin + "]" + rest), begin + ")" + rest);
  EXPECT_EQ(unsafely_fixed(begin + "}" + rest), begin + ")" + rest);
  EXPECT_EQ(unsafely_fixed(begin + "[1]" + rest), begin + "[1])" + rest);
  EXPECT_EQ(unsafely_fixed(begin + "]]" + rest), begin + "]])" + rest);
}

TEST_F(FileRules, AnOpenBracketForAParenthesisIsReplaced) {
  const std::string begin = "a = (DESCRIPTION = (ADDRESS = (HOST = h)";
  const std::string rest = "PORT = 1))(CONNECT_DATA = (SID = s)))\n";
  EXPECT_EQ(left_by_mender(begin + "{" + rest, true), begin + "(" + rest);
  EXPECT_EQ(left_by_mender(begin + "[" + rest, true), begin + "(" + rest);
}

TEST_F(FileRules, AnIncludedFileMayLackItsEqualSign) {
  EXPECT_EQ(
      told("IFILE /opt/more\n" + entry("a")),
      "1:1 ifile: IFILE is read as a name: included files are not supported; the entry after it "
      "is lost: a\n");
}

// What else is found may come of them.
TEST_F(FileRules, LineEndsAreMendedBeforeAnythingElse) {
  const std::string begin = entry("a") + "# old";
  const std::string rest =
      "b = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n"
      "  (CONNECT_DATA = (SID = s)))\n";
  EXPECT_EQ(left_by_mender(begin + "\r" + rest, true), begin + "\n" + rest);
}

TEST_F(FileRules, InvisibleCharactersAreMendedBeforeAnythingElse) {
  const std::string begin = "b = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)))\n";
  const std::string rest = "(CONNECT_DATA = (SID = s)))\n";
  const auto fixes_of = [](const std::string &content) {
    const kztns::NamesText text(content);
    kztns::Mender mender(text, {.file = "names", .with_unsafe = true});
    mender.apply_fixes();
    std::string lines;
    for (const auto &[finding, done] : mender.mended())
      lines += std::string(row_of(finding.rule).id) + " " + finding.entry + ": " + done + "\n";
    return lines;
  };
  const std::string of_b = "extra-close b: removed \")\"\n";
  EXPECT_EQ(fixes_of(begin + "\xC2\xA0" + rest),
            "odd-bytes : replaced \"\\xc2\\xa0\" by \" \"\n" + of_b);
  EXPECT_EQ(fixes_of("\xEF\xBB\xBF" + begin + rest),
            "byte-order-mark \xEF\xBB\xBF"
            "b: removed \"\\xef\\xbb\\xbf\"\n" +
                of_b);
}

TEST_F(FileRules, AnEntryWhoseNameIsInACommentMayHaveARemarkThere) {
  const std::string text = entry("a") + "# b (old) =\n" + block + "\n" + entry("c");
  EXPECT_EQ(unsafely_fixed(text), entry("a") + "# b (old) =\n# " + block + "\n" + entry("c"));
}

TEST_F(FileRules, ParenthesesAroundAnEntryAreRemoved) {
  const std::string rest = entry("b");
  EXPECT_EQ(told("(a = " + block + ")\n" + rest),
            "1:1 stray-text: expected a name, found \"(\": the entry after it is lost: b\n");
  EXPECT_EQ(unsafely_fixed("(a = " + block + ")\n" + rest), "a = " + block + "\n" + rest);
  const std::string settings = "KZCISYSTEMVARIABLES = (LOG_LEVEL = WARN)(LOG_COUNT = 3)";
  EXPECT_EQ(unsafely_fixed("(" + settings + ")\n"), settings + "\n");
  EXPECT_EQ(unsafely_fixed("(a = 1)\n" + rest), "# (a = 1)\n" + rest);
  EXPECT_EQ(unsafely_fixed("(a)\n" + rest), "# (a)\n" + rest);
}

TEST_F(FileRules, AnEntryThatIsOnlyOpenedEndsBeforeTheNextOne) {
  const std::string text = "a = (\n" + entry("b") + entry("c");
  EXPECT_EQ(count_of(told(text), "expected \")\" before the next entry at 2:1"), 1u);
  expect_served(unsafely_fixed(text), {"b", "c"});
}

TEST_F(FileRules, OfTwoOpenBlocksTheSecondIsNotSaidToEndWithTheFile) {
  const std::string text =
      "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)(CONNECT_DATA = (SID = s))\n" + entry("b");
  EXPECT_EQ(count_of(told(text), "DESCRIPTION is not closed: expected \")\" before the next entry"),
            1u);
  expect_served(unsafely_fixed(text), {"a", "b"});
}

TEST_F(FileRules, SettingsComeToTheReservedEntryAgain) {
  const std::string first = "KZCISYSTEMVARIABLES = (LOG_LEVEL = WARN)";
  const std::string second = "(LOG_COUNT = 3)\n";
  EXPECT_EQ(left_by_mender(first + ", " + second, false), first + " " + second);
  EXPECT_EQ(left_by_mender(first + "\n// c\n" + second, false), first + "\n# // c\n" + second);
  EXPECT_EQ(left_by_mender(first + ";" + second, true), first + second);
  EXPECT_EQ(left_by_mender(first + ")" + second, true), first + second);
  EXPECT_EQ(left_by_mender("KZCISYSTEMVARIABLES = \\\n(LOG_LEVEL = WARN) \\\n" + second, true),
            "KZCISYSTEMVARIABLES =\n(LOG_LEVEL = WARN)\n" + second);
  // Those in force are not given up for one that is refused.
  EXPECT_EQ(left_by_mender(first + ", (LOG_COUNT = x)\n", true), first + ", (LOG_COUNT = x)\n");
}

TEST_F(FileRules, AColonMakesNoEntryOfItsOwn) {
  EXPECT_EQ(left_by_mender("a := " + block + "\n", true), "a = " + block + "\n");
  EXPECT_EQ(left_by_mender("a = (DESCRIPTION := (SID = s))\n", false).find("\n:"),
            std::string::npos);
}

TEST_F(FileRules, ASemicolonBeforeAnEntryOnItsLineIsRemoved) {
  EXPECT_EQ(left_by_mender("a = " + block + "; b = " + block + "\n", true),
            "a = " + block + " b = " + block + "\n");
  EXPECT_EQ(left_by_mender("a = " + block + " ; b\n" + entry("c"), false),
            "a = " + block + " # ; b\n" + entry("c"));
}

TEST_F(FileRules, OfTextBeforeABlockTheBlockIsNotToldToo) {
  EXPECT_EQ(
      told("a = = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n (CONNECT_DATA = (SID = s)))\n"),
      "1:5 no-block: expected \"(\" after \"=\", found \"=\"; no lookup gets past it\n");
}

TEST_F(FileRules, AValueAfterCommentsOfOthersIsNoStrayText) {
  const std::string rest = block + "\n" + entry("b");
  EXPECT_EQ(left_by_mender("a =\n-- c\n-- d\n" + rest, true), "a =\n# -- c\n# -- d\n" + rest);
  EXPECT_EQ(count_of(told("a = x # (1)\n" + rest), "stray-text"), 0u);
  EXPECT_EQ(count_of(told("/* (x) */\n" + entry("b")), "stray-text"), 1u);
}

TEST_F(FileRules, ANameWithBlanksKeepsItsEntry) {
  for (const std::string name : {"my db =\n", "my db = ", "my db\n= "}) {
    const std::string text = name + block + "\n" + entry("b");
    EXPECT_EQ(left_by_mender(text, true), text);
  }
}

// A zero byte ends a comment for one reader and not for the other.
TEST_F(FileRules, FixesThatUndoEachOtherEnd) {
  const std::string text = "a = (ADDRESS = #\0 (HOST = h)x\n"s + entry("b") + ")\n";
  EXPECT_LT(left_by_mender(text, true).size(), 2 * text.size());
}

TEST_F(FileRules, AValueOnTheNextLineIsNoStrayText) {
  const std::string text = "a = \\\n  " + block + "\n" + entry("b");
  EXPECT_EQ(count_of(told(text), "stray-text"), 0u);
  expect_served(safely_fixed(text), {"a", "b"});
}

// Reading the rest of the file for each of them would take minutes.
TEST_F(FileRules, OfManyLinesThatAreNoValueEachIsReadOnce) {
  for (const std::string line : {"a = \\\n", "a = DESCRIPTION = (X\n", "a = {DESCRIPTION\n", "/*\n",
                                 "HOST = x\n", "a\n= x\n"}) {
    std::string text;
    for (int i = 0; i < 100'000; ++i) text += line;
    const kztns::NamesText names(text);
    EXPECT_GE(kztns::check_once(names, {.file = "names"}).findings.size(), 1000u) << line;
  }
}

// It would be lost in a comment.
TEST_F(FileRules, AnEntryThatIsWrittenOtherwiseStays) {
  for (const std::string &stray :
       {"export a='" + block + "'\n", "| a | " + block + " |\n",
        "<e name=\"a\">" + block + "</e>\n", "a (test) = " + block + "\n",
        "a (test) =\n  " + block + "\n", "=a =\n  " + block + "\n", "a: |\n  " + block + "\n"}) {
    EXPECT_EQ(left_by_mender(stray + entry("b"), true), stray + entry("b"));
    const kztns::NamesText names(stray + entry("b"));
    const kztns::CheckReport report = kztns::check_file(names, {.file = "names"});
    EXPECT_EQ(report.findings.front().rule, kztns::Rule::stray_text) << stray;
    EXPECT_EQ(report.findings.front().remedy, "write NAME = (DESCRIPTION = ...)") << stray;
  }
}

TEST_F(FileRules, AnEntryHasOneName) {
  for (const std::string names : {"a c = ", "a; c =\n  ", "a / c\n= ", "Test: a = ", "set a="}) {
    const std::string text = names + block + "\n";
    EXPECT_EQ(left_by_mender(text, true), text);
    EXPECT_EQ(remedies(text), "write one name before \"=\", or an entry for each name\n") << names;
  }
  // Words on a line of their own are none.
  EXPECT_EQ(remedies("a c\n" + entry("b")), "remove it, or begin each line with \"#\"\n");
}

TEST_F(FileRules, WordsAboutADescriptionAreNoEntry) {
  const std::string stray = "x # the old (DESCRIPTION = y)\n";
  EXPECT_EQ(left_by_mender(stray + entry("b"), true), "# " + stray + entry("b"));
}

TEST_F(FileRules, TheRestOfAnEntryWhoseNameIsInCommentsBecomesAComment) {
  EXPECT_EQ(left_by_mender("# old =\n#\n\n# c\n" + block + "\n" + entry("b"), true),
            "# old =\n#\n\n# c\n# " + block + "\n" + entry("b"));
}

TEST_F(FileRules, SingleQuotesAroundAnEntryAreRemoved) {
  for (const std::string &line :
       {"a: '" + block + "'\n", "'a': '" + block + "',\n", "\"a\": \"" + block + "\"\n"})
    EXPECT_EQ(left_by_mender(line + entry("b"), true), "a = " + block + "\n" + entry("b")) << line;
  EXPECT_EQ(left_by_mender("\"it's\": \"" + block + "\"\n", true), "it's = " + block + "\n");
  // One kind does not close the other.
  const std::string mixed = "'a': '" + block + "\"\n";
  EXPECT_EQ(left_by_mender(mixed + entry("b"), true), mixed + entry("b"));
}

TEST_F(FileRules, SignsOfMailsAndNumbersOfListsAreRemoved) {
  EXPECT_EQ(left_by_mender(">> a =\n>>   " + block + "\n" + entry("b"), true),
            "a =\n  " + block + "\n" + entry("b"));
  EXPECT_EQ(left_by_mender(">> " + entry("a") + ">> " + entry("b"), true), entry("a") + entry("b"));
  EXPECT_EQ(left_by_mender("1. a =\n  " + block + "\n2. b =\n  " + block + "\n", true),
            "a =\n  " + block + "\nb =\n  " + block + "\n");
}

TEST_F(FileRules, SignsAreNoNames) {
  EXPECT_EQ(left_by_mender(entry("a") + "},\n" + entry("b"), false),
            entry("a") + "},\n" + entry("b"));
  EXPECT_EQ(left_by_mender(entry("a") + "},\n" + entry("b"), true),
            entry("a") + "# },\n" + entry("b"));
  EXPECT_EQ(left_by_mender(entry("a") + "}, " + entry("b"), true), entry("a") + "}, " + entry("b"));
  EXPECT_EQ(left_by_mender("__, " + entry("b"), false), "__ = " + block + "\n" + entry("b"));
}

TEST_F(FileRules, ASemicolonAfterTheLastEntryIsAComment) {
  EXPECT_EQ(left_by_mender("a = " + block + ";\nb = " + block + ";\n", false),
            "a = " + block + "# ;\nb = " + block + "# ;\n");
  EXPECT_EQ(told("a = " + block + ";\n"),
            "1:" + std::to_string(5 + block.size()) +
                " stray-text: \";\" is read as a name: no lookup gets past it\n");
}

TEST_F(FileRules, AnIfileThatNamesNoFileIsToldAtItsEqualSign) {
  EXPECT_EQ(told("IFILE = # a = c\n" + entry("b")),
            "1:7 ifile: IFILE is read as a name, and names no file; the entry after it is lost: "
            "b\n");
  // Its file is on the next line.
  EXPECT_EQ(told("IFILE =\n  other.ora\n" + entry("b")),
            "2:3 ifile: IFILE is read as a name: included files are not supported; the entry after "
            "it is lost: b\n");
  EXPECT_EQ(told("IFILE =\n" + entry("b")),
            "1:7 ifile: IFILE is read as a name, and names no file; the entry after it is lost: "
            "b\n");
}

TEST_F(FileRules, AFullWidthParenthesisIsReplacedWhereOneIsMissing) {
  EXPECT_EQ(left_by_mender("a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n"
                           " \xEF\xBC\x88"
                           "CONNECT_DATA = (SID = s)))\n",
                           true),
            "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n (CONNECT_DATA = (SID = s)))\n");
}

TEST_F(FileRules, ACommentBeforeAValueIsNone) {
  EXPECT_EQ(count_of(told("a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = # e.g. 1) 1521\n"
                          "  1521 x))(CONNECT_DATA = (SID = s)))\n"),
                     "comment-in-value"),
            0u);
}

TEST_F(FileRules, ACommentForAValueIsToldAsThatAlone) {
  EXPECT_EQ(told("a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = #{port}))"
                 "(CONNECT_DATA = (SID = s)))\n" +
                 entry("b")),
            "1:49 comment-in-value: this comment is where the value of PORT is expected, and hides "
            "the \")\": found \"=\" at 2:3\n");
}

TEST_F(FileRules, AFullWidthEqualSignIsReplaced) {
  const std::string text = "a \xEF\xBC\x9D " + block + "\n" + entry("b");
  EXPECT_EQ(
      told(text),
      "1:3 missing-equal: expected \"=\" after the name \"a\", found \"\uFF1D\": the entry after "
      "it is lost: b\n");
  EXPECT_EQ(left_by_mender(text, true), "a = " + block + "\n" + entry("b"));
}
