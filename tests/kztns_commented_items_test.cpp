// Entries of which items stand in comments: what check says of them, and what fix --unsafe does.
#include <gtest/gtest.h>

#include <string>

#include "support/checked_file.h"
#include "support/mended.h"

namespace {

using support::entry;
using support::mended;
using support::remedies;
using support::told;

TEST(CommentedItems, AreToldWhereABlockLacksThem) {
  EXPECT_EQ(remedies("a = (DESCRIPTION =\n"
                     "#(ADDRESS = (HOST = h)(PORT = 1))\n"
                     "  (CONNECT_DATA =\n"
                     "#   (service_name = s)\n"
                     "    (KZ_USER_EXTRA_INFO = x)))\n"),
            "uncomment ADDRESS at 2:2\nuncomment service_name at 4:5\n");
  EXPECT_EQ(remedies("a = (DESCRIPTION = (ADDRESS_LIST =\n"
                     "  (ADDRESS = # (HOST is the old one) (HOST = h)\n"
                     "    (PORT = 1))\n"
                     "  (ADDRESS = (HOST = i)) # (PORT = 2)\n"
                     ") (CONNECT_DATA = (SID = s)))\n"),
            "uncomment HOST at 2:38\nuncomment PORT at 4:28\n");
  EXPECT_EQ(remedies("a = (DESCRIPTION = (ADDRESS_LIST = (KZLB = ON)\n"
                     "# (ADDRESS = (HOST = h)(PORT = 1))\n"
                     ")(CONNECT_DATA = (SID = s)))\n"),
            "uncomment ADDRESS at 2:3\n");
}

TEST(CommentedItems, OfAnotherKeyAreNotMeant) {
  EXPECT_EQ(remedies("a = (DESCRIPTION = (ADDRESS = (PORT = 1)\n"
                     "  # (PORT = 2) (HOST = h)\n"
                     ")(CONNECT_DATA = (SID = s)))\n"),
            "uncomment HOST at 2:16\n");
}

// Words may stand on one side of them.
TEST(CommentedItems, MayHaveWordsBeforeOrAfterThem) {
  const std::string poor = "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)))\n";
  EXPECT_EQ(remedies(poor + "# (SID = s) as before\n"), "uncomment SID at 2:3\n");
  EXPECT_EQ(remedies(poor + "# as before: (SID = s)\n"), "uncomment SID at 2:14\n");
}

TEST(CommentedItems, OfOtherBlocksAndOtherEntriesAreNotMeant) {
  const std::string add = "add (CONNECT_DATA = (SERVICE_NAME = ...))\n";
  const std::string poor = "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)))\n";
  const std::string data = "(CONNECT_DATA = (SID = s))";
  EXPECT_EQ(remedies(poor + "# " + data), "uncomment SID at 2:19\n");
  EXPECT_EQ(remedies(poor + "#\n# " + data), "uncomment SID at 3:19\n");
  EXPECT_EQ(remedies(poor + "\n# " + data), add);
  EXPECT_EQ(remedies(poor + "# " + entry("b")), add);
  EXPECT_EQ(remedies(poor + entry("b") + "# " + data), add);
  EXPECT_EQ(remedies(poor + "# (SID or SERVICE_NAME)"), add);
  EXPECT_EQ(remedies("a = (DESCRIPTION = (ADDRESS = (HOST = h))\n"
                     "# (ADDRESS = (HOST = i)(PORT = 2))\n"
                     "(CONNECT_DATA = (SID = s)))\n"),
            "add (PORT = ...)\n");
}

TEST(CommentedItems, OfAnEmptyBlockKeepIt) {
  const std::string text =
      "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n  (CONNECT_DATA =\n# (SID = s)\n))\n";
  EXPECT_EQ(told(text), "4:1 empty-block: CONNECT_DATA is empty\n");
  EXPECT_EQ(remedies(text), "uncomment SID at 3:3\n");
  EXPECT_EQ(mended(text), text);
}

// The line end before them is gone.
TEST(CommentedItems, AfterWordsBeginALineWhereParenthesesBalanceThen) {
  const std::string begin = "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)) # primary site";
  const std::string data = "(CONNECT_DATA = (SID = s)))\n";
  EXPECT_EQ(told(begin + " " + data + entry("b")),
            "1:53 unclosed-block: expected \")\": CONNECT_DATA at 1:68 is in this comment\n");
  EXPECT_EQ(remedies(begin + " " + data + entry("b")), "begin a line with it\n");
  EXPECT_EQ(mended(begin + " " + data + entry("b")), begin + "\n    " + data + entry("b"));
  const std::string part = " (1) (CONNECT_DATA =\n(SID = s)))\n";
  EXPECT_EQ(told(begin + part + entry("b")),
            "1:53 extra-close: unmatched \")\": CONNECT_DATA at 1:72 is in this comment\n");
  EXPECT_EQ(mended(begin + part + entry("b")),
            begin + " (1)\n    (CONNECT_DATA =\n(SID = s)))\n" + entry("b"));
}

// What was commented out deliberately must not be used again.
TEST(CommentedItems, ThatTheEntryHasAlreadyStayComments) {
  const std::string begin = "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n";
  const std::string data = " (CONNECT_DATA = (SID = s)";
  for (const std::string &text :
       {begin + " # not used: (SID = old))\n" + data + ")\n",
        begin + data + "\n # formerly (SID = old)))\n",
        begin + data + " # was (SERVICE_NAME = old)))\n", begin + data + ") # was (SID = old))\n",
        begin + " # was once (ADDRESS = (HOST = old)(PORT = 2)))\n" + data + ")\n",
        begin + " # old settings (KZLB = ON))\n" + data + ")\n"}) {
    EXPECT_EQ(told(text + entry("b")).find("in this comment"), std::string::npos) << text;
    EXPECT_EQ(mended(text + entry("b")).find("\n    ("), std::string::npos) << text;
  }
}

TEST(CommentedItems, InProseAndInOtherEntriesAreNotMeant) {
  const std::string poor = "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)))\n";
  EXPECT_EQ(remedies(poor + "# Services: (SID = x) is gone\n"),
            "add (CONNECT_DATA = (SERVICE_NAME = ...))\n");
  const std::string empty =
      "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = ))\n";
  EXPECT_EQ(mended(empty + "# " + entry("old")), poor + "# " + entry("old"));
}

// Lines that end in a carriage return alone are told as that.
TEST(CommentedItems, AreNoneAfterACarriageReturn) {
  const std::string text = "a = (DESCRIPTION = # old\r(ADDRESS = (HOST = h)(PORT = 1)))\n";
  EXPECT_EQ(told(text).find("in this comment"), std::string::npos);
  EXPECT_NE(told("a = (DESCRIPTION = # old (ADDRESS = (HOST = h)))\r\n").find("in this comment"),
            std::string::npos);
}

TEST(CommentedItems, AreNoneWhereAnotherEntryIsCommentedOut) {
  const std::string open = "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))";
  const std::string other = " # b = (CONNECT_DATA = (SID = s)))\n";
  EXPECT_EQ(told(open + other + entry("c")).find("in this comment"), std::string::npos);
}

TEST(CommentedItems, ThatBeginABlockWhoseItemsAreThereAreUncommented) {
  const std::string begin = "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n";
  const std::string rest = "(CONNECT_DATA =\n  (SID = s)))\n" + entry("b");
  EXPECT_EQ(told(begin + "#  " + rest),
            "2:1 extra-close: unmatched \")\": CONNECT_DATA at 2:4 is in this comment\n");
  EXPECT_EQ(remedies(begin + "#  " + rest), "uncomment it\n");
  EXPECT_EQ(mended(begin + "##   " + rest), begin + "   " + rest);
  const std::string address = "(ADDRESS =\n    (HOST = h)\n    (PORT = 1))\n";
  const std::string end = "  (CONNECT_DATA = (SERVICE_NAME = s)))\n";
  EXPECT_EQ(mended("a = (DESCRIPTION =\n#  " + address + end),
            "a = (DESCRIPTION =\n  " + address + end);
}

TEST(CommentedItems, ThatBeginABlockStayWhereNoItemOfItFollows) {
  for (const std::string &rest :
       {std::string("# (SID = s)\n  )\n)\n"), std::string("  (HOST = h))\n)\n"),
        std::string("  ) # (SID = s)\n)\n")}) {
    const std::string text =
        "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n# (CONNECT_DATA =\n" + rest;
    EXPECT_EQ(told(text).find("in this comment"), std::string::npos) << rest;
  }
}

// Which of the two is meant nobody can tell.
TEST(CommentedItems, OfTheEntryBeforeAnotherNameAreToldOf) {
  const std::string commented = "#  (DESCRIPTION =\n#    (ADDRESS = (HOST = i)(PORT = 2)))\n";
  const std::string text = "a =\n" + commented + "#b =\n  " + support::block + "\n";
  EXPECT_EQ(
      told(text),
      "1:1 half-comment: the name before the block is \"b\", in a comment at 4:2, after another "
      "block that is commented out\n");
  EXPECT_EQ(mended(text), text);
  EXPECT_EQ(told("a =\n#b =\n  " + support::block + "\n"), "") << "another name of the block";
  EXPECT_EQ(told("a =\n#b =\n" + commented + "  " + support::block + "\n"), "");
  EXPECT_EQ(told("a =\n" + commented + "  " + support::block + "\n"), "");
}

}  // namespace
