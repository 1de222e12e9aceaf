// What the fixes of blocks and addresses leave of an entry, and what they leave alone.
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/checked_file.h"

namespace {

using support::safely_fixed;
using support::unsafely_fixed;

const std::string address = "(ADDRESS=(HOST=h)(PORT=1))";
const std::string local = "(ADDRESS=(PROTOCOL=IPC)(KEY=k))";
const std::string data = "(CONNECT_DATA=(SID=s))";
const std::string description = "(DESCRIPTION=" + address + data + ")";

// The value of an entry, and what it becomes with all fixes.
struct Row {
  std::string before;
  std::string after;
};

void PrintTo(const Row &row, std::ostream *out) { *out << row.before; }

Row in_description(const std::string &before, const std::string &after) {
  return {"(DESCRIPTION=" + before + ")", "(DESCRIPTION=" + after + ")"};
}
Row unchanged(const std::string &value) { return {value, value}; }

std::vector<Row> address_rows() {
  const std::string tcp = "(ADDRESS=(PROTOCOL=tcp)(HOST=h)(PORT=1))";
  const std::string quoted_tcp = "(ADDRESS=(PROTOCOL=\"TCP\")(HOST=h)(PORT=1))";
  const std::string lists = "(ADDRESS_LIST=" + local + ")(ADDRESS_LIST=(KZLB=ON)" + address + ")";
  return {
      // An address is given up where another one is left that can be served.
      in_description("(ADDRESS_LIST=" + local + tcp + ")" + data,
                     "(ADDRESS_LIST=" + tcp + ")" + data),
      in_description("(ADDRESS_LIST=" + local + quoted_tcp + ")" + data,
                     "(ADDRESS_LIST=" + quoted_tcp + ")" + data),
      in_description(lists + data, "(ADDRESS_LIST=(KZLB=ON)" + address + ")" + data),
      unchanged("(DESCRIPTION=(ADDRESS_LIST=" + local + "(ADDRESS=(PROTOCOL=(x=y))(HOST=h)))" +
                data + ")"),
      // Of a key that means a local address there is none to give up outside of one.
      unchanged("(DESCRIPTION=(KEY=k)" + address + data + ")"),
      // An address that is written as a text.
      in_description("(ADDRESS=h:1)" + data, "(ADDRESS=(HOST = h)(PORT = 1))" + data),
      unchanged("(DESCRIPTION=(ADDRESS=:1)" + data + ")"),
      unchanged("(DESCRIPTION=(ADDRESS=h:)" + data + ")"),
      unchanged("(DESCRIPTION=(ADDRESS=h:http)" + data + ")"),
      unchanged("(DESCRIPTION=(ADDRESS=u@h:1)" + data + ")"),
      unchanged("(DESCRIPTION=(CONNECT_DATA=h:1)" + address + ")"),
      {"h:1/s",
       "(DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SERVICE_NAME = "
       "s)))"},
      unchanged("h:1"),
      unchanged("h:1/"),
      unchanged("h:1/s:dedicated"),
      unchanged("h:1/s and more"),
  };
}

std::vector<Row> list_rows() {
  return {
      {"(DESCRIPTION_LIST=" + description + ")", description},
      // The comment before the last parenthesis is no part of the block.
      {"(DESCRIPTION_LIST=" + description + " # c\n)", description + " # c\n"},
      // Within a description there is no list to choose from.
      unchanged("(DESCRIPTION=(DESCRIPTION_LIST=" + description + "))"),
      unchanged("(DESCRIPTION_LIST=)"),
      // What is a server or a service stays, and what would be another way to it.
      unchanged("(DESCRIPTION_LIST=" + description + address + ")"),
      unchanged("(DESCRIPTION_LIST=" + description + "(CONNECT_DATA=(SERVICE_NAME=t)))"),
      unchanged("(DESCRIPTION_LIST=" + description + "(BOX=" + address + data + "))"),
      unchanged("(DESCRIPTION_LIST=(SECURITY=(SSL_VERSION=1.2))" + description + ")"),
      unchanged("(DESCRIPTION_LIST=(SOURCE_ROUTE=ON)" + description + ")"),
      unchanged("(DESCRIPTION_LIST=" + address + data + ")"),
      {"(DESCRIPTION_LIST=(SOURCE_ROUTE=OFF)(LOAD_BALANCE=ON)" + description + ")", description},
      {"(DESCRIPTION_LIST=(FAILOVER=ON # c\n)" + description + ")", " # c\n" + description},
      {"(DESCRIPTION_LIST=" + description + "(DESCRIPTON=" + address + data + "))",
       description + "(DESCRIPTION=" + address + data + ")"},
  };
}

std::vector<Row> key_rows() {
  return {
      in_description("(CONNECT_TIMEOUT=soon)" + address + data,
                     "(KZLB_CONNECT_TIMEOUT=soon)" + address + data),
      in_description(address + "(CONNECT_DATA=(DATABASE=d))",
                     address + "(CONNECT_DATA=(SERVICE_NAME=d))"),
      in_description("(LOAD_BALANCE=(x=y))" + address + data, address + data),
      // Of two blocks that could take the item none is the right one.
      unchanged("(DESCRIPTION=(SID=s)(CONNECT_DATA=(KZ_MODE=1))(CONNECT_DATA=(KZ_MODE=2))" +
                address + ")"),
      // Nothing is lost with the parentheses around several items.
      in_description("(" + address + "," + address + ")" + data,
                     "(ADDRESS_LIST = " + address + address + ")" + data),
      // Another item may begin in a value.
      unchanged("(DESCRIPTION=(ADDRESS=(HOST=h SDU = 1 (PORT=1)))" + data + ")"),
  };
}

class BlockFixes : public testing::TestWithParam<Row> {};

}  // namespace

TEST_P(BlockFixes, Leave) {
  const Row &row = GetParam();
  EXPECT_EQ(unsafely_fixed("x=" + row.before + "\n"), "x=" + row.after + "\n");
}

INSTANTIATE_TEST_SUITE_P(OfAddresses, BlockFixes, testing::ValuesIn(address_rows()));
INSTANTIATE_TEST_SUITE_P(OfKeys, BlockFixes, testing::ValuesIn(key_rows()));
INSTANTIATE_TEST_SUITE_P(OfLists, BlockFixes, testing::ValuesIn(list_rows()));

TEST(BlockFixes, NumberTheDescriptionsOfAList) {
  const std::string rest = "\ny=" + description + "\n";
  const auto list_of = [&](const std::string &name) {
    return name + "=(DESCRIPTION_LIST=" + description + description + ")" + rest;
  };
  const auto split = [&](const std::string &name) {
    return name + "=" + description + "\n" + name + "_2 =\n  " + description + rest;
  };
  for (const std::string name : {"x", "x_1", "x.example.com", "x-9"})
    EXPECT_EQ(unsafely_fixed(list_of(name)), split(name));
  // What else is in a name may be something to other readers.
  for (const std::string name : {"x/y", "x$", "\xC3\xA4"})
    EXPECT_EQ(unsafely_fixed(list_of(name)), list_of(name));
}

TEST(BlockFixes, NumberADescriptionAfterAComment) {
  const std::string rest = "\ny=" + description + "\n";
  EXPECT_EQ(
      unsafely_fixed("x=(DESCRIPTION_LIST=" + description + " # c\n" + description + ")" + rest),
      "x=" + description + " # c\n\nx_2 =\n  " + description + rest);
}

TEST(BlockFixes, MergeTheSecondConnectDataFirst) {
  const std::string third = "(CONNECT_DATA=(SESSION_VARIABLE=v))";
  EXPECT_EQ(unsafely_fixed("x=(DESCRIPTION=" + data + "(CONNECT_DATA=(KZ_MODE=1))" + third +
                           address + ")\n")
                .find("x=(DESCRIPTION=(CONNECT_DATA=(SID=s)(KZ_MODE=1)"),
            0u);
}

TEST(BlockFixes, RenameAQuotedWordToo) {
  EXPECT_EQ(safely_fixed("x=(DESCRIPTION=(KZLB=\"yes\")" + address + data + ")\n"),
            "x=(DESCRIPTION=(KZLB=ON)" + address + data + ")\n");
}
