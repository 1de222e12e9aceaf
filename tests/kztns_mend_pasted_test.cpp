// What fix --unsafe leaves of what people paste, comment out and mistype: nothing is lost by it.
#include <random>

#include "mend/mend_file.h"
#include "support/checked_file.h"
#include "support/mended.h"

using namespace std::string_literals;
using support::entry;
using support::mended;
using namespace support::sound;

namespace {

// An entry of the hosts NAME1 and NAME2 and the service NAME3.
std::string entry_of_two(const std::string &name) {
  return name + " =\n  (DESCRIPTION =\n    (ADDRESS_LIST =\n      (ADDRESS = (HOST = " + name +
         "1)(PORT = 1))\n      (ADDRESS = (HOST = " + name +
         "2)(PORT = 1)))\n    (CONNECT_DATA = (SERVICE_NAME = " + name + "3)))\n";
}

// One character less or more, a line that becomes a comment, or stands twice.
std::string damaged(std::string text, std::mt19937 &random) {
  const std::size_t at = random() % text.size();
  const std::size_t line = text.find_last_of('\n', at) + 1;
  switch (random() % 4) {
    case 0:
      return text.erase(at, 1);
    case 1:
      return text.insert(at, 1, "()=\"#:,;{}> \n"[random() % 13]);
    case 2:
      return text.insert(line, "#");
    default:
      return text.insert(line, text.substr(line, text.find('\n', line) + 1 - line));
  }
}

// How many hosts and services of a text another one does not have, comments included.
int lost_in(const std::string &text, const std::string &result) {
  int lost = 0;
  for (const char *const name : {"db1", "db2", "db3", "old1", "old2", "old3"})
    if (text.find(name) != std::string::npos && result.find(name) == std::string::npos) ++lost;
  return lost;
}

}  // namespace

TEST(Mending, OfASwitchWithACommentLeavesTheRestAlone) {
  EXPECT_EQ(mended("a = (DESCRIPTION = (KZLB = ON)(LOAD_BALANCE = # c\n yes)" + address + data +
                   ")\n" + entry("b")),
            "a = (DESCRIPTION = (KZLB = ON) # c\n" + address + data + ")\n" + entry("b"));
}

// Only a whole entry of the name replaces one that is only begun.
TEST(Mending, KeepsABegunEntryThatNothingReplaces) {
  const std::string begun = " = (DESCRIPTION = " + address + data + "\n";
  const std::string closed = " = (DESCRIPTION = " + address + data + ")\n";
  EXPECT_EQ(mended("a, b" + begun + entry("a")), "b" + closed + entry("a"));
  EXPECT_EQ(mended("a" + begun + "b : " + block + "\n" + entry("a")),
            "a" + closed + entry("b") + entry("a"));
  EXPECT_EQ(mended("a" + begun + "a = (NOBODY_KNOWS = x)\n"),
            "a" + closed + "a = (NOBODY_KNOWS = x)\n");
}

TEST(Mending, MakesNoOneAddressOfTwoHosts) {
  const std::string result =
      mended("a = (DESCRIPTION = (HOST = h)(PORT = 1)(HOST = i)(PORT = 2)" + data + ")\n");
  EXPECT_EQ(result.find("(PORT = 1)(HOST = i)(PORT = 2))"), std::string::npos) << result;
}

TEST(Mending, RemovesAKeyThatOnlyBeginsLikeOne) {
  EXPECT_EQ(mended("a = (DESCRIPTION = (KZLB_FOO = 5)" + address + data + ")\n"), entry("a"));
}

TEST(Mending, OfEntriesWithNumbersForNamesPutsEqualSigns) {
  EXPECT_EQ(mended("1 " + block + "\n2 " + block + "\n" + entry("x")),
            entry("1") + entry("2") + entry("x"));
}

TEST(Mending, OfAnEntryFromAMailRemovesTheSignsBeforeItsLines) {
  const std::string lines = " =\n>  (DESCRIPTION =\n>    " + address + "\n\n>    " + data + ")\n";
  const std::string plain = " =\n  (DESCRIPTION =\n    " + address + "\n\n    " + data + ")\n";
  EXPECT_EQ(mended(">a" + lines + ">b" + lines), "a" + plain + "b" + plain);
  EXPECT_EQ(mended(">>a =\n> > " + block + "\n"), "a =\n " + block + "\n");
  EXPECT_EQ(mended("+a =\n+  " + block + "\n" + entry("b")), "a =\n  " + block + "\n" + entry("b"));
}

TEST(Mending, OfAnEntryWhoseLinesHaveNoSignsLeavesItsName) {
  EXPECT_EQ(mended(entry(">a")), entry(">a"));
  const std::string items = "> " + address + data + ")\n";
  EXPECT_EQ(mended(">a = (DESCRIPTION = " + items), entry(">a"));
}

TEST(Mending, OfANameThatStandsTwiceRemovesOne) {
  EXPECT_EQ(mended("a = a = " + block + "\n" + entry("b")), entry("a") + entry("b"));
  EXPECT_EQ(mended("a=a=" + block + "\n"), "a=" + block + "\n");
  // Which one is meant, is not known.
  for (const std::string other : {"b", "aa", "a\"b"})
    EXPECT_EQ(mended("ba = " + other + " = " + block + "\n"),
              "ba = " + other + " = " + block + "\n");
}

TEST(Mending, OfItemsWithoutParenthesesPutsThem) {
  const auto written = [&](const std::string &items) {
    return "a = (DESCRIPTION = (ADDRESS = " + items + ")" + data + ")\n";
  };
  const std::string sound = written("(HOST = h)(PORT = 1)");
  for (const std::string items :
       {"HOST = h,PORT = 1", "HOST = h;PORT = 1;", "HOST = h, PORT = 1", "HOST = h PORT = 1 ,",
        "HOST = h, SDU = 2, PORT = 1", "HOST = h, PORT = 1, SDU = 2"}) {
    EXPECT_EQ(mended(written(items)), sound) << items;
    EXPECT_EQ(mended(written("(" + items + ")")), sound) << items;
  }
  EXPECT_EQ(mended(written("HOST = h,\n  SDU = 2,\n  PORT = 1")),
            written("(HOST = h)\n  (PORT = 1)"));
  EXPECT_EQ(mended(written("(HOST = h # one\n  PORT = 1)")),
            written("(HOST = h) # one\n  (PORT = 1)"));
  EXPECT_EQ(mended(written("HOST = \"h,i\", PORT = 1")), written("(HOST = \"h,i\")(PORT = 1)"));
  for (const std::string items : {"HOST = , PORT = 1", "HOST = h, SID = s", "HOST = h, PORT"})
    EXPECT_EQ(mended(written(items)), written(items));
}

TEST(Mending, OfABlockWithoutItsKeyWritesIt) {
  const auto written = [&](const std::string &list, const std::string &one,
                           const std::string &last) {
    return "a = (DESCRIPTION = (" + list + " = (" + one + " = (HOST = h)(PORT = 1)))(" + last +
           " = (SID = s)))\n";
  };
  EXPECT_EQ(mended(written("", "ADDRESS", "")),
            written(" ADDRESS_LIST", "ADDRESS", " CONNECT_DATA"));
  EXPECT_EQ(mended(written("ADDRESS_LIST", "", "CONNECT_DATA")),
            written("ADDRESS_LIST", " ADDRESS", "CONNECT_DATA"));
  EXPECT_EQ(mended("a = (DESCRIPTION = " + address + "( = (x = y)))\n"),
            "a = (DESCRIPTION = " + address + ")\n");
}

TEST(Mending, OfAnEqualSecondConnectDataRemovesIt) {
  const auto written = [&](const std::string &connect_data) {
    return "a = (DESCRIPTION = (FOO = 1)(ADDRESS = (HOST = h)(PORT = 1))" + connect_data + ")\n";
  };
  EXPECT_EQ(mended(written(data + "(CONNECT_DATA = (sid = s))")), entry("a"));
}

TEST(Mending, OfAnUnknownProtocolKeepsTheAddress) {
  const auto written = [&](const std::string &protocol) {
    return "a = (DESCRIPTION = (ADDRESS_LIST = (ADDRESS = (PROTOCOL = " + protocol +
           ")(HOST = h)(PORT = 1))" + address + ")" + data + ")\n";
  };
  for (const std::string protocol : {"TCPTCP", "TCP\\", "TPC"})
    EXPECT_EQ(mended(written(protocol)), written("TCP")) << protocol;
  EXPECT_EQ(mended(written("IPC")),
            "a = (DESCRIPTION = (ADDRESS_LIST = " + address + ")" + data + ")\n");
}

TEST(Mending, OfItemsThatMayBelongToAnEntryMakesNone) {
  // The entry has no service, or another block follows.
  EXPECT_EQ(mended("a = (DESCRIPTION = " + address + ")\n" + data + ")\n"),
            entry("a").replace(entry("a").find("(CONN"), 0, "\n"));
  const std::string text = entry("a") + block + "\n" + data + "\n";
  EXPECT_EQ(mended(text).find("# " + data), std::string::npos);
  // Another entry is on the last line.
  EXPECT_EQ(mended(entry("a") + data + ") " + entry("b")).find("# " + data), std::string::npos);
}

TEST(Mending, OfAnOpeningThatStandsTwiceRemovesOne) {
  const std::string items = "\n    " + address + "\n    " + data + "\n  )";
  const std::string sound = "a =\n  (DESCRIPTION =" + items + "\n" + entry("b");
  EXPECT_EQ(mended("a =\n  (DESCRIPTION =\n  (DESCRIPTION =" + items + "\n" + entry("b")), sound);
  EXPECT_EQ(mended("a =\n  (DESCRIPTION =\n  (DESCRIPTION =" + items + ")\n" + entry("b")), sound);
  const auto list = [&](const std::string &opening, const std::string &closing) {
    return "a = (DESCRIPTION = " + opening + "\n  " + address + closing + data + ")\n";
  };
  const std::string listed = list("(ADDRESS_LIST =", ")");
  EXPECT_EQ(mended(list("(ADDRESS_LIST = (ADDRESS_LIST =", ")")), listed);
  EXPECT_EQ(mended(list("(ADDRESS_LIST = # one\n(address_list =", "))")),
            list("(ADDRESS_LIST = # one\n", ")"));
  // One of two in a list is another matter.
  const std::string two = "a = (DESCRIPTION = (ADDRESS_LIST = " + address +
                          "(ADDRESS_LIST = " + address + "))" + data + ")\n";
  EXPECT_NE(mended(two).find(address + ")(ADDRESS_LIST = " + address), std::string::npos)
      << mended(two);
}

TEST(Mending, OfAListOfNamesAndAnotherWord) {
  EXPECT_EQ(mended("a, b, = " + block + "\n" + entry("c")), entry("a") + entry("b") + entry("c"));
  EXPECT_EQ(mended("Regards,\n\na = " + block + "\n"), "# Regards,\n\n" + entry("a"));
  EXPECT_EQ(mended("a, b,\n\nc = " + block + "\n"), entry("a") + entry("b") + entry("c"));
  EXPECT_EQ(mended(entry("a") + "Regards,\nAnna (1234)\n\n" + entry("b")),
            entry("a") + "# Regards,\n# Anna (1234)\n\n" + entry("b"));
  EXPECT_EQ(mended("a,\nb " + block + "\n"), entry("a") + entry("b"));
  EXPECT_EQ(mended("a a = " + block + "\n" + entry("b")), entry("a") + entry("b"));
  EXPECT_EQ(mended("c a = " + block + "\n").find("c = ("), std::string::npos);
}

TEST(Mending, OfItemsInTheValueOfAnotherPutsThemAfterIt) {
  const std::string begin = "a = (DESCRIPTION = (ADDRESS = ";
  const std::string end = ")(CONNECT_DATA = (SID = s)))\n";
  EXPECT_EQ(mended(begin + "(PROTOCOL = TCP(HOST = h))(PORT = 1)" + end),
            begin + "(PROTOCOL = TCP)(HOST = h)(PORT = 1)" + end);
  EXPECT_EQ(mended(begin + "(HOST = h\n  (PORT = 1) (WEIGHT = 2) )" + end),
            begin + "(HOST = h)\n  (PORT = 1) (WEIGHT = 2) " + end);
  for (const std::string items :
       {"(HOST = h (SID = s))(PORT = 1)", "(HOST = h (PORT = 1) x)", "(HOST = h (x = 1))"})
    EXPECT_EQ(mended(begin + items + end).find("h)"), std::string::npos) << items;
}

TEST(Mending, PutsParenthesesBeforeKeysOnly) {
  const std::string rest = "(HOST = h)\n    (PORT = 1))\n  (CONNECT_DATA = (SERVICE_NAME = s)))\n";
  EXPECT_EQ(mended("a = (DESCRIPTION =\n#  (as ADDRESS =\n    " + rest),
            "a = (DESCRIPTION =\n#  [as ADDRESS =\n    (ADDRESS = " + rest);
}

TEST(Mending, OfAMovedItemTakesItsCommentOnce) {
  EXPECT_EQ(mended("a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)\n (SID = # why\n s)))\n"),
            "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)\n )"
            "(CONNECT_DATA = (SID = # why\n s)))\n");
}

// Each fault is told with what mends it, not with what mends the others.
TEST(Mending, OfSignsOfAnEntryEndsWithIt) {
  const std::string block_with_signs = "(DESCRIPTION == (ADDRESS == (HOST = h)(PORT = 1)))\n";
  const std::string text = "a == " + block_with_signs + "b == " + block_with_signs;
  const kztns::CheckReport report = kztns::check_file(kztns::NamesText(text), {"names.ora"});
  ASSERT_FALSE(report.findings.empty());
  ASSERT_FALSE(report.findings[0].fix.edits.empty());
  EXPECT_LT(report.findings[0].fix.edits.back().end, text.find('\n'));
}

// The time is that of reading it a few times; quadratic, it would take minutes.
TEST(Mending, OfManyLinesTakesALinearTime) {
  const auto repeated = [](const std::string &line, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += line;
    return text;
  };
  for (const std::string &text :
       {repeated("> x\n> = ()\n", 100'000), ">a =\n" + repeated("> (x)\n", 200'000),
        "a = (DESCRIPTION = (ADDRESS = " + repeated("HOST = h ", 200'000) + ")" + data + ")\n",
        "a = (DESCRIPTION = (FOO = " + repeated("(x = y)", 400'000) + ")" + data + ")\n",
        "a = " + repeated("(b)", 400'000) + " #\n" + entry("b"),
        "x\n" + repeated(" ", 400'000) + entry("b"), "x\n" + repeated("/**/", 100'000),
        "a = (DESCRIPTION = \"" + repeated("\xC2\xA0", 200'000) + "\"" + data + ")\n"})
    EXPECT_FALSE(kztns::check_once(kztns::NamesText(text), {.file = "names"}).findings.empty());
}

TEST(Mending, OfDamagedFilesLosesHardlyAServer) {
  std::mt19937 random(1);
  int lost = 0;
  for (int i = 0; i < 5000; ++i) {
    std::string text = damaged(entry_of_two("db") + "# note\n" + entry_of_two("old"), random);
    if (i % 2 == 1) text = damaged(text, random);
    const std::string result = mended(text);
    EXPECT_EQ(mended(result), result) << text;
    if (lost_in(text, result) > 0) ++lost;
  }
  EXPECT_LE(lost, 10);
}

TEST(Mending, OfEntriesInQuotesOfOtherNotationsRemovesThem) {
  const std::string quoted = "\"" + block + "\"";
  for (const std::string &line : {"\"a\": " + quoted + ",", "a: " + quoted,
                                  "\"a\" := " + quoted + ";", "\"a = " + block + "\""})
    EXPECT_EQ(mended(line + "\n" + entry("b")), entry("a") + entry("b")) << line;
  // A quote is missing, the name is none, or something else is on the line.
  for (const std::string &line : {"\"a\": \"" + block, "\"a b\": " + quoted, "\"HOST\": " + quoted,
                                  "\"a\": " + quoted + " x"})
    EXPECT_EQ(mended(line + "\n" + entry("b")).find("a = ("), std::string::npos) << line;
}

TEST(Mending, OfAForeignItemAmongOthersKeepsThem) {
  const auto written = [&](const std::string &items) {
    return "a = (DESCRIPTION = " + address + "(CONNECT_DATA = (" + items + ")))\n";
  };
  EXPECT_EQ(mended(written("SERVER = DEDICATED, SID = s")), entry("a"));
  EXPECT_EQ(
      mended("a = (DESCRIPTION = (FAILOVER = on, ADDRESS = (HOST = h)(PORT = 1))" + data + ")\n"),
      entry("a"));
  const std::string commented = written("SERVER = DEDICATED # one\n, SID = s");
  EXPECT_EQ(mended(commented), commented);
}

TEST(Mending, OfNestedBlocksWithoutKeysKeepsTheirServers) {
  const std::string text = "a = (DESCRIPTION = ( = ( = (HOST = h)(PORT = 1)))" + data + ")\n";
  EXPECT_EQ(mended(text), text);
}

TEST(Mending, KeepsCommentsBetweenWhatItRemoves) {
  EXPECT_EQ(mended("a # c\na = " + block + "\n"), "# a # c\n" + entry("a"));
  const std::string twice = "a = a # c\n = " + block + "\n";
  EXPECT_EQ(mended(twice), twice);
  const std::string items =
      "a = (DESCRIPTION = (ADDRESS = HOST = h # c\n, PORT = 1)" + data + ")\n";
  EXPECT_EQ(mended(items), items);
  EXPECT_EQ(mended("a = (DESCRIPTION = # c\n(DESCRIPTION = " + address + data + ")\n"),
            "a = (DESCRIPTION = # c\n " + address + data + ")\n");
}

// To the library a zero byte ends a comment, and what comes after it counts.
TEST(Mending, OfZeroBytesInComments) {
  for (const std::string rest :
       {")(PORT = 1)))(CONNECT_DATA = (SID = s))\n", ")(ADDRESS = (HOST = h))\n"})
    EXPECT_FALSE(mended("a = (DESCRIPTION = (ADDRESS = (HOST = #\0h"s + rest).empty());
  EXPECT_EQ(mended("x\0y\n"s + entry("b")), "# x\\x00y\n" + entry("b"));
  const std::string sound = entry("a") + entry("b");
  for (std::size_t at = 0; at < sound.size(); ++at) {
    std::string text = sound;
    text.insert(at, "#\0"s);
    const std::string result = mended(text);
    EXPECT_EQ(mended(result), result) << at;
  }
}

TEST(Mending, OfColonsRightAfterTheNameAndTheKeys) {
  EXPECT_EQ(mended("a: (DESCRIPTION: (ADDRESS: (HOST: h)(PORT: 1))(CONNECT_DATA: (SID: s)))\n"),
            "a = (DESCRIPTION= (ADDRESS= (HOST= h)(PORT= 1))(CONNECT_DATA= (SID= s)))\n");
}

TEST(Mending, OfAQuotedMailOfWhichALineIsWrapped) {
  EXPECT_EQ(mended("> a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT =\n1))\n> " + data + ")\n"),
            "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT =\n1))\n" + data + ")\n");
  const std::string quoted = "a =\n> (DESCRIPTION =\n>   " + address + "\n>   " + data + ")\n";
  EXPECT_EQ(mended(quoted), "a =\n(DESCRIPTION =\n" + address + "\n" + data + ")\n");
  const kztns::NamesText original(quoted);
  kztns::Mender safe(original, {.file = "names.ora", .with_unsafe = false});
  safe.apply_fixes();
  EXPECT_EQ(safe.text().text(), quoted);
}

TEST(Mending, OfADiffKeepsTheLinesThatItPutsIn) {
  const std::string before = "a = (DESCRIPTION =\n";
  const std::string old_one = "    (ADDRESS = (HOST = old)(PORT = 1))\n";
  EXPECT_EQ(mended(before + "-" + old_one + "+" + address + "\n" + data + ")\n"),
            before + "# -" + old_one + address + "\n" + data + ")\n");
  const std::string half = "    (ADDRESS = (HOST = old)\n";
  EXPECT_EQ(mended(before + "-" + half + "+    (ADDRESS = (HOST = h)\n (PORT = 1))" + data + ")\n")
                .find("\n" + half),
            std::string::npos);
}
