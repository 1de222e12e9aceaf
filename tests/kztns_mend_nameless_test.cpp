// Blocks whose names are gone: nothing is before them, or the end of a comment, and to the library
// they are part of the entry before.
#include <gtest/gtest.h>

#include <string>

#include "support/checked_file.h"
#include "support/mended.h"

namespace {

using support::entry;
using support::mended;
using support::told;

std::string block_of(const std::string &service) {
  return "(DESCRIPTION = (ADDRESS = (HOST = i)(PORT = 2))(CONNECT_DATA = (SID = " + service + ")))";
}

TEST(NamelessBlocks, OfAnotherServiceAfterAnEmptyLineBecomeComments) {
  const std::string text = entry("a") + "\n# The archive.\n  " + block_of("x") + "\n" + entry("b");
  EXPECT_EQ(told(text),
            "4:3 left-over: read as part of this entry, which has another service: no name stands "
            "before the block; the entry after it is lost: b\n");
  EXPECT_EQ(mended(text),
            entry("a") + "\n# The archive.\n#   " + block_of("x") + "\n" + entry("b"));
  const std::string two = entry("a") + "\n" + block_of("x") + "\n" + block_of("y") + "\n";
  EXPECT_EQ(mended(two + entry("b")),
            entry("a") + "\n# " + block_of("x") + "\n# " + block_of("y") + "\n" + entry("b"));
}

TEST(NamelessBlocks, AfterTheLastEntryAreToldAndServedWithIt) {
  const std::string text = entry("a") + " \t\r\n" + block_of("x") + "\n";
  EXPECT_EQ(told(text),
            "3:1 left-over: read as part of this entry, which has another service: no name stands "
            "before the block\n");
  EXPECT_EQ(mended(text), text);
}

TEST(NamelessBlocks, AreNoneWhereTheyMayBelongToTheEntry) {
  for (const std::string &second :
       {block_of("x") + "\n", "# second site\n" + block_of("x") + "\n", "\n" + block_of("S") + "\n",
        "\n" + block_of("\"s\"") + "\n", "\n" + block_of("x") + " c = d\n",
        std::string("\n(DESCRIPTION = (ADDRESS = (HOST = i)(PORT = 2)))\n"),
        std::string("\n(ADDRESS = (HOST = i)(PORT = 2))\n"),
        std::string("\n(CONNECT_DATA = (SID = x))\n")})
    EXPECT_EQ(told(entry("a") + second).find("no name stands"), std::string::npos) << second;
  const std::string poor = "a = (DESCRIPTION = (CONNECT_DATA = (SID = s)))\n\n" + block_of("x");
  EXPECT_EQ(told(poor).find("no name stands"), std::string::npos);
}

TEST(NamelessBlocks, InFrontOfTheFirstEntryBecomeComments) {
  for (const std::string begin : {"", "= ", "=\n  "}) {
    const std::string text = begin + block_of("x") + "\n";
    const bool two_lines = begin.back() == ' ' && begin.size() > 2;
    EXPECT_EQ(mended(text + entry("a")),
              (two_lines ? "# =\n#   " : "# " + begin) + block_of("x") + "\n" + entry("a"));
    EXPECT_EQ(mended(text), text) << "nothing is lost by it";
  }
}

TEST(NamelessBlocks, TakeTheNameThatALineEndLostToAComment) {
  const std::string text = entry("a") + "# Moved (Ines). x =\n  " + block_of("x") + "\n";
  EXPECT_EQ(told(text + entry("b")),
            "3:3 half-comment: read as part of this entry: the name of the block, \"x\", is in a "
            "comment at 2:17; the entry after it is lost: b\n");
  EXPECT_EQ(mended(text + entry("b")),
            entry("a") + "# Moved (Ines).\nx =\n  " + block_of("x") + "\n" + entry("b"));
  EXPECT_EQ(mended("# The first x = \r\n" + block_of("x") + "\n" + entry("b")),
            "# The first\r\nx = \r\n" + block_of("x") + "\n" + entry("b"));
}

TEST(NamelessBlocks, TakeNoOtherWordOfACommentForTheirName) {
  for (const std::string comment :
       {"# a == x =", "# Port =", "# the HOST =", "# (x =", "# \"x =", "# x y", "# ="}) {
    const std::string text = entry("a") + comment + "\n" + block_of("x") + "\n";
    EXPECT_EQ(told(text).find("is in a comment"), std::string::npos) << comment;
  }
  const std::string before = entry("a") + "# The x =\n# and more\n" + block_of("x") + "\n";
  EXPECT_EQ(told(before).find("is in a comment"), std::string::npos);
}

TEST(NamelessBlocks, OfAListOfNamesAreNotCopied) {
  const std::string list = "a, b =\n " + block_of("s") + "\n\n";
  EXPECT_EQ(mended(list + " " + block_of("x") + "\n" + entry("c")),
            "a =\n " + block_of("s") + "\nb =\n " + block_of("s") + "\n\n#  " + block_of("x") +
                "\n" + entry("c"));
}

TEST(NamelessBlocks, KeepTheNameThatARemarkSeparates) {
  const std::string text = "a (prod)\n = " + block_of("s") + "\n" + entry("b");
  EXPECT_EQ(mended(text), text);
}

TEST(NamelessBlocks, GetAllNamesOfTheListInTheComment) {
  EXPECT_EQ(mended(entry("a") + "# Moved. b, c =\n" + block_of("s") + "\n"),
            entry("a") + "# Moved.\nb =\n" + block_of("s") + "\nc =\n" + block_of("s") + "\n");
}

// Another entry of the name would change what other readers find, and a part is no entry.
TEST(NamelessBlocks, GetNoNameThatIsTakenAndNoneOfAPart) {
  const std::string taken = entry("a") + "# Moved. A =\n" + block_of("x") + "\n" + entry("b");
  EXPECT_EQ(mended(taken), taken);
  const std::string part = "(ADDRESS = (HOST = i)(PORT = 2))\n";
  EXPECT_EQ(mended(entry("a") + "# Moved. b =\n" + part + entry("c")),
            entry("a") + "# Moved. b =\n# " + part + entry("c"));
}

}  // namespace
