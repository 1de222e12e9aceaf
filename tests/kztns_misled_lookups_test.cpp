// Entries after which lookups find no name, or one in the wrong place.
#include "support/checked_file.h"

using namespace std::string_literals;
using namespace support;

TEST_F(FileRules, EachOfSeveralIncludedFilesIsTold) {
  const std::string both = "IFILE = /x\nIFILE=/y\n";
  EXPECT_EQ(told(entry("a") + both + entry("b")),
            "2:9 ifile: IFILE is read as a name: included files are not supported; the entry after "
            "it is lost: b\n"
            "3:7 ifile: IFILE is read as a name: included files are not supported; no lookup gets "
            "past it\n");
  EXPECT_EQ(count_of(told(both), "ifile"), 2u);
}

TEST_F(FileRules, EachOfSeveralLinesWithoutABlockIsToldAndMended) {
  const std::string lines = "a = h:1/s\nb = h:1/s # b\n";
  const std::string written =
      "(DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SERVICE_NAME = s)))";
  EXPECT_EQ(count_of(told(lines + entry("c")), "no-block"), 2u);
  EXPECT_EQ(unsafely_fixed(lines + entry("c")),
            "a = " + written + "\nb = " + written + " # b\n" + entry("c"));
  expect_served(unsafely_fixed(lines + entry("c")), {"a", "b", "c"});
  // More of the value on the line, or a block after it, is not understood.
  EXPECT_EQ(unsafely_fixed("a = h:1/s and\n"), "a = h:1/s and\n");
  EXPECT_EQ(unsafely_fixed("a = h:1/s\n  (b = c)\n"), "a = h:1/s\n  # (b = c)\n");
}

TEST_F(FileRules, BlocksWithoutADescriptionAreWrappedTogether) {
  const std::string address = "(ADDRESS = (HOST = h)(PORT = 1))";
  const std::string data = "(CONNECT_DATA = (SID = s))";
  for (const std::string &items : {address + data, "(ADDRESS_LIST = " + address + ")" + data,
                                   address + "\n  " + data, "(SDU = 1)" + address + data}) {
    EXPECT_EQ(count_of(told("a = " + items + "\n" + entry("b")), "misplaced-key: "), 1u) << items;
    EXPECT_EQ(count_of(told("a = " + items + "\n" + entry("b")), "the entry after it is lost: b"),
              1u)
        << items;
    EXPECT_EQ(count_of(told("stray\na = " + items + "\n" + entry("b")), "stray-text"), 1u) << items;
    EXPECT_EQ(count_of(told("a = " + items + "\n"), "no lookup gets past it"), 0u) << items;
    for (const char *const rule : {"stray-text", "second-block", "unclosed-block", "extra-close"})
      EXPECT_EQ(count_of(told("a = " + items + "\n" + entry("b")), rule), 0u) << rule << items;
  }
  EXPECT_EQ(safely_fixed("a = " + address + data + "\n" + entry("b")),
            "a = (DESCRIPTION = " + address + data + ")\n" + entry("b"));
  EXPECT_EQ(unsafely_fixed("a = (DESCRIPTION = " + address + ")" + data + "\n" + entry("b")),
            "a = (DESCRIPTION = " + address + data + ")\n" + entry("b"));
}

TEST_F(FileRules, UnmatchedParenthesesAreRemoved) {
  const std::string text = "a = " + block + ") )\n" + entry("b") + ")\n" + entry("c");
  EXPECT_EQ(safely_fixed(text), text);
  EXPECT_EQ(unsafely_fixed(text), "a = " + block + "\n" + entry("b") + "\n" + entry("c"));
  expect_served(unsafely_fixed(text), {"a", "b", "c"});
}

TEST_F(FileRules, ParenthesesInCommentsBecomeBrackets) {
  const std::string text =
      "a = (DESCRIPTION = (ADDRESS = (HOST = h)) # :-) (fine) :-(\n"
      " (CONNECT_DATA = (SID = s)) # b)\n)\n" +
      entry("b");
  const std::string after =
      "a = (DESCRIPTION = (ADDRESS = (HOST = h)) # :-] (fine) :-[\n"
      " (CONNECT_DATA = (SID = s)) # b]\n)\n" +
      entry("b");
  EXPECT_EQ(safely_fixed(text), after);
  expect_served(after, {"a", "b"});
}

TEST_F(FileRules, ParenthesesOfAnItemThatIsCommentedOutStay) {
  const std::string item = "# (ADDRESS =\n#   (HOST = i)\n\n # )\n";
  const std::string begin = "a = (DESCRIPTION = (ADDRESS = (HOST = h))\n" + item;
  EXPECT_EQ(safely_fixed(begin + " (CONNECT_DATA = (SID = s)) # b)\n)\n" + entry("b")),
            begin + " (CONNECT_DATA = (SID = s)) # b]\n)\n" + entry("b"));
  const std::string unclosed = begin + " (CONNECT_DATA = (SID = s))";
  const std::string after = "\n# c = (DESCRIPTION =\n#   (ADDRESS = (HOST = i)))\n\n# :-)\n";
  EXPECT_EQ(unsafely_fixed(unclosed + after + entry("b")), unclosed + ")" + after + entry("b"));
}

TEST_F(FileRules, ParenthesesInCommentsOfSeveralEntriesAreToldInOneWalk) {
  std::string text;
  for (const char *const name : {"a", "b", "c"})
    text += name +
            " = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)) # :-(\n"
            " (CONNECT_DATA = (SID = s)))\n"s;
  EXPECT_EQ(count_of(told(text), "paren-in-comment"), 3u);
  expect_served(safely_fixed(text), {"a", "b", "c"});
}

TEST_F(FileRules, ParenthesesInCommentsOfARefusedEntryAreToldAsWhatLeadsAstray) {
  const std::string rest = "\n (CONNECT_DATA = (SID = s)(UR = A)))\n" + entry("b");
  const std::string open = "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)) # :-(";
  const std::string close = "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)) # 1) one";
  EXPECT_EQ(told(open + rest),
            "1:" + std::to_string(open.size()) +
                " paren-in-comment: lookups of later names count this parenthesis, although it is "
                "in a comment, and read on to the end of the file at 4:1; the entry after it is "
                "lost: b\n"
                "2:28 unknown-key: unknown key UR\n");
  EXPECT_EQ(told(close + rest),
            "1:" + std::to_string(close.size() - 4) +
                " paren-in-comment: lookups of later names count this parenthesis, although it is "
                "in a comment, and look for the next name at 1:" +
                std::to_string(close.size() - 2) +
                "; the entry after it is lost: b\n"
                "2:28 unknown-key: unknown key UR\n");
  EXPECT_EQ(safely_fixed(open + rest),
            "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)) # :-[" + rest);
  EXPECT_EQ(safely_fixed(close + rest),
            "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)) # 1] one" + rest);
  expect_served(safely_fixed(open + rest), {"b"});
  expect_served(unsafely_fixed(open + rest), {"a", "b"});
  expect_served(unsafely_fixed(close + rest), {"a", "b"});
  // What lookups do not come to is told at once, too.
  expect_served(unsafely_fixed("stray\n" + open + rest), {"a", "b"});
}

TEST_F(FileRules, AnEntryThatLeadsAstrayMovesToTheEnd) {
  const std::string quotes =
      "a = (DESCRIPTION = (ADDRESS = (HOST = \"h)\")(PORT = 1))"
      "(CONNECT_DATA = (SID = s)))\n";
  EXPECT_EQ(safely_fixed("# a\n" + quotes + entry("b")), "# a\n" + quotes + entry("b"));
  EXPECT_EQ(unsafely_fixed("# a\n" + quotes + entry("b")), entry("b") + "# a\n" + quotes);
  EXPECT_EQ(told(entry("b") + quotes), "");
  expect_served(entry("b") + quotes, {"a", "b"});
  // There is only one end.
  const std::string both = quotes + entry("b") + quotes;
  EXPECT_EQ(unsafely_fixed(both), both);
  const std::string reserved = quotes + "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n";
  EXPECT_EQ(unsafely_fixed(reserved), reserved);
}

TEST_F(FileRules, ASecondBlockIsToldAsOneAlsoWithAFault) {
  const std::string good = "a = " + block + "\n  " + block + "\n";
  const std::string bad = "a = " + block + "\n  (DESCRIPTION = (SERVER = 1))\n";
  EXPECT_EQ(count_of(told(good + entry("b")), "2:3 second-block: second block of a: "), 1u);
  EXPECT_EQ(count_of(told(bad + entry("b")), "2:3 second-block: second block of a: "), 1u);
  EXPECT_EQ(count_of(told(bad + entry("b")), "stray-text"), 0u);
  EXPECT_EQ(unsafely_fixed(good + entry("b")), entry("b") + good);
  EXPECT_EQ(told(entry("b") + good), "");
  expect_served(entry("b") + good, {"a", "b"});
  // Where another one is at the end, the first block is what is left.
  EXPECT_EQ(unsafely_fixed(good + entry("b") + "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n"),
            "a = " + block + "\n  # " + block + "\n" + entry("b") +
                "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n");
}

TEST_F(FileRules, AnEqualSignIsPutAfterAName) {
  EXPECT_EQ(unsafely_fixed("a " + block + "\nb" + block + "\n"), entry("a") + entry("b"));
  EXPECT_EQ(safely_fixed("a " + block + "\n"), "a " + block + "\n");
  EXPECT_EQ(unsafely_fixed("a\n  " + block + "\n"), "a =\n  " + block + "\n");
  EXPECT_EQ(unsafely_fixed("a # x\n  " + block + "\n"), "a # x\n  = " + block + "\n");
}

TEST_F(FileRules, AnEqualSignIsPutAfterTheReservedName) {
  const std::string text = "KZCISYSTEMVARIABLES (LOG_COUNT = 5)\n";
  EXPECT_EQ(told(text),
            "1:21 missing-equal: expected \"=\" after the name \"KZCISYSTEMVARIABLES\": no lookup "
            "gets past it\n");
  EXPECT_EQ(unsafely_fixed(text), "KZCISYSTEMVARIABLES = (LOG_COUNT = 5)\n");
  EXPECT_EQ(count_of(told("other (LOG_COUNT = 5)\n"), "missing-equal"), 0u);
}
