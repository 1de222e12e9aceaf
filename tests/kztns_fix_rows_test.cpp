// What the fix of a single fault leaves of an entry, by tables.
#include "support/entry_fixes.h"

namespace {

using namespace support;

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
      // The unit that is meant here is not known.
      none("unknown-key", "(CONNECT_TIMEOUT=90ms)" + address + data),
      none("unknown-key", "(CONNECT_TIMEOUT=1m)" + address + data),
      none("unknown-key", "(CONNECT_TIMEOUT=3 sec)" + address + data),
      unsafe("unknown-key", "(FAILOVER=ON)" + address + data, address + data),
      unsafe("unknown-key",
             address + "(CONNECT_DATA=(FAILOVER_MODE=(TYPE=SELECT)(METHOD=BASIC))(SID=s))",
             address + data),
      none("unknown-key", address + data + "(SECURITY=(SSL_SERVER_CERT_DN=\"CN=x\"))"),
      // What would give up encryption or a proxy stays, whatever it is called.
      none("unknown-key", "(ENCRYPTION=REQUIRED)" + address + data),
      none("unknown-key", "(ADDRESS=(HOST=h)(PORT=1)(TLS_VERSION=1.2))" + data),
      none("unknown-key", address + data + "(ssl_cipher_suites=x)"),
      none("unknown-key", address + data + "(SSL_CLIENT_AUTHENTICATION=TRUE)"),
      none("unknown-key", "(ADDRESS=(HOST=h)(PORT=1)(HTTPS_PROXY_USER=u))" + data),
      none("unknown-key", address + "(CONNECT_DATA=(SID=s)(TUNNEL_SERVICE_NAME=t))"),
      none("unknown-key", address + data + "(NET=(SSL_VERSION=1.2))"),
      none("unknown-key", address + "(CONNECT_DATA=(SSL_VERSION=1.2, SID=s))"),
      none("unknown-key", address + data + "(FAILOVER_MODE=(BACKUP=(ADDRESS=(HOST=i)(PORT=1))))"),
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
      none("unknown-key", address + data + "(CONNECT_DAT=(SERVICE_NAME=t))"),
      unsafe("unknown-key", address + "(CONNECT DATA=(SID=s))", address + data),
      unsafe("unknown-key", address + "(Connect\t Data=(SID=s))", address + data),
      unsafe("unknown-key", address + "(CONNECT_DATA=(SERVICE NAME=s))",
             address + "(CONNECT_DATA=(SERVICE_NAME=s))"),
      unsafe("missing-equal", "(ADDRESS LIST=" + address + ")" + data,
             "(ADDRESS_LIST=" + address + ")" + data),
      unsafe("unknown-key", "(ADDRESS=(HO=ST=h)(PORT=1))" + data, address + data),
      unsafe("unknown-key", "(ADDRESS=(H OST=h)(PORT=1))" + data, address + data),
      unsafe("missing-key", "(ADDRESS=(=HOST=h)(PORT=1))" + data, address + data),
      // What counts is not removed with an unknown key.
      none("unknown-key", "(ADDRESS=(COLOR=h)(PORT=1))" + data),
      none("unknown-key", address + "(CONNECT_DATA=(COLOR=s))"),
      none("unknown-key", address + "(DATA=(SID=s))"),
      none("unknown-key", "(ADDRESS_LIST=" + address + "(BOX=(HOST=i)(PORT=1)))" + data),
      // What is no item may be a value.
      none("unknown-key", "(ADDRESS=(HOST=h)(PORT1))" + data),
      none("unknown-key", address + "(CONNECT_DATA=(s))"),
      safe("unknown-key", "(ADDRESS=(HOST:h)(PORT=1))" + data, address + data),
      safe("unknown-key", "(ADDRESS=(HOST=h)(PORT:1))" + data, address + data),
      unsafe("unknown-key", "(ADDR=(HOST=h)(PORT=1))" + data, address + data),
      unsafe("unknown-key", address + "(CONNECT_DATA=(SERVICE_NAMES=s))",
             address + "(CONNECT_DATA=(SERVICE_NAME=s))"),
      {"unknown-key", Applicability::unsafe, "(DESC=" + address + data + ")",
       in_description(address + data)},
      unsafe("missing-equal", address + "(CONNECT_DATA SID=s)",
             address + "(CONNECT_DATA = (SID=s))"),
      none("missing-equal", address + "(CONNECT_DATA HOST=s)"),
      unsafe("misplaced-key", address + "(CONNECT_DATA=(KZLB_READ_TIMEOUT=5)(SID=s))",
             address + "(CONNECT_DATA=(SID=s))(KZLB_READ_TIMEOUT=5)"),
      unsafe("misplaced-key", "(ADDRESS=(HOST=h)(PORT=1)(SID=s))(CONNECT_DATA=(KZ_MODE=1))",
             address + "(CONNECT_DATA=(KZ_MODE=1)(SID=s))"),
      unsafe("misplaced-key", address + "(SID=s)", address + "(CONNECT_DATA = (SID=s))"),
      unsafe("misplaced-key", "(HOST=h)(PORT=1)" + data, "(ADDRESS = (HOST=h)(PORT=1))" + data),
      unsafe("misplaced-key", "(ADDRESS_LIST=(HOST=h)(PORT=1)" + address + ")" + data,
             "(ADDRESS_LIST=(ADDRESS = (HOST=h)(PORT=1))" + address + ")" + data),
      none("misplaced-key", "(PORT=1)(ADDRESS_LIST=" + address + address + ")" + data),
      unsafe("misplaced-key", "(ADDRESS=(HOST=h)(PORT=1)(SID=s))",
             address + "(CONNECT_DATA = (SID=s))"),
      unsafe("misplaced-key",
             "(ADDRESS_LIST=(ADDRESS=(HOST=h)(PORT=1)" + address + ")" + address + ")" + data,
             "(ADDRESS_LIST=" + address + address + address + ")" + data),
      // What is moved or removed leaves its comments.
      safe("unknown-key", address + "(CONNECT_DATA=(SID=s)(SERVER=DEDICATED # 1\n # 2\n))",
           address + "(CONNECT_DATA=(SID=s) # 1\n # 2\n)"),
      none("misplaced-key", address + "(CONNECT_DATA=(PORT=2)(SID=s))"),
      {"misplaced-key", Applicability::safe, address + data,
       "(DESCRIPTION = " + address + data + ")"},
      // Without a service it may be another program's, a listener's for example.
      {"misplaced-key", Applicability::unsafe, address, "(DESCRIPTION = " + address + ")"},
      {"misplaced-key", Applicability::unsafe, "(ADDRESS_LIST=" + address + address + ")",
       "(DESCRIPTION = (ADDRESS_LIST=" + address + address + "))"},
      {"misplaced-key", Applicability::unsafe, address + "(CONNECT_DATA=(KZ_MODE=1))",
       "(DESCRIPTION = " + address + "(CONNECT_DATA=(KZ_MODE=1)))"},
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
      none("missing-equal", address + "(CONNECT_DATA=(SID=s)(KZ_MODE : a b))"),
      safe("missing-key", address + "(CONNECT_DATA=()(SID=s))", address + data),
      unsafe("missing-key", address + "(CONNECT_DATA=(=1)(SID=s))", address + data),
      // It may be the host.
      none("missing-key", "(ADDRESS=(=h)(PORT=1))" + data),
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
      none("unquoted-value", "(KZLB_CONNECT_TIMEOUT=5 s)" + address + data),
      unsafe("unquoted-value", "(ADDRESS=(HOST=h PORT=1))" + data,
             "(ADDRESS=(HOST=h)(PORT=1))" + data),
      unsafe("unquoted-value", "(ADDRESS=(HOST=h, PORT=1 , WEIGHT=2))" + data,
             "(ADDRESS=(HOST=h)(PORT=1)(WEIGHT=2))" + data),
      unsafe("bad-protocol", "(ADDRESS=(PROTOCOL=TCP, HOST=h, PORT=1))" + data,
             "(ADDRESS=(PROTOCOL=TCP)(HOST=h)(PORT=1))" + data),
      none("unquoted-value", "(ADDRESS=(HOST=h PORT 1))" + data),
      none("unquoted-value", "(ADDRESS=(HOST=h i=1))" + data),
      unsafe("unquoted-value", "(ADDRESS=(HOST=h PORT=1,))" + data,
             "(ADDRESS=(HOST=h)(PORT=1))" + data),
      unsafe("bad-number", "(ADDRESS=(WEIGHT=1, PORT=2))" + data,
             "(ADDRESS=(WEIGHT=1)(PORT=2))" + data),
      none("unquoted-value", address + "(CONNECT_DATA=(SID=set NAME=x))"),
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
      none("bad-number", "(KZLB_READ_TIMEOUT=-5s)" + address + data),
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
      none("bad-protocol",
           "(ADDRESS_LIST=(ADDRESS=(PROTOCOL=: TCP)(HOST=i)(PORT=1))" + address + ")" + data),
      none("bad-protocol",
           "(ADDRESS_LIST=(ADDRESS=(PROTOCOL=$PROTO)(HOST=i)(PORT=1))" + address + ")" + data),
      none("bad-protocol",
           "(ADDRESS_LIST=(ADDRESS=(PROTOCOL=qa2)(HOST=i)(PORT=1))" + address + ")" + data),
      none("bad-protocol",
           "(ADDRESS_LIST=(ADDRESS=(PROTOCOL=PORT)(HOST=i)(PORT=1))" + address + ")" + data),
      none("bad-protocol",
           "(ADDRESS_LIST=(ADDRESS=(PROTOCOL=\"SID TCP\")(HOST=i)(PORT=1))" + address + ")" + data),
      none("bad-protocol",
           "(ADDRESS_LIST=(ADDRESS=(PROTOCOL=TCPPROTOCOL)(HOST=i)(PORT=1))" + address + ")" + data),
      unsafe("bad-protocol",
             "(ADDRESS_LIST=(ADDRESS=(PROTOCOL=nmp)(SERVER_PIPE=p))" + address + ")" + data,
             "(ADDRESS_LIST=" + address + ")" + data),
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
      // The next quote is another value's.
      unsafe("unclosed-quote",
             "(ADDRESS=(HOST=\"h)(PORT=1))" + std::string("(CONNECT_DATA=(SID=\"s\"))"),
             "(ADDRESS=(HOST=\"h\")(PORT=1))" + std::string("(CONNECT_DATA=(SID=\"s\"))")),
      unsafe("unclosed-quote",
             address + "(CONNECT_DATA=(SID=\"s)(KZ_USER_EXTRA_INFO=\"web shop\"))",
             address + "(CONNECT_DATA=(SID=\"s\")(KZ_USER_EXTRA_INFO=\"web shop\"))"),
      unsafe("unclosed-quote", "(ADDRESS=(HOST=h\")(PORT=1))" + data, address + data),
      unsafe("unquoted-value", address + "(CONNECT_DATA=(SID=s)(KZ_USER_EXTRA_INFO=web shop\"))",
             address + "(CONNECT_DATA=(SID=s)(KZ_USER_EXTRA_INFO=\"web shop\"))"),
      none("unquoted-value", address + "(CONNECT_DATA=(SID=s)(KZ_USER_EXTRA_INFO=web \"shop\"))"),
      none("bad-number",
           "(KZLB_BLACKLIST=(APPEND_STRATEGY=(NAME=RETRYDURATION)(DURATION=5s)))" + address + data),
      unsafe("unclosed-quote", "(ADDRESS=(HOST=\"h)(PORT=1))" + data,
             "(ADDRESS=(HOST=\"h\")(PORT=1))" + data),
      {"quoted-entry", Applicability::safe, "\"" + in_description(address + data) + "\"",
       in_description(address + data)},
      {"no-block", Applicability::unsafe, "//h:1/s",
       "(DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SERVICE_NAME = s)))"},
      {"no-block", Applicability::unsafe, "\"h:1/s\"",
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
      // Those of the whole entry go together; a sign that touches a value may be its own.
      safe("missing-value", "(KZLB == ON)(ADDRESS=(HOST => h)(PORT => 1))" + data,
           "(KZLB = ON)(ADDRESS=(HOST = h)(PORT = 1))" + data),
      unsafe("missing-value", "(KZLB == ON)(ADDRESS=(HOST=>h)(PORT=1))" + data,
             "(KZLB = ON)(ADDRESS=(HOST=h)(PORT=1))" + data),
      safe("bad-protocol", "(ADDRESS=(PROTOCOL=> TCP)(HOST=h)(PORT=1))" + data,
           "(ADDRESS=(PROTOCOL= TCP)(HOST=h)(PORT=1))" + data),
      safe("bad-word", "(KZLB=> ON)" + address + data, "(KZLB= ON)" + address + data),
      safe("unquoted-value", address + "(CONNECT_DATA=(SID=> s))",
           address + "(CONNECT_DATA=(SID= s))"),
      safe("unquoted-value", address + "(CONNECT_DATA=(SID = > s))",
           address + "(CONNECT_DATA=(SID = s))"),
      safe("missing-close", address + "," + data, address + data),
      safe("missing-close", address + " ;\n" + data, address + " \n" + data),
      // What comes after it on the line may be meant as a comment.
      unsafe("missing-close", address + " ; " + data, address + "  " + data),
      safe("missing-close", address + "\n;(SDU=1)\n" + data, address + "\n# ;(SDU=1)\n" + data),
      safe("missing-close", address + data + ",", address + data),
      safe("missing-close", address + " -- main\n" + data, address + " # -- main\n" + data),
      safe("missing-close", address + " ; main\n" + data, address + " # ; main\n" + data),
      safe("missing-close", address + " -- (main) \"\n" + data,
           address + " # -- (main) \"\n" + data),
      unsafe("missing-close", address + "/* (SDU=1)\n*/ " + data,
             address + "# /* (SDU=1)\n# */\n" + data),
      // In a comment its parentheses would be counted.
      none("missing-close", address + " /* :-) (\n*/ " + data),
      none("missing-close", address + " /* " + data),
      unsafe("missing-close", address + " and so on " + data, address + " " + data),
      unsafe("missing-close", address + data + " etc.", address + data + " "),
      unsafe("missing-close", address + " CONNECT_DATA=(SID=s)", address + " " + data),
      unsafe("missing-close", "(ADDRESS=(HOST=h) PORT=1 (PROTOCOL=TCP))" + data,
             "(ADDRESS=(HOST=h) (PORT=1) (PROTOCOL=TCP))" + data),
      unsafe("missing-close", address + "[CONNECT_DATA=[SID=s]]", address + data),
      none("missing-close", address + "[CONNECT_DATA=[SID=s]"),
      none("missing-close", address + " PORT 1 " + data),
      none("missing-close", "(ADDRESS=(HOST=h) PORT: 1)" + data),
      none("missing-close", "(ADDRESS=(PORT=1) db1)" + data),
      unsafe("missing-close", "(ADDRESS=(HOST=h)(PORT=1) db1)" + data,
             "(ADDRESS=(HOST=h)(PORT=1) )" + data),
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
