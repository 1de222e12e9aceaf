// Lists of names beside other faults: what check tells of them, and what fix --unsafe does.
#include <gtest/gtest.h>

#include <string>

#include "support/checked_file.h"
#include "support/mended.h"

namespace {

using support::block;
using support::entry;
using support::mended;
using support::told;

TEST(NameLists, WithoutABlockBecomeComments) {
  EXPECT_EQ(mended("a, b =\n\n" + entry("c")), "# a, b =\n\n" + entry("c"));
  EXPECT_EQ(mended("a_old, b =\na, b =\n  " + block + "\n"),
            "# a_old, b =\na =\n  " + block + "\nb =\n  " + block + "\n");
  EXPECT_EQ(mended("a, b =\n# " + block + "\n" + entry("c")),
            "# a, b =\n# " + block + "\n" + entry("c"));
}

TEST(NameLists, ThatAreBegunTwiceLoseTheFirstBeginning) {
  const std::string text = "a, b =\n  (DESCRIPTION =\na, b = " + block + "\n" + entry("c");
  EXPECT_EQ(told(text),
            "1:1 comma-list: a list of names is not an entry: no lookup finds a, b; the 3 entries "
            "after it are lost: a, b, c\n"
            "3:1 comma-list: a list of names is not an entry: no lookup finds a, b\n");
  EXPECT_EQ(mended(text), "# a, b =\n#   (DESCRIPTION =\n" + entry("a") + entry("b") + entry("c"));
  const std::string other = "a, b =\n  (DESCRIPTION =\na, d = " + block + "\n";
  EXPECT_EQ(mended(other).find('#'), std::string::npos);
}

TEST(NameLists, OfAConnectStringGiveItToEachName) {
  const std::string written =
      "(DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SERVICE_NAME = s)))\n";
  EXPECT_EQ(mended("a, b = h:1/s\n" + entry("c")),
            "a = " + written + "b = " + written + entry("c"));
}

// What is found after a list is what is found without it.
TEST(NameLists, HideNoFaultsOfOtherEntries) {
  const std::string inserted =
      "a = (DESCRIPTION =\n  (ADDRESS_LIST =\n" + entry("b") +
      "    (ADDRESS = (HOST = h)(PORT = 1)))\n  (CONNECT_DATA = (SID = s)))\n";
  const std::string moved =
      "a = (DESCRIPTION =\n  (ADDRESS_LIST =\n"
      "    (ADDRESS = (HOST = h)(PORT = 1)))\n  (CONNECT_DATA = (SID = s)))\n" +
      entry("b");
  EXPECT_EQ(mended(inserted), moved);
  EXPECT_EQ(mended("c, d = " + block + "\n" + inserted), entry("c") + entry("d") + moved);
  EXPECT_EQ(support::count_of(told("c, d = " + block + "\n" + inserted), "\n"), 2u);
}

TEST(NameLists, AreSplitOnceTheirParenthesesBalance) {
  const std::string whole = "\n  (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)) # old box";
  const std::string data = " (CONNECT_DATA =\n      (SID = s)))\n";
  EXPECT_EQ(mended("a, b =" + whole + data + entry("c")),
            "a =" + whole + "\n   " + data + "b =" + whole + "\n   " + data + entry("c"));
}

}  // namespace
