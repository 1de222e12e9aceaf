// What keeps lookups from entries: what is told of it, and what its fix makes of the file.
#include <algorithm>

#include "check/check_once.h"
#include "check/stop_causes.h"
#include "fixes/file_fixes.h"
#include "support/checked_file.h"

using namespace std::string_literals;
using namespace support;

TEST_F(FileRules, EntriesThatAreSkippedAsPartOfAnotherOne) {
  const std::string open =
      "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)(CONNECT_DATA = (SID = s)))\n";
  const std::string closed = entry("d").substr(0, entry("d").size() - 1) + ")\n";
  EXPECT_TRUE(told(open + entry("b") + entry("c") + closed)
                  .ends_with("2:1 unreachable: lookups skip it as part of a at 1:1, and the 2 "
                             "entries after it: c, d\n"))
      << told(open + entry("b") + entry("c") + closed);
}

TEST_F(FileRules, WhatEndsLookupsIsToldWithoutTheEntry) {
  const kztns::NamesText open("a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n" + entry("b"));
  EXPECT_EQ(kztns::cause_of_stop(kztns::FileScan(open)).text, "the parentheses of a never balance");
}

TEST_F(FileRules, AllStrayLinesAreToldInOneWalk) {
  const std::string text = "-- one\n" + entry("a") + "two\n" + entry("b") + "IFILE = /x\n" +
                           entry("c") + "IFILE=/y\n)\nn (DESCRIPTION = (SID = s))\nlast";
  const kztns::NamesText names(text);
  const kztns::CheckReport once = kztns::check_once(names, {.file = "names"});
  std::string rules;
  for (const kztns::Finding &finding : once.findings)
    rules += to_string(finding.position) + " " + std::string(row_of(finding.rule).id) + "\n";
  EXPECT_EQ(rules,
            "1:1 stray-text\n3:1 stray-text\n5:9 ifile\n7:7 ifile\n8:1 extra-close\n"
            "9:3 missing-equal\n10:1 lost-name\n");
}

TEST_F(FileRules, OneLineTellsWhatIsLost) {
  std::string text = "just text\n";
  for (int i = 0; i < 66; ++i) text += entry("n" + std::to_string(i));
  EXPECT_EQ(
      told(text),
      "1:1 stray-text: \"just\" is read as a name, but no \"=\" follows: the 66 entries after "
      "it are lost: n0, n1, n2 and 63 more\n");
  EXPECT_EQ(
      told("just text\n" + entry("a")),
      "1:1 stray-text: \"just\" is read as a name, but no \"=\" follows: the entry after it is "
      "lost: a\n");
  EXPECT_EQ(told(entry("a") + "just text\n"),
            "2:1 stray-text: \"just\" is read as a name, but no \"=\" follows: no lookup gets past "
            "it\n");
}

TEST_F(FileRules, WhatAnEntryHidesIsNotLostToTheNextStop) {
  const std::string text = "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)) # (\n" +
                           "  (CONNECT_DATA = (SID = s)))\n"s + entry("b") + "# )\nstray\n" +
                           entry("c");
  EXPECT_EQ(count_of(told(text), "the entry after it is lost: b"), 1u);
  EXPECT_EQ(count_of(told(text), "the entry after it is lost: c"), 1u);
}

TEST_F(FileRules, AfterTheReservedEntryOneLineIsEnough) {
  const std::string reserved = "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n";
  EXPECT_EQ(
      told(reserved + entry("a")),
      "2:1 after-reserved: comes after KZCISYSTEMVARIABLES at 1:1, where every lookup ends\n");
  EXPECT_EQ(
      told(reserved + entry("a") + entry("b")),
      "2:1 after-reserved: comes after KZCISYSTEMVARIABLES at 1:1, where every lookup ends; so "
      "does the entry after it: b\n");
  EXPECT_EQ(
      told(reserved + entry("a") + entry("b") + entry("c") + entry("d") + entry("e")),
      "2:1 after-reserved: comes after KZCISYSTEMVARIABLES at 1:1, where every lookup ends; so "
      "do the 4 entries after it: b, c, d and 1 more\n");
}

TEST_F(FileRules, WhatIsAfterTheReservedEntryAsWellAsAfterStrayTextIsTold) {
  EXPECT_EQ(
      told("!\n" + entry("a") + "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n" + entry("b")),
      "1:1 stray-text: \"!\" is read as a name, but no \"=\" follows: the 3 entries after it are "
      "lost: a, KZCISYSTEMVARIABLES, b\n"
      "4:1 after-reserved: comes after KZCISYSTEMVARIABLES at 3:1, where every lookup ends\n");
}

TEST_F(FileRules, EntriesMoveBeforeTheReservedOne) {
  const std::string before = entry("a") +
                             "\n# settings\n#\nKZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n"
                             "  (LOG_SIZE = 2000000) # end\n\n# archive\n" +
                             entry("b") + "\n" + entry("c") + "# the end\n";
  const std::string after = entry("a") + "\n# archive\n" + entry("b") + "\n" + entry("c") +
                            "\n# settings\n#\nKZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n"
                            "  (LOG_SIZE = 2000000) # end\n# the end\n";
  EXPECT_EQ(safely_fixed(before), after);
  EXPECT_EQ(told(after), "");
  expect_served(after, {"a", "b", "c", "KZCISYSTEMVARIABLES"});
}

TEST_F(FileRules, EntriesMoveBeforeTheReservedOneWithoutAFinalLineFeed) {
  const std::string before = "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\r\nb = " + block;
  const std::string after = "b = " + block + "\r\nKZCISYSTEMVARIABLES = (LOG_COUNT = 5)\r\n";
  EXPECT_EQ(safely_fixed(before), after);
  expect_served(after, {"b", "KZCISYSTEMVARIABLES"});
}

TEST_F(FileRules, TheReservedEntryStaysWhereLookupsOfItCome) {
  const std::string text =
      "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n" + entry("a") + "IFILE = /x\n" + entry("b");
  const std::string after =
      entry("a") + "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\nIFILE = /x\n" + entry("b");
  EXPECT_EQ(safely_fixed(text), after);
  EXPECT_EQ(safely_fixed(after), after);
  expect_served(after, {"a", "KZCISYSTEMVARIABLES"});
  const std::string unclosed =
      "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\na = (DESCRIPTION = (SID = s)\n";
  EXPECT_EQ(safely_fixed(unclosed), unclosed);
  // A second one stays the second one, and goes with it.
  const std::string two = "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n" + entry("a") +
                          "KZCISYSTEMVARIABLES = (LOG_COUNT = 6)\n" + entry("b");
  EXPECT_EQ(safely_fixed(two), entry("a") + entry("b") +
                                   "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n"
                                   "KZCISYSTEMVARIABLES = (LOG_COUNT = 6)\n");
  // It is put at the end of a line.
  const std::string b = entry("b").substr(0, entry("b").size() - 1) + " stray\n";
  EXPECT_EQ(safely_fixed("KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n" + entry("a") + b + entry("c")),
            entry("a") + "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n" + b + entry("c"));
  // Nothing comes after this one.
  const std::string last = "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n" + entry("a") +
                           "KZCISYSTEMVARIABLES = (LOG_COUNT = 6)\n";
  EXPECT_EQ(safely_fixed(last), entry("a") +
                                    "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n"
                                    "KZCISYSTEMVARIABLES = (LOG_COUNT = 6)\n");
}

TEST_F(FileRules, AnEntryThatIsBegunBeforeAnotherOfItsNameBecomesAComment) {
  const std::string begun = "a = (DESCRIPTION = (ADDRESS = (PROTOCOL = TCP)\n";
  EXPECT_EQ(unsafely_fixed(begun + entry("a") + entry("b")),
            "# " + begun + entry("a") + entry("b"));
  EXPECT_EQ(unsafely_fixed("a = (\n" + entry("a")), "# a = (\n" + entry("a"));
  // It has no value at all.
  EXPECT_EQ(unsafely_fixed("a =\n\n" + entry("b")), "# a =\n\n" + entry("b"));
  EXPECT_EQ(unsafely_fixed(entry("b") + "a ="), entry("b") + "# a =");
  // The name only begins like it.
  EXPECT_EQ(unsafely_fixed(begun + entry("ab")),
            "a = (DESCRIPTION = (ADDRESS = (PROTOCOL = TCP)))\n" + entry("ab"));
}

TEST_F(FileRules, ABlockWhoseNameIsAComment) {
  const std::string block = " (DESCRIPTION = (ADDRESS = (HOST = i)(PORT = 1)))\n";
  EXPECT_EQ(unsafely_fixed(entry("a") + "#b =\n" + block + entry("c")),
            entry("a") + "#b =\n# " + block + entry("c"));
  // To lookups of "a" it is a second server.
  const std::string last = entry("a") + "# b = # old\n" + block;
  const kztns::CheckReport report = kztns::check_file(kztns::NamesText(last), {"names.ora"});
  ASSERT_EQ(report.findings.size(), 1u);
  EXPECT_EQ(report.findings[0].severity, kztns::Severity::warning);
  EXPECT_EQ(report.findings[0].text,
            "read as part of this entry: the name of the block, \"b\", is in a comment at 2:3");
  EXPECT_EQ(unsafely_fixed(last), entry("a") + "# b = # old\n# " + block);
}

TEST_F(FileRules, AnEntryOfWhichTheFirstLinesAreComments) {
  const std::string rest = "  (ADDRESS = (HOST = i)(PORT = 1))\n  (CONNECT_DATA = (SID = t)))\n";
  const std::string rest_as_comment =
      "#   (ADDRESS = (HOST = i)(PORT = 1))\n#   (CONNECT_DATA = (SID = t)))\n";
  for (const std::string first : {"#b = (DESCRIPTION =\n", "#b =\n#(DESCRIPTION =\n"})
    EXPECT_EQ(unsafely_fixed(entry("a") + first + rest + entry("c")),
              entry("a") + first + rest_as_comment + entry("c"));
}

TEST_F(FileRules, LinesOfAMailAndNumberedLines) {
  const std::string lines[] = {"b =", "  (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))",
                               "    (CONNECT_DATA = (SID = s)))"};
  const std::string plain = lines[0] + "\n" + lines[1] + "\n" + lines[2] + "\n";
  const auto prefixed = [&](const std::vector<std::string> &prefixes) {
    std::string text;
    for (std::size_t i = 0; i < prefixes.size(); ++i) text += prefixes[i] + lines[i] + "\n";
    return text;
  };
  for (const auto &prefixes :
       {std::vector<std::string>{"> ", "> ", "> "}, {"8 ", "9 ", "10 "}, {"1: ", "2: ", "3: "}})
    EXPECT_EQ(unsafely_fixed(entry("a") + prefixed(prefixes) + entry("c")),
              entry("a") + plain + entry("c"))
        << prefixes[0];
  // No numbering.
  EXPECT_EQ(unsafely_fixed(entry("a") + "1 2\n" + entry("c")), entry("a") + "# 1 2\n" + entry("c"));
}

// A whole entry, a key, a remark.
TEST_F(FileRules, CommentsBetweenBlocksThatAreNoNames) {
  const std::string block = entry("a").substr(std::string("a =").size());
  for (const std::string comment :
       {"#b = (DESCRIPTION =\n#  (SID = s))\n", "# ADDRESS =\n", "# b = c\n", "# b\n"}) {
    const kztns::CheckReport report = kztns::check_file(
        kztns::NamesText(entry("a") + comment + block + entry("c")), {"names.ora"});
    ASSERT_EQ(report.findings.size(), 1u) << comment;
    EXPECT_EQ(report.findings[0].rule, kztns::Rule::second_block) << comment;
  }
}

TEST_F(FileRules, AParenthesisIsPutInForOneThatACommentHides) {
  const std::string after = "\n  (CONNECT_DATA = (SID = s)))\n" + entry("b");
  EXPECT_EQ(unsafely_fixed("a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1) # old)" + after),
            "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)) # old]" + after);
}

// The last lines of an entry stand twice.
TEST_F(FileRules, LinesAfterACompleteEntryAreLeftOver) {
  const std::string text = entry("a") + ")\n(CONNECT_DATA = (SID = t))\n" + entry("b");
  EXPECT_EQ(told(text),
            "2:1 left-over: text after this entry, which is complete before it; the entry after it "
            "is lost: b\n");
  EXPECT_EQ(unsafely_fixed(text), entry("a") + "# )\n# (CONNECT_DATA = (SID = t))\n" + entry("b"));
  // Alone it is one parenthesis too many.
  EXPECT_EQ(told(entry("a") + ")\n" + entry("b")),
            "2:1 extra-close: unmatched \")\": the entry after it is lost: b\n");
}

TEST_F(FileRules, AListOfNamesBecomesAnEntryAName) {
  const std::string spaced = "x, y = " + block + " # both\n" + entry("z");
  EXPECT_EQ(
      told(spaced),
      "1:1 comma-list: a list of names is not an entry: no lookup finds x, y; the entry after "
      "it is lost: z\n");
  EXPECT_EQ(safely_fixed(spaced), "x = " + block + " # both\ny = " + block + "\n" + entry("z"));
  expect_served(safely_fixed(spaced), {"x", "y", "z"});
  EXPECT_EQ(safely_fixed("x,y,z = " + block), "x = " + block + "\ny = " + block + "\nz = " + block);
  EXPECT_EQ(safely_fixed("x, # first\ny # second\n= " + block + "\n"),
            "x # first\n # second\n= " + block + "\ny = " + block + "\n");
  expect_served(safely_fixed("x, # first\ny # second\n= " + block + "\n"), {"x", "y"});
}

TEST_F(FileRules, WhatComesAfterAListIsMendedAfterIt) {
  const std::string split = entry("a") + entry("b");
  EXPECT_EQ(safely_fixed("a, b = " + block + "\n; note\n" + entry("c")),
            split + "; note\n" + entry("c"));
  EXPECT_EQ(safely_fixed(split + "; note\n" + entry("c")), split + "# ; note\n" + entry("c"));
}

TEST_F(FileRules, ANameOfAListWithAnEntryOfItsOwnIsNoDuplicate) {
  const std::string text = "x, y = " + block + "\n" + entry("y");
  EXPECT_EQ(
      told(text),
      "1:1 comma-list: a list of names is not an entry: no lookup finds x, y; the entry after "
      "it is lost: y\n");
  EXPECT_EQ(safely_fixed(text), "x = " + block + "\n" + entry("y"));
}

TEST_F(FileRules, ADuplicateIsToldInTheOrderOfTheFile) {
  EXPECT_EQ(count_of(told("a = " + block + " " + block + "\na, b = " + block + "\n" + entry("c")),
                     "duplicate"),
            0u);
  EXPECT_EQ(count_of(told("a = " + block + " " + block + "\nb, a = " + block + "\n" + entry("c")),
                     "2:4 duplicate: duplicate name: the first entry, at 1:1, is used"),
            1u);
}

TEST_F(FileRules, AByteOrderMarkIsRemoved) {
  EXPECT_EQ(safely_fixed("\xEF\xBB\xBF" + entry("a")), entry("a"));
  EXPECT_EQ(safely_fixed("\xEF\xBB\xBF# names\n" + entry("a")), "# names\n" + entry("a"));
  EXPECT_EQ(safely_fixed(entry("a") + "\xEF\xBB\xBF" + entry("b")), entry("a") + entry("b"));
}

TEST_F(FileRules, Utf16IsConverted) {
  const std::string plain = "# \xC3\xA4\xF0\x9F\x98\x80\r\n" + entry("a");
  std::string little;
  for (const char32_t unit : u"# \u00E4\U0001F600\r\n") {
    if (unit == 0) break;
    little += static_cast<char>(unit & 0xFF);
    little += static_cast<char>(unit >> 8);
  }
  std::string big;
  for (const char c : entry("a")) (little += c) += '\0';
  for (std::size_t i = 0; i < little.size(); i += 2) (big += little[i + 1]) += little[i];
  for (const std::string &text : {"\xFF\xFE" + little, "\xFE\xFF" + big, little, big}) {
    EXPECT_EQ(told(text), "1:1 utf-16: the file is in UTF-16, in which no name can be read\n");
    EXPECT_EQ(safely_fixed(text), plain);
  }
  expect_served(plain, {"a"});
  EXPECT_EQ(told("ab = (LOG_COUNT = 5)\n\0"s).find("utf-16"), std::string::npos);
}

TEST_F(FileRules, OfUtf16TheFaultsAreToldAtThePlacesOfTheConvertedText) {
  std::string text = "\xFF\xFE";
  for (const char c : entry("a") + "stray\n" + entry("b")) (text += c) += '\0';
  EXPECT_EQ(
      told(text),
      "1:1 utf-16: the file is in UTF-16, in which no name can be read\n"
      "2:1 stray-text: \"stray\" is read as a name, but no \"=\" follows: the entry after it is "
      "lost: b\n");
}

TEST_F(FileRules, CarriageReturnsAloneDoNotEndComments) {
  std::string text = "# names\r" + entry("a") + entry("b");
  for (char &c : text)
    if (c == '\n') c = '\r';
  EXPECT_EQ(told(text),
            "1:8 cr-line-ends: a carriage return alone does not end this comment: what follows is "
            "part of it\n");
  EXPECT_EQ(safely_fixed(text), "# names\n" + entry("a") + entry("b"));
  EXPECT_EQ(told("a = " + block + "\rb = " + block + "\r"), "");
  EXPECT_EQ(told("# names\r\n" + entry("a")), "");
  // Faults after that are told in their lines.
  EXPECT_EQ(told("# names\rstray\r"),
            "1:8 cr-line-ends: a carriage return alone does not end this comment: what follows is "
            "part of it\n"
            "2:1 lost-name: \"stray\" at the end of the file is lost\n");
}

TEST_F(FileRules, InvisibleCharactersBecomeBlanks) {
  const std::string space = "\xC2\xA0";
  EXPECT_EQ(safely_fixed(space + entry("a")), " " + entry("a"));
  EXPECT_EQ(safely_fixed("a" + space + "= " + block + "\n"), "a = " + block + "\n");
  EXPECT_EQ(safely_fixed(entry("a") + space + "\n" + entry("b")), entry("a") + " \n" + entry("b"));
  EXPECT_EQ(
      told(entry("a") + space + "\n" + entry("b")),
      "2:1 odd-bytes: the invisible character \\xc2\\xa0 is read as a name: the entry after it is "
      "lost: b\n");
  EXPECT_EQ(safely_fixed(entry("a") + "\x1A"), entry("a") + " ");
  EXPECT_EQ(safely_fixed("a\xE2\x80\x8B"
                         "b = " +
                         block),
            "ab = " + block);
  EXPECT_EQ(safely_fixed("a" + space + "b = " + block), "a" + space + "b = " + block);
  EXPECT_EQ(unsafely_fixed("a" + space + "b = " + block), "ab = " + block);
}

TEST_F(FileRules, ACommaAfterAnEntryIsRemoved) {
  const std::string text = "a = " + block + ",\n" + entry("b") + ", " + entry("c");
  EXPECT_EQ(told("a = " + block + ",\n" + entry("b")),
            "1:" + std::to_string(5 + block.size()) +
                " stray-comma: a comma after an entry: the entry after it is lost: b\n");
  EXPECT_EQ(safely_fixed(text), entry("a") + entry("b") + " " + entry("c"));
  EXPECT_EQ(safely_fixed(entry("a") + "," + entry("b")), entry("a") + entry("b"));
  EXPECT_EQ(safely_fixed("a = " + block + ","), "a = " + block);
  expect_served(safely_fixed(text), {"a", "b", "c"});
}

TEST_F(FileRules, CommentsOfOtherReadersBecomeComments) {
  const std::string text = "-- one\n" + entry("a") + "  ; two (\n// three\n! four\n" + entry("b");
  EXPECT_EQ(safely_fixed(text),
            "# -- one\n" + entry("a") + "  # ; two (\n# // three\n# ! four\n" + entry("b"));
  expect_served(safely_fixed(text), {"a", "b"});
  EXPECT_EQ(safely_fixed("! last"), "# ! last");
  EXPECT_EQ(safely_fixed("; a = b\n" + entry("a")), "# ; a = b\n" + entry("a"));
  EXPECT_EQ(safely_fixed(";a = b\n" + entry("a")), "# ;a = b\n" + entry("a"));
}

TEST_F(FileRules, StrayTextBecomesAComment) {
  const std::string text = "these are\n" + entry("a") + "(HOST = h\n  (PORT = 1))\n" + entry("b");
  EXPECT_EQ(safely_fixed(text), text);
  EXPECT_EQ(unsafely_fixed(text),
            "# these are\n" + entry("a") + "# (HOST = h\n#   (PORT = 1))\n" + entry("b"));
  expect_served(unsafely_fixed(text), {"a", "b"});
}

TEST_F(FileRules, AWordAtTheEndBecomesAComment) {
  EXPECT_EQ(unsafely_fixed(entry("a") + "b"), entry("a") + "# b");
  EXPECT_EQ(safely_fixed(entry("a") + "b"), entry("a") + "b");
}

TEST_F(FileRules, ManyStopsAreCountedAndFewAreShown) {
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "stray line\n";
  const kztns::NamesText names(text);
  const kztns::CheckReport report = kztns::check_file(names, {.file = "names"});
  EXPECT_EQ(report.findings.size(), 1000u);
  EXPECT_EQ(count(report, kztns::Severity::error), 5000u);
}

TEST_F(FileRules, WhatIsCopiedIsNotToldTwice) {
  const std::string text =
      "x, y = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = none))"
      "(CONNECT_DATA = (SID = s)))\n";
  EXPECT_EQ(count_of(told(text), "bad-port"), 1u);
  const std::string moved = "KZCISYSTEMVARIABLES = (LOG_COLOR = 5)\n" + entry("a");
  EXPECT_EQ(count_of(told(moved), "unknown-setting"), 1u);
}

TEST_F(FileRules, ManyParenthesesAreOneFindingAndOneEdit) {
  const kztns::NamesText names(entry("a") + std::string(100'000, ')') + "\n" + entry("b"));
  const kztns::CheckReport report = kztns::check_file(names, {.file = "names"});
  ASSERT_EQ(report.findings.size(), 1u);
  EXPECT_EQ(report.findings[0].fix.edits.size(), 1u);
}

// From so many on, one edit takes less memory.
TEST_F(FileRules, ManyLineEndsAreOneEdit) {
  constexpr std::size_t most = 100'000;
  const std::string ends(most, '\r');
  EXPECT_EQ(kztns::fix_of_line_ends("x" + ends + "\r\n").edits.size(), most);
  const kztns::Fix fix = kztns::fix_of_line_ends("x" + ends + "\ry\r\n");
  ASSERT_EQ(fix.edits.size(), 1u);
  EXPECT_EQ(fix.edits[0].text, "x" + std::string(most + 1, '\n') + "y\r\n");
}

// What is no whole list of names with a value has no fix.
TEST_F(FileRules, AListThatIsNotWholeStaysAsItIs) {
  for (const std::string &list : {"x, y"s, "x, y " + block, "x, y,"s, "x, y = (DESCRIPTION = (SID"s,
                                  "x, y = " + block + " z"}) {
    const std::string text = entry("a") + list + "\n";
    EXPECT_EQ(safely_fixed(text), text);
  }
}

// Lookups that find other entries of the names would find those of the list before them.
TEST_F(FileRules, AListWhoseNamesComeLaterStaysAsItIs) {
  const std::string list = "x, y = " + block + "\n";
  const std::string text = list + entry("x") + entry("y");
  EXPECT_EQ(safely_fixed(text), text);
  EXPECT_EQ(safely_fixed(list + entry("x")), entry("y") + entry("x"));
}

TEST_F(FileRules, AListHasAtMost256Names) {
  std::string list = "n0";
  std::string entries = entry("n0");
  for (int i = 1; i < 256; ++i) {
    list += ", n" + std::to_string(i);
    entries += entry("n" + std::to_string(i));
  }
  EXPECT_EQ(safely_fixed(list + " = " + block + "\n"), entries);
  const std::string longer = list + ", n256 = " + block + "\n";
  EXPECT_EQ(safely_fixed(longer), longer);
}

TEST_F(FileRules, AListIsSplitAsLongAsItsCopiesHaveAMegabyte) {
  std::string long_block = "(DESCRIPTION = (ADDRESS_LIST =";
  for (int i = 0; i < 200; ++i) long_block += " (ADDRESS = (HOST = h)(PORT = 1))";
  long_block += ")(CONNECT_DATA = (SID = s)))";
  const auto list_of = [&](int names) {
    std::string list = "n0";
    for (int i = 1; i < names; ++i) list += ", n" + std::to_string(i);
    return list + " = " + long_block + "\n";
  };
  EXPECT_NE(safely_fixed(list_of(155)), list_of(155));
  EXPECT_EQ(safely_fixed(list_of(160)), list_of(160));
}

TEST_F(FileRules, ANameThatFillsTheBufferToItsEndIsTold) {
  const std::string comment = "#" + std::string(766, 'c') + "\n";
  const std::string told_of = told(comment + entry(std::string(256, 'x')));
  EXPECT_TRUE(told_of.starts_with(
      "2:1 key-refused: a name of 256 characters ends at a 1024-byte read boundary: "))
      << told_of;
}

TEST_F(FileRules, AByteOrderMarkIsAtTheBeginning) {
  const kztns::CheckReport report =
      kztns::check_once(kztns::NamesText("\xEF\xBB\xBF" + entry("a")), {.file = "names"});
  ASSERT_EQ(report.findings.size(), 1u);
  EXPECT_EQ(report.findings[0].rule, kztns::Rule::byte_order_mark);
  EXPECT_EQ(report.findings[0].at, 0u);
}

// Its parentheses are not searched then.
TEST_F(FileRules, AnEntryOfTooManyTokensIsToldByWhereItEnds) {
  std::string text = "a = (DESCRIPTION = (ADDRESS_LIST = ";
  for (int i = 0; i < 6000; ++i) text += "(ADDRESS = (HOST = h)(PORT = 1))";
  text += "(ADDRESS = (HOST = h";
  const std::string told_of = told(text);
  EXPECT_NE(told_of.find(" unclosed-block: the file ends with \"h\"; "), std::string::npos)
      << told_of;
}

TEST_F(FileRules, CommasInQuotesStay) {
  for (const std::string name : {"\"x,y\"", "\",x\"", "\"x,\""}) {
    EXPECT_NE(told(entry(name)), "") << name;
    EXPECT_EQ(unsafely_fixed(entry(name)), entry(name));
  }
}

TEST_F(FileRules, OfEachRuleAThousandAreShown) {
  const std::vector<std::pair<kztns::Rule, std::string>> lines = {
      {kztns::Rule::comma_list, entry("x%,y%")},
      {kztns::Rule::case_differs, entry("x%") + entry("X%")},
      {kztns::Rule::odd_bytes, entry("x%\xC2\xA0y")},
      {kztns::Rule::odd_bytes, "x% = (DESCRIPTION = (ADDRESS = (HOST = h\xC2\xA0i)))\n"},
      {kztns::Rule::abbreviated_word, "x% = (DESCRIPTION = (KZLB = OF))\n"},
      {kztns::Rule::no_port, "x% = (DESCRIPTION = (ADDRESS = (HOST = h)))\n"}};
  for (const auto &[rule, line] : lines) {
    SCOPED_TRACE(line);
    std::string text;
    for (int i = 0; i < 1003; ++i) {
      std::string numbered = line;
      for (std::size_t at; (at = numbered.find('%')) != std::string::npos;)
        numbered.replace(at, 1, std::to_string(i));
      text += numbered;
    }
    const kztns::CheckReport report = kztns::check_once(kztns::NamesText(text), {.file = "names"});
    EXPECT_EQ(kztns::left_out(report, rule), 3u);
    EXPECT_EQ(std::count_if(
                  report.findings.begin(), report.findings.end(),
                  [rule = rule](const kztns::Finding &finding) { return finding.rule == rule; }),
              1000);
  }
}

TEST_F(FileRules, ABlockThatIsOpenedTwiceIsToldAtTheSecondOne) {
  const std::string text = "a = (DESCRIPTION =\n  " + block + "\n" + entry("b");
  EXPECT_EQ(told(text),
            "2:3 extra-open: unmatched \"(\": DESCRIPTION is opened twice; lookups of later names "
            "read on to the end of the file at 4:1; the entry after it is lost: b\n");
  EXPECT_EQ(unsafely_fixed(text), "a = " + block + "\n" + entry("b"));
  // Settings may be between the two, but neither a server nor a service.
  EXPECT_EQ(unsafely_fixed("a = (DESCRIPTION = (KZLB = ON)\n  " + block + "\n" + entry("b")),
            "a = (DESCRIPTION = (KZLB = ON) (ADDRESS" + block.substr(block.find("(ADDRESS") + 8) +
                "\n" + entry("b"));
  for (const std::string first : {"(ADDRESS = (HOST = i)(PORT = 2))", "(CONNECT_DATA = (SID = t))",
                                  "(ADDRESS_LIST = (ADDRESS = (HOST = i)(PORT = 2)))"})
    EXPECT_EQ(told("a = (DESCRIPTION = " + first + "\n  " + block + "\n").find("opened twice"),
              std::string::npos)
        << first;
  const std::string address = "(ADDRESS = (PROTOCOL = TCP) (ADDRESS = (HOST = h)(PORT = 1))";
  EXPECT_EQ(unsafely_fixed("a = (DESCRIPTION = " + address + "(CONNECT_DATA = (SID = s)))\n"),
            "a = (DESCRIPTION = (ADDRESS = (PROTOCOL = TCP) (HOST = h)(PORT = 1))"
            "(CONNECT_DATA = (SID = s)))\n");
  // With a ")" for each "(" none is one too many.
  EXPECT_EQ(told("a = (DESCRIPTION =\n  " + block + ")\n" + entry("b")),
            "2:4 misplaced-key: misplaced key DESCRIPTION: it belongs in an entry itself\n");
}
