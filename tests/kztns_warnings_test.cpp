// What is accepted, but hardly meant.
#include <gtest/gtest.h>

#include "check/check_once.h"
#include "support/checked_file.h"

namespace {

const std::string address = "(ADDRESS=(HOST=h)(PORT=1))";
const std::string data = "(CONNECT_DATA=(SID=s))";

std::vector<std::string> rules_of(const std::string &description) {
  const kztns::NamesText text("x=(DESCRIPTION=" + description + ")\n");
  std::vector<std::string> rules;
  for (const kztns::Finding &finding : kztns::check_once(text, {.file = "names.ora"}).findings)
    rules.emplace_back(kztns::row_of(finding.rule).id);
  return rules;
}

using Rules = std::vector<std::string>;

}  // namespace

TEST(Warnings, OfItemsGivenAgain) {
  EXPECT_EQ(rules_of(address + "(CONNECT_DATA=(SID=s)(SERVICE_NAME=t))"), Rules{"repeated-key"});
  EXPECT_EQ(
      rules_of("(KZLB_BLACKLIST=(APPEND_STRATEGY=(RETRYTIMES=1)(RETRY_TIMES=2)))" + address + data),
      Rules{"repeated-key"});
  EXPECT_EQ(
      rules_of("(KZLB_BLACKLIST=(APPEND_STRATEGY=(DURATION=1))(APPEND_STRATEGY=(DURATION=2)))" +
               address + data),
      Rules{"repeated-key"});
  // What is too long is dropped, and replaces nothing.
  EXPECT_EQ(rules_of("(ADDRESS=(HOST=h)(PORT=1)(PORT=1234567))" + data), Rules{"overlong-value"});
  EXPECT_EQ(rules_of("(ADDRESS_LIST=" + address + ")(ADDRESS_LIST=" + address + ")" + data),
            Rules{});
}

TEST(Warnings, OfDashesOfDocuments) {
  for (const std::string dash : {"\u2010", "\u2011", "\u2013", "\u2014", "\u2212"}) {
    EXPECT_EQ(rules_of("(ADDRESS=(HOST=db" + dash + "1)(PORT=1))" + data), Rules{"placeholder"})
        << dash;
    EXPECT_EQ(support::told("hr" + dash + "qa-1 = (DESCRIPTION =" + address + data + ")\n"),
              "1:3 odd-name: has the dash \"" + dash +
                  "\" for \"-\": the entry is found only by a name with it\n");
  }
  EXPECT_EQ(rules_of("(ADDRESS=(HOST=db-1\u00E4)(PORT=1))" + data), Rules{});
}

TEST(Warnings, OfInvisibleCharactersInWhatIsDropped) {
  EXPECT_EQ(support::told("a = (DESCRIPTION =(ADDRESS=(HOST=h)(PORT=\u200B1521))" + data + ")\n"),
            "1:42 overlong-value: PORT of 7 characters is dropped: the limit is 6, and the "
            "invisible character \\xe2\\x80\\x8b counts\n");
}

TEST(Warnings, OfAddressesSeenTogether) {
  const std::string other = "(ADDRESS=(HOST=h)(PORT=2))";
  EXPECT_EQ(rules_of("(ADDRESS_LIST=" + address + other + address + ")" + data),
            Rules{"equal-addresses"});
  EXPECT_EQ(rules_of("(ADDRESS_LIST=" + address + other + ")" + data), Rules{});
  EXPECT_EQ(rules_of("(ADDRESS_LIST=" + address + "(ADDRESS=(HOST=H)(PORT=1)))" + data),
            Rules{"equal-addresses"});
  const std::string weightless = "(ADDRESS=(HOST=i)(PORT=1)(WEIGHT=0))";
  EXPECT_EQ(rules_of("(ADDRESS_LIST=" + weightless + ")" + data), Rules{"zero-weights"});
  EXPECT_EQ(rules_of("(ADDRESS_LIST=(KZLB=OFF)" + weightless + ")" + data), Rules{});
  EXPECT_EQ(rules_of("(ADDRESS_LIST=" + weightless + address + ")" + data), Rules{});
}

TEST(Warnings, OfHostsThatNobodyFilledIn) {
  for (const std::string host : {"<host>", "${HOST}", "'h'", "h,", "h;"})
    EXPECT_EQ(rules_of("(ADDRESS=(HOST=" + host + ")(PORT=1))" + data), Rules{"placeholder"})
        << host;
  for (const std::string host : {"\u201Cdb1\u201D", "\u2018db1\u2019"})
    EXPECT_EQ(rules_of("(ADDRESS=(HOST=" + host + ")(PORT=1))" + data), Rules{"placeholder"});
  for (const std::string host : {"@@HOST@@", "$DB_HOST", "%HOST%", "[HOST]", "&lt;host", "a\\b"})
    EXPECT_EQ(rules_of("(ADDRESS=(HOST=" + host + ")(PORT=1))" + data), Rules{"placeholder"})
        << host;
  for (const std::string host : {"\"\"", "\" h \"", "h]", "\"h\n\""})
    EXPECT_EQ(rules_of("(ADDRESS=(HOST=" + host + ")(PORT=1))" + data), Rules{"placeholder"})
        << host;
  EXPECT_EQ(rules_of("(ADDRESS=(HOST=[fe80::1])(PORT=1))" + data), Rules{});
  EXPECT_EQ(rules_of("(ADDRESS=(HOST=fe80::1%eth0)(PORT=1))" + data), Rules{});
  EXPECT_EQ(rules_of("(ADDRESS=(HOST=\xC2\xA0h)(PORT=1))" + data), Rules{"odd-bytes"});
  EXPECT_EQ(rules_of("(ADDRESS=(HOST=h\xC2\xA0i)(PORT=1))" + data), Rules{"odd-bytes"});
  EXPECT_EQ(rules_of("(ADDRESS=(HOST=\"h\xC2\xA0\")(PORT=1))" + data), Rules{});
}

TEST(Warnings, OfServicesThatNobodyFilledIn) {
  const auto of_data = [](const std::string &item) {
    return rules_of(address + "(CONNECT_DATA=(" + item + "))");
  };
  for (const char *const name : {"<s>", "{s}", "{{s}}", "${S}", "$(S)", "%S%", "@S@", "[S]"}) {
    const std::string value = std::string(name).find('(') == std::string::npos
                                  ? std::string(name)
                                  : '"' + std::string(name) + '"';
    EXPECT_EQ(of_data("SERVICE_NAME=" + value), Rules{"placeholder"}) << name;
    EXPECT_EQ(of_data("SID=" + value), Rules{"placeholder"}) << name;
  }
  for (const char *const name : {"s$1", "s@t", "%s", "<>", "[]", "%%", "s%"})
    EXPECT_EQ(of_data(std::string("SERVICE_NAME=") + name), Rules{}) << name;
  for (const char *const name : {"\"\"", "\" s\"", "\"s\n\"", "s,", "s;", "s]", "s}"})
    EXPECT_EQ(of_data(std::string("SID=") + name), Rules{"placeholder"}) << name;
  EXPECT_EQ(of_data("SID=s)(KZ_USER_EXTRA_INFO=<x>"), Rules{});
}

TEST(Warnings, OfHostsThatAreNone) {
  const auto of_host = [](const std::string &host) {
    return rules_of("(ADDRESS=(HOST=" + host + ")(PORT=1))" + data);
  };
  for (const char *const host :
       {"h:1521", "http://h", "10.0.1.256", "10.0.1.", "10.0.1", "1.2.3.4.5"})
    EXPECT_EQ(of_host(host), Rules{"placeholder"}) << host;
  for (const char *const host : {"fe80::1", "::1", "10.0.1.255", "0.0.0.0", "h1.2", "h:x"})
    EXPECT_EQ(of_host(host), Rules{}) << host;
}

TEST(Warnings, OfQuotesThatArePartOfAValue) {
  const auto of_service = [](const std::string &name) {
    return rules_of(address + "(CONNECT_DATA=(SERVICE_NAME=" + name + "))");
  };
  for (const char *const name : {"'s'", "\u2018s\u2019", "\u201Cs\u201D", "\u201Es\u201C"})
    EXPECT_EQ(of_service(name), Rules{"foreign-quotes"}) << name;
  for (const char *const name : {"\"'s'\"", "s'", "''", "'"})
    EXPECT_EQ(of_service(name), Rules{}) << name;
}

TEST(Warnings, OfInvisibleCharactersAtTheEndsOfTexts) {
  const auto of_sid = [](const std::string &sid) {
    return rules_of(address + "(CONNECT_DATA=(SID=" + sid + "))");
  };
  EXPECT_EQ(of_sid("s\xC2\xA0"), Rules{"odd-bytes"});
  EXPECT_EQ(of_sid("\xE2\x80\x8Bs"), Rules{"odd-bytes"});
  EXPECT_EQ(of_sid("s\xC2\xA0t"), Rules{});
  EXPECT_EQ(of_sid("\"s\xC2\xA0\""), Rules{});
}

TEST(Warnings, OfNumbersThatBecomeNegative) {
  const auto of_timeout = [](const std::string &number) {
    return rules_of("(KZLB_READ_TIMEOUT=" + number + ")" + address + data);
  };
  EXPECT_EQ(of_timeout("18446744073709551615"), Rules{"narrowed-number"});
  EXPECT_EQ(of_timeout("9223372036854775808"), Rules{"narrowed-number"});
  EXPECT_EQ(of_timeout("9223372036854775807"), Rules{});
  EXPECT_EQ(of_timeout("\" 5\""), Rules{});
  EXPECT_EQ(of_timeout("\" -5\""), Rules{"negative-number"});
  EXPECT_EQ(of_timeout("\"\t9223372036854775808\""), Rules{"narrowed-number"});
}
