// What the fixes of an entry's faults leave of it.
#include <algorithm>
#include <fstream>
#include <ostream>

#include <gtest/gtest.h>

#include "io/memory_file.h"
#include "lookup/lookup.h"
#include "rules/apply_fixes.h"
#include "rules/check_file.h"
#include "rules/foreign_keys.h"

namespace {

using kztns::Applicability;

const std::string address = "(ADDRESS=(HOST=h)(PORT=1))";
const std::string data = "(CONNECT_DATA=(SID=s))";

// A fault of the entry x, whose value is before, and the fix of it.
struct Row {
  std::string rule;
  Applicability applicability;
  std::string before;
  std::string after;
};

void PrintTo(const Row &row, std::ostream *out) { *out << row.rule << ": " << row.before; }

std::string in_description(const std::string &items) { return "(DESCRIPTION=" + items + ")"; }

Row safe(const std::string &rule, const std::string &before, const std::string &after) {
  return {rule, Applicability::safe, in_description(before), in_description(after)};
}
Row unsafe(const std::string &rule, const std::string &before, const std::string &after) {
  return {rule, Applicability::unsafe, in_description(before), in_description(after)};
}
Row none(const std::string &rule, const std::string &before) {
  return {rule, Applicability::none, in_description(before), in_description(before)};
}

kztns::CheckReport report_of(const std::string &content) {
  const kztns::NamesText text(content);
  return kztns::check_once(text, {.file = "names.ora"});
}

bool is_served(const std::string &text) {
  kztns::MemoryFile file;
  EXPECT_TRUE(file.append(text));
  kztns::Tree tree;
  return kztns::look_up("x", {.file = file.path()}, tree).outcome == kztns::Outcome::found;
}

const kztns::Finding *finding_of(const kztns::CheckReport &report, const std::string &rule) {
  const auto found = std::find_if(
      report.findings.begin(), report.findings.end(),
      [&](const kztns::Finding &finding) { return kztns::row_of(finding.rule).id == rule; });
  return found == report.findings.end() ? nullptr : &*found;
}

std::string edited(const std::string &content, const std::vector<kztns::Edit> &edits) {
  kztns::EditedText text(content);
  text.apply(edits);
  return text.text();
}

std::vector<Row> foreign_rows() {
  return {
      safe("unknown-key", address + "(CONNECT_DATA=(SERVER=DEDICATED)(SID=s))", address + data),
      safe("unknown-key", "(SDU=8192)" + address + data, address + data),
      safe("unknown-key", "(ADDRESS=(HOSTNAME=h)(PORT=1))" + data, address + data),
      unsafe("unknown-key", "(ADDRESS=(HOSTNAME=h)(HOST=h)(PORT=1))" + data, address + data),
      safe("unknown-key", address + "(CONNECT_DATA=(SERVICE=s))",
           address + "(CONNECT_DATA=(SERVICE_NAME=s))"),
      unsafe("unknown-key", address + "(CONNECT_DATA=(SERVICE=t)(SID=s))", address + data),
      unsafe("unknown-key", "(LOAD_BALANCE=yes)" + address + data, "(KZLB=ON)" + address + data),
      unsafe("unknown-key", "(LOAD_BALANCE=\"off\")" + address + data,
             "(KZLB=OFF)" + address + data),
      unsafe("unknown-key", "(LOAD_BALANCE=maybe)" + address + data, address + data),
      unsafe("unknown-key", "(KZLB=ON)(LOAD_BALANCE=ON)" + address + data,
             "(KZLB=ON)" + address + data),
      unsafe("unknown-key", "(connect_timeout=5)" + address + data,
             "(KZLB_CONNECT_TIMEOUT=5)" + address + data),
      unsafe("unknown-key", "(CONNECT_TIMEOUT=90ms)" + address + data,
             "(KZLB_CONNECT_TIMEOUT=90)" + address + data),
      unsafe("unknown-key", "(CONNECT_TIMEOUT=3 sec)" + address + data,
             "(KZLB_CONNECT_TIMEOUT=3)" + address + data),
      unsafe("unknown-key", "(FAILOVER=ON)" + address + data, address + data),
      unsafe("unknown-key",
             address + "(CONNECT_DATA=(FAILOVER_MODE=(TYPE=SELECT)(METHOD=BASIC))(SID=s))",
             address + data),
      none("unknown-key", address + data + "(SECURITY=(SSL_SERVER_CERT_DN=\"CN=x\"))"),
      none("unknown-key", "(SOURCE_ROUTE=YES)" + address + data),
      safe("unknown-key", "(SOURCE_ROUTE=no)" + address + data, address + data),
      unsafe("unknown-key", "(ADDRESS_LIST=(ADDRESS=(KEY=k)(PROTOCOL=IPC))" + address + ")" + data,
             "(ADDRESS_LIST=" + address + ")" + data),
      none("unknown-key", "(ADDRESS=(KEY=k)(PROTOCOL=IPC))" + data),
      {"unknown-key", Applicability::safe,
       "(DESCRIPTION_LIST=\n " + in_description(address) + "\n)", in_description(address)},
      {"unknown-key", Applicability::unsafe,
       "(DESCRIPTION_LIST=(FAILOVER=ON)" + in_description(address) + in_description(data) + ")",
       in_description(address) + in_description(data)},
      {"unknown-key", Applicability::none, "(DESCRIPTION_LIST=(FAILOVER=ON))",
       "(DESCRIPTION_LIST=(FAILOVER=ON))"},
  };
}

std::vector<Row> key_rows() {
  return {
      unsafe("unknown-key", "(ADDRESS=(HSOT=h)(PORT=1))" + data, address + data),
      unsafe("unknown-key", address + data + "(COLOR=red)", address + data),
      // A server is not lost to a slip.
      unsafe("unknown-key", "(ADDRESS_LIST=" + address + "(ADRESS=(HOST=i)(PORT=1)))" + data,
             "(ADDRESS_LIST=" + address + "(ADDRESS=(HOST=i)(PORT=1)))" + data),
      unsafe("unknown-key", "(ADDRESS_LIST=" + address + ")(ADRESS_LIST=" + address + ")" + data,
             "(ADDRESS_LIST=" + address + ")(ADDRESS_LIST=" + address + ")" + data),
      unsafe("unknown-key", "(ADDRESS=(HOST=h)(PORT=1)(HSOT=i))" + data, address + data),
      unsafe("unknown-key", address + "(CONNECT DATA=(SID=s))", address + data),
      unsafe("unknown-key", address + "(Connect\t Data=(SID=s))", address + data),
      unsafe("unknown-key", address + "(CONNECT_DATA=(SERVICE NAME=s))",
             address + "(CONNECT_DATA=(SERVICE_NAME=s))"),
      unsafe("misplaced-key", address + "(CONNECT_DATA=(KZLB_READ_TIMEOUT=5)(SID=s))",
             address + "(CONNECT_DATA=(SID=s))(KZLB_READ_TIMEOUT=5)"),
      unsafe("misplaced-key", "(ADDRESS=(HOST=h)(PORT=1)(SID=s))(CONNECT_DATA=(KZ_MODE=1))",
             address + "(CONNECT_DATA=(KZ_MODE=1)(SID=s))"),
      unsafe("misplaced-key", address + "(SID=s)", address + "(CONNECT_DATA = (SID=s))"),
      none("misplaced-key", address + "(CONNECT_DATA=(PORT=2)(SID=s))"),
      {"misplaced-key", Applicability::safe, address + data,
       "(DESCRIPTION = " + address + data + ")"},
      {"misplaced-key", Applicability::safe, address + " # 1) one\n" + data,
       "(DESCRIPTION = " + address + " # 1] one\n" + data + ")"},
      {"misplaced-key", Applicability::unsafe, in_description(address) + data,
       in_description(address + data)},
      safe("missing-equal", address + "(CONNECT_DATA(SID=s))", address + "(CONNECT_DATA =(SID=s))"),
      safe("missing-equal", address + "(CONNECT_DATA=(SID s))",
           address + "(CONNECT_DATA=(SID = s))"),
      unsafe("missing-equal", address + "(CONNECT_DATA=(SID=s)(KZ_MODE))", address + data),
      safe("missing-equal", "(ADDRESS=(HOST=h)(PORT : 1))" + data,
           "(ADDRESS=(HOST=h)(PORT = 1))" + data),
      safe("missing-equal", "(ADDRESS=(HOST=h)(PORT := 1))" + data,
           "(ADDRESS=(HOST=h)(PORT = 1))" + data),
      safe("missing-equal", "(ADDRESS=(HOST=h)(PORT :1))" + data,
           "(ADDRESS=(HOST=h)(PORT =1))" + data),
      safe("missing-equal", address + "(CONNECT_DATA : (SID=s))",
           address + "(CONNECT_DATA = (SID=s))"),
      unsafe("missing-equal", address + "(CONNECT_DATA=(SID=s)(KZ_MODE : a b))", address + data),
      safe("missing-key", address + "(CONNECT_DATA=()(SID=s))", address + data),
      unsafe("missing-key", address + "(CONNECT_DATA=(=1)(SID=s))", address + data),
      safe("odd-bytes", "(ADDRESS=(\xC2\xA0HOST=h)(PORT\xA0=1))" + data,
           "(ADDRESS=( HOST=h)(PORT =1))" + data),
      safe("odd-bytes", address + "\xE2\x80\x8B" + data, address + data),
  };
}

std::vector<Row> value_rows() {
  return {
      safe("unquoted-value", address + "(CONNECT_DATA=(SID=a=1))",
           address + "(CONNECT_DATA=(SID=\"a=1\"))"),
      safe("unquoted-value", address + "(CONNECT_DATA=(SID=a b ))",
           address + "(CONNECT_DATA=(SID=\"a b\" ))"),
      unsafe("unquoted-value", "(KZLB_CONNECT_TIMEOUT=5 s)" + address + data,
             "(KZLB_CONNECT_TIMEOUT=5)" + address + data),
      unsafe("unquoted-value", "(ADDRESS=(HOST=h PORT=1))" + data,
             "(ADDRESS=(HOST=h)(PORT=1))" + data),
      unsafe("unquoted-value", "(ADDRESS=(HOST=h, PORT=1 , WEIGHT=2))" + data,
             "(ADDRESS=(HOST=h)(PORT=1)(WEIGHT=2))" + data),
      unsafe("bad-protocol", "(ADDRESS=(PROTOCOL=TCP, HOST=h, PORT=1))" + data,
             "(ADDRESS=(PROTOCOL=TCP)(HOST=h)(PORT=1))" + data),
      none("unquoted-value", "(ADDRESS=(HOST=h PORT 1))" + data),
      none("unquoted-value", "(ADDRESS=(HOST=h i=1))" + data),
      none("unquoted-value", "(ADDRESS=(HOST=h PORT=1,))" + data),
      // Such a host would be served, and never be found.
      none("unquoted-value", "(ADDRESS=(HOST=h i)(PORT=1))" + data),
      none("unquoted-value", "(ADDRESS=(HOST=h)(PORT=15 21))" + data),
      unsafe("comment-in-value", address + "(CONNECT_DATA=(SID=s #1))",
             address + "(CONNECT_DATA=(SID=\"s #1\"))"),
      unsafe("missing-value", address + "(CONNECT_DATA=(KZ_MODE=)(SID=s))", address + data),
      unsafe("empty-block", address + "(KZLB_BLACKLIST=)" + data, address + data),
      unsafe("block-for-value", address + "(CONNECT_DATA=(SID=(s)))", address + data),
      none("block-for-value", address + "(CONNECT_DATA=(SID=(NAME=s)))"),
      unsafe("value-for-block", "(ADDRESS=h:1)" + data, "(ADDRESS=(HOST = h)(PORT = 1))" + data),
      none("value-for-block", "(ADDRESS=h)" + data),
      safe("bad-word", "(KZLB=yes)" + address + data, "(KZLB=ON)" + address + data),
      safe("bad-word", "(KZLB=0)" + address + data, "(KZLB=OFF)" + address + data),
      unsafe("bad-word", "(ADDRESS_LIST=(KZLB_STRATEGY=RANDON)" + address + ")" + data,
             "(ADDRESS_LIST=(KZLB_STRATEGY=RANDOM)" + address + ")" + data),
      none("bad-word", "(KZLB=perhaps)" + address + data),
      safe("bad-number", "(KZLB_READ_TIMEOUT=\"5 \")" + address + data,
           "(KZLB_READ_TIMEOUT=5)" + address + data),
      unsafe("bad-number", "(KZLB_READ_TIMEOUT=-5s)" + address + data,
             "(KZLB_READ_TIMEOUT=-5)" + address + data),
      none("bad-number", "(KZLB_READ_TIMEOUT=2.5)" + address + data),
      none("bad-number", "(ADDRESS=(HOST=h)(PORT=1)(WEIGHT=5m))" + data),
      none("bad-protocol", "(ADDRESS=(PROTOCOL=TCPS)(HOST=h)(PORT=1))" + data),
      // What may have been meant as encryption is never made plain.
      none("bad-protocol", "(ADDRESS=(PROTOCOL=TCSP)(HOST=h)(PORT=1))" + data),
      none("bad-protocol", "(ADDRESS=(PROTOCOL=TCPSS)(HOST=h)(PORT=1))" + data),
      none("bad-protocol", "(ADDRESS=(PROTOCOL=\"TCPS \")(HOST=h)(PORT=1))" + data),
      none("bad-protocol", "(ADDRESS=(PROTOCOL=TCPP)(HOST=h)(PORT=1))" + data),
      none("bad-protocol",
           "(ADDRESS_LIST=(ADDRESS=(PROTOCOL=TCSP)(HOST=h)(PORT=1))" + address + ")" + data),
      unsafe("bad-protocol", "(ADDRESS=(PROTOCOL='tcp')(HOST=h)(PORT=1))" + data,
             "(ADDRESS=(PROTOCOL=TCP)(HOST=h)(PORT=1))" + data),
      unsafe("bad-protocol", "(ADDRESS=(PROTOCOL=TCP,)(HOST=h)(PORT=1))" + data,
             "(ADDRESS=(PROTOCOL=TCP)(HOST=h)(PORT=1))" + data),
      none("bad-protocol", "(ADDRESS=(PROTOCOL='TCPS')(HOST=h)(PORT=1))" + data),
      unsafe("bad-protocol", "(ADDRESS=(PROTOCOL=TPC)(HOST=h)(PORT=1))" + data,
             "(ADDRESS=(PROTOCOL=TCP)(HOST=h)(PORT=1))" + data),
      unsafe("bad-protocol", "(ADDRESS=(PROTOCOL=\"TCP \")(HOST=h)(PORT=1))" + data,
             "(ADDRESS=(PROTOCOL=TCP)(HOST=h)(PORT=1))" + data),
      unsafe("bad-protocol",
             "(ADDRESS_LIST=(ADDRESS=(PROTOCOL=IPC)(KEY=k)))(ADDRESS_LIST=" + address + ")" + data,
             "(ADDRESS_LIST=" + address + ")" + data),
      none("bad-protocol",
           "(ADDRESS_LIST=(ADDRESS=(PROTOCOL=IPC)(KEY=k))(ADDRESS=(PROTOCOL=TCPS)"
           "(HOST=h)(PORT=1)))" +
               data),
      unsafe("unclosed-quote", "(ADDRESS=(HOST=\"h)(PORT=1))" + data,
             "(ADDRESS=(HOST=\"h\")(PORT=1))" + data),
      {"quoted-entry", Applicability::safe, "\"" + in_description(address + data) + "\"",
       in_description(address + data)},
      {"no-block", Applicability::unsafe, "//h:1/s",
       "(DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SERVICE_NAME = s)))"},
      {"no-block", Applicability::none, "h/s", "h/s"},
  };
}

// Text where none belongs.
std::vector<Row> stray_rows() {
  const std::string all = in_description(address + data);
  const std::string lists = "(ADDRESS_LIST=" + address + address + ")" + data;
  return {
      {"no-block", Applicability::safe, "= " + all, " " + all},
      {"no-block", Applicability::safe, " = " + all, " " + all},
      {"no-block", Applicability::safe, "> " + all, " " + all},
      {"no-block", Applicability::safe, "\\\n " + all, "\n " + all},
      {"no-block", Applicability::unsafe, "db:@" + all, all},
      {"no-block", Applicability::none, "db:@(X=1)", "db:@(X=1)"},
      {"no-block", Applicability::none, "z=" + all, "z=" + all},
      {"no-block", Applicability::unsafe, "DESCRIPTION=" + address + data, all},
      {"no-block", Applicability::unsafe,
       "{DESCRIPTION={ADDRESS={HOST=h}{PORT=1}}{CONNECT_DATA={SID=s}}}", all},
      {"no-block", Applicability::unsafe, "[DESCRIPTION=" + address + data + "]", all},
      {"no-block", Applicability::unsafe,
       "\xEF\xBC\x88"
       "DESCRIPTION=" +
           address + data + "\xEF\xBC\x89",
       all},
      {"no-block", Applicability::none, "[SALES=" + address + data + "]",
       "[SALES=" + address + data + "]"},
      safe("value-for-block", address + "(CONNECT_DATA==(SID=s))", address + data),
      safe("value-for-block", "// main\n" + address + data, "# // main\n" + address + data),
      safe("value-for-block", "\\\n" + address + " \\ \n" + data, "\n" + address + " \n" + data),
      unsafe("value-for-block", address + "(CONNECT_DATA=SID=s)", address + data),
      unsafe("value-for-block", "(ADDRESS_LIST=ADDRESS=(HOST=h)(PORT=1))" + data,
             "(ADDRESS_LIST=" + address + ")" + data),
      unsafe("value-for-block", address + "(CONNECT_DATA={SID=s})", address + data),
      unsafe("value-for-block", "(ADDRESS_LIST=two " + address + ")" + data,
             "(ADDRESS_LIST=" + address + ")" + data),
      // The word may be the host, the key of another block, or no item at all.
      none("value-for-block", "(ADDRESS=h (PORT=1))" + data),
      none("value-for-block", address + "(CONNECT_DATA=HOST=s)"),
      none("value-for-block", address + "(CONNECT_DATA=SID=s t)"),
      safe("missing-value", address + "(CONNECT_DATA=(SID==s))", address + data),
      safe("unquoted-value", address + "(CONNECT_DATA=(SID=> s))",
           address + "(CONNECT_DATA=(SID= s))"),
      safe("unquoted-value", address + "(CONNECT_DATA=(SID = > s))",
           address + "(CONNECT_DATA=(SID = s))"),
      safe("missing-close", address + "," + data, address + data),
      safe("missing-close", address + " ; " + data, address + "  " + data),
      safe("missing-close", address + data + ",", address + data),
      safe("missing-close", address + " -- main\n" + data, address + " # -- main\n" + data),
      safe("missing-close", address + " ; main\n" + data, address + " # ; main\n" + data),
      // In a comment its parentheses would be counted.
      none("missing-close", address + " -- (main)\n" + data),
      none("missing-close", address + " -- \"main\"\n" + data),
      unsafe("missing-close", address + " and so on " + data, address + " " + data),
      unsafe("missing-close", address + data + " etc.", address + data + " "),
      unsafe("missing-close", address + " CONNECT_DATA=(SID=s)", address + " " + data),
      unsafe("missing-close", address + "[CONNECT_DATA=[SID=s]]", address + data),
      none("missing-close", address + "[CONNECT_DATA=[SID=s]"),
      none("missing-close", address + " PORT 1 " + data),
      safe("missing-key", "(" + address + ")" + data, address + data),
      safe("missing-key", "(ADDRESS_LIST=( " + address + address + " ))" + data,
           "(ADDRESS_LIST= " + address + address + " )" + data),
      {"missing-key", Applicability::safe, "(" + all + ")", all},
      {"missing-key", Applicability::safe, in_description("(" + lists + ")"),
       in_description(lists)},
  };
}

std::vector<Row> block_rows() {
  return {
      safe("second-address", address + "(ADDRESS=(HOST=i)(PORT=1))" + data,
           "(ADDRESS_LIST = " + address + "(ADDRESS=(HOST=i)(PORT=1)))" + data),
      safe("second-address", "(ADDRESS_LIST=" + address + ")(ADDRESS=(HOST=i)(PORT=1))" + data,
           "(ADDRESS_LIST=" + address + ")(ADDRESS_LIST = (ADDRESS=(HOST=i)(PORT=1)))" + data),
      unsafe("second-address", address + data + "(ADDRESS=(HOST=i)(PORT=1))",
             "(ADDRESS_LIST = " + address + ")" + data +
                 "(ADDRESS_LIST = (ADDRESS=(HOST=i)(PORT=1)))"),
      unsafe("second-connect-data", data + "(CONNECT_DATA=(KZ_MODE=1))" + address,
             "(CONNECT_DATA=(SID=s)(KZ_MODE=1))" + address),
      none("second-connect-data", data + "(CONNECT_DATA=(SID=t))" + address),
  };
}

class Fixes : public testing::TestWithParam<Row> {};

}  // namespace

TEST_P(Fixes, LeaveWhatIsServed) {
  const Row &row = GetParam();
  const std::string before = "x=" + row.before + "\n";
  const kztns::CheckReport report = report_of(before);
  const kztns::Finding *const found = finding_of(report, row.rule);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(name_of(found->fix.applicability), name_of(row.applicability));
  EXPECT_EQ(edited(before, found->fix.edits), "x=" + row.after + "\n");
  EXPECT_FALSE(is_served(before));
  EXPECT_EQ(is_served("x=" + row.after + "\n"), row.applicability != Applicability::none);
}

INSTANTIATE_TEST_SUITE_P(OfKeysOfOthers, Fixes, testing::ValuesIn(foreign_rows()));
INSTANTIATE_TEST_SUITE_P(OfKeys, Fixes, testing::ValuesIn(key_rows()));
INSTANTIATE_TEST_SUITE_P(OfValues, Fixes, testing::ValuesIn(value_rows()));
INSTANTIATE_TEST_SUITE_P(OfStrayText, Fixes, testing::ValuesIn(stray_rows()));
INSTANTIATE_TEST_SUITE_P(OfBlocks, Fixes, testing::ValuesIn(block_rows()));

TEST(Fixes, WriteAbbreviationsOut) {
  const std::string before = "x=" + in_description("(KZLB=of)" + address + data) + "\n";
  const kztns::CheckReport report = report_of(before);
  ASSERT_EQ(report.findings.size(), 1u);
  EXPECT_EQ(report.findings[0].fix.applicability, Applicability::safe);
  EXPECT_EQ(edited(before, report.findings[0].fix.edits),
            "x=" + in_description("(KZLB=OFF)" + address + data) + "\n");
}

TEST(Fixes, KeepTheTreeOfAnEntryThatIsBuilt) {
  const std::string text =
      "x=" + in_description(address + data + "(CONNECT_DATA=(KZ_MODE=1))") + "\n";
  EXPECT_TRUE(is_served(text));
  const kztns::CheckReport report = report_of(text);
  ASSERT_NE(finding_of(report, "second-connect-data"), nullptr);
  EXPECT_TRUE(kztns::edits_of(report.findings, true).empty());
}

TEST(Fixes, SplitAListOfDescriptionsBeforeOtherEntries) {
  const std::string description = in_description(address + data);
  const std::string other = "y=" + description + "\n";
  const std::string before = "x=(DESCRIPTION_LIST=" + description + description + ")\n" + other;
  EXPECT_EQ(edited(before, kztns::edits_of(report_of(before).findings, true)),
            "x=" + description + "\nx_2 =\n  " + description + "\n" + other);
  // Numbers that are taken are passed over.
  const std::string taken = other + "x_2=" + description + "\nx_4=" + description + "\n";
  EXPECT_EQ(edited("x=(DESCRIPTION_LIST=" + description + description + description + ")\n" + taken,
                   kztns::edits_of(report_of("x=(DESCRIPTION_LIST=" + description + description +
                                             description + ")\n" + taken)
                                       .findings,
                                   true)),
            "x=" + description + "\nx_3 =\n  " + description + "\nx_5 =\n  " + description + "\n" +
                taken);
}

TEST(Fixes, LeaveAWordThatIsRight) {
  const kztns::CheckReport report =
      report_of("x=" + in_description("(LOAD_BALANCE=ON)" + address + data) + "\n");
  ASSERT_EQ(report.findings.size(), 1u);
  ASSERT_EQ(report.findings[0].fix.edits.size(), 1u);
  EXPECT_EQ(report.findings[0].fix.edits[0].text, "KZLB");
}

TEST(Fixes, CloseAQuoteInItsEntry) {
  const std::string other = "\ny=" + in_description("(ADDRESS=(HOST=\"i\")(PORT=1))" + data) + "\n";
  const std::string before = "x=" + in_description("(ADDRESS=(HOST=\"h)(PORT=1))" + data) + other;
  const kztns::CheckReport report = report_of(before);
  const kztns::Finding *const found = finding_of(report, "unclosed-quote");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(to_string(found->position), "1:31");
  EXPECT_EQ(edited(before, found->fix.edits),
            "x=" + in_description("(ADDRESS=(HOST=\"h\")(PORT=1))" + data) + other);
}

TEST(Faults, SayWhatToDo) {
  const struct {
    std::string items;
    std::string rule;
    std::string remedy;
  } rows[] = {
      {address + "(CONNECT_DATA=(SERVICE=t)(SID=s))", "unknown-key",
       "remove the item: SID is set here, too"},
      {address + "(CONNECT DATA=(SID=s))", "unknown-key", "did you mean CONNECT_DATA?"},
      {"(ADDRESS=(HOST=h PORT=1))" + data, "unquoted-value",
       "put each item in parentheses of its own"},
      {"(ADDRESS=(HOST=h i)(PORT=1))" + data, "unquoted-value", "write the host's name or address"},
      {"(ADDRESS=(HOST=h)(PORT=15 21))" + data, "unquoted-value", "write the port's number"},
      {"(KZLB_READ_TIMEOUT=10 min)" + address + data, "unquoted-value",
       "write decimal digits, with a sign or without"},
      {"(ADDRESS=(PROTOCOL='TCP')(HOST=h)(PORT=1))" + data, "bad-protocol", "did you mean TCP?"},
      {address + "(CONNECT_DATA=(SID==s))", "missing-value", "remove \"=\""},
      {address + ",;" + data, "missing-close", "remove \",;\""},
      {address + " and so on " + data, "missing-close", "remove \"and so on\""},
      {address + " -- main\n" + data, "missing-close", "begin the comment with \"#\""},
      {address + " \\\n" + data, "missing-close", "remove \"\\\": an entry goes on by itself"},
      {address + "{CONNECT_DATA={SID=s}}", "missing-close",
       "write parentheses instead of brackets"},
      {address + "(CONNECT_DATA=SID=s)", "value-for-block", "put the item in parentheses"},
      {"(" + address + ")" + data, "missing-key", "remove the outer parentheses"},
  };
  for (const auto &row : rows) {
    const kztns::CheckReport report = report_of("x=" + in_description(row.items) + "\n");
    const kztns::Finding *const found = finding_of(report, row.rule);
    ASSERT_NE(found, nullptr) << row.items;
    EXPECT_EQ(found->remedy, row.remedy) << row.items;
  }
}

// Bytes are no minutes.
TEST(Faults, OfASizeWithAUnitHaveNoFix) {
  for (const std::string value : {"10M", "64 MB"}) {
    const kztns::CheckReport report = report_of("KZCISYSTEMVARIABLES=(LOG_SIZE=" + value + ")\n");
    ASSERT_EQ(report.findings.size(), 1u) << value;
    EXPECT_FALSE(report.findings[0].fix) << value;
  }
}

TEST(Faults, OfAColonAfterANameAreMendedByAnEqualSign) {
  const std::string entry = " " + in_description(address + data) + "\n";
  for (const std::string before : {"x :", "x :=", "x:"}) {
    const kztns::CheckReport report = report_of(before + entry);
    ASSERT_EQ(report.findings.size(), 1u) << before;
    const kztns::Finding &found = report.findings[0];
    EXPECT_EQ(kztns::row_of(found.rule).id, "missing-equal") << before;
    EXPECT_TRUE(found.text.starts_with("expected \"=\" after the name \"x\", found \":\": "))
        << found.text;
    EXPECT_EQ(found.remedy, "put \"=\" instead of it");
    EXPECT_EQ(edited(before + entry, found.fix.edits), "x =" + entry) << before;
  }
}

TEST(Faults, OfASecondDescriptionAreNoStrayText) {
  const kztns::CheckReport report =
      report_of("x=" + in_description(address + data) + in_description("(SDU=1)" + address + data) +
                "\ny=" + in_description(address + data) + "\n");
  EXPECT_NE(finding_of(report, "unknown-key"), nullptr);
  EXPECT_NE(finding_of(report, "second-block"), nullptr);
  EXPECT_EQ(finding_of(report, "stray-text"), nullptr);
}

TEST(Faults, LeaveTheWarningsAboutValues) {
  const kztns::CheckReport report = report_of(
      "x=" + in_description("(SOURCE_ROUTE=ON)(ADDRESS=(HOST=h)(PORT=none)(WEIGHT=-1))") + "\n");
  EXPECT_NE(finding_of(report, "bad-port"), nullptr);
  EXPECT_NE(finding_of(report, "negative-number"), nullptr);
  EXPECT_EQ(finding_of(report, "no-service"), nullptr);
}

TEST(Faults, OfAValueWithAUnitAreToldOfTheKeyThatIsThere) {
  const kztns::CheckReport report =
      report_of("x=" + in_description("(CONNECT_TIMEOUT=90ms)" + address + data) + "\n");
  ASSERT_EQ(report.findings.size(), 1u);
  EXPECT_EQ(report.findings[0].text, "unknown key CONNECT_TIMEOUT");
}

TEST(Faults, SayWhereCheckingEnds) {
  const kztns::CheckReport report =
      report_of("x=" + in_description("(ADDRESS=(HOST=" + std::string(300, 'h') + ")(PORT=z))"));
  const kztns::Finding *const found = finding_of(report, "key-cut");
  ASSERT_NE(found, nullptr);
  EXPECT_NE(found->text.find("; the rest of the entry is not checked"), std::string::npos);
}

TEST(ForeignKeys, AreDocumented) {
  std::ifstream document(std::string(KZOCI_SOURCE_DIR) + "/docs/diagnostics.md");
  std::vector<std::string> rows;
  for (std::string line; std::getline(document, line) && line != "## The rules";) {
    if (line == "## Keys of other readers") rows.clear();
    if (line.starts_with("| `")) rows.push_back(line);
  }
  std::vector<std::string> expected;
  for (const kztns::ForeignKey &key : kztns::foreign_keys())
    expected.push_back("| `" + std::string(key.word) + "` | " + std::string(key.there) + " | " +
                       fix_of(key) + " | " + std::string(key.here) + " | " +
                       (key.shared ? "yes" : "no") + " |");
  EXPECT_EQ(rows, expected);
}
