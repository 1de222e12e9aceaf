// KZCIAddressBuild and KZCIAddressListBuild, each driven alone over the body of
// its block.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "support/builder_body.h"
#include "support/expected_log.h"
#include "support/parsing.h"

namespace {

using namespace builder_body;
using namespace expected_log;
using namespace std::string_literals;

// ---------------------------------------------------------------- one address

const Item host_item = {"HOST", LB_HOST, {"DEBUG KZCIAddressBuild get key_type 20"}, "h"};
const Item port_item = {"PORT", LB_PORT, {"DEBUG KZCIAddressBuild get key_type 21"}, "1"};
const Item protocol_item = {
    "PROTOCOL", LB_PROTOCOL, {"DEBUG KZCIAddressBuild get key_type 19"}, "TCP"};
const Item weight_item = {"WEIGHT", LB_WEIGHT, {"DEBUG KZCIAddressBuild get key_type 22"}, "2"};

Lines address_failed(sword status) {
  return {"ERROR something error in build address, status:" + std::to_string(status)};
}

class AddressBuild : public ::testing::Test {
 protected:
  void SetUp() override {
    support::reset_platform();
    ASSERT_EQ(KZCIAddressListInit(&list_), 0);
  }
  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    support::reset_platform();
  }

  // Builds one address of a body that is good; the body ends before its ")".
  const KZCIAddress *good(const std::string &body) {
    support::reset_platform();
    KZCIAddressListInit(&list_);
    Body input(body + ")");
    EXPECT_EQ(KZCIAddressBuild(&list_, &input.params), 0);
    EXPECT_EQ(input.unread(), ")");
    EXPECT_EQ(list_.address_count, 1u);
    EXPECT_EQ(live(), Lines{address_block});
    return list_.address;
  }

  void expect_failure(const Fault &fault) {
    SCOPED_TRACE(fault.name + ": " + fault.input);
    support::reset_platform();
    Body input(fault.input);
    EXPECT_EQ(KZCIAddressBuild(&list_, &input.params), -1);
    EXPECT_EQ(joined(support::events()),
              joined(address_call() + allocated(address_block) + refill(mode) + fault.log +
                     address_failed(fault.status) + Lines{"FREE address"}));
    EXPECT_EQ(input.unread(), fault.unread);
    EXPECT_EQ(list_.address, nullptr);
    EXPECT_EQ(list_.address_count, 0u);
  }

  void expect_failures(const std::vector<Fault> &faults) {
    for (const Fault &fault : faults) expect_failure(fault);
  }

  KZCIAddressList list_;
};

std::string host_of(const KZCIAddress &a) { return support::text_of(a.host, a.host_len); }
std::string port_of(const KZCIAddress &a) { return support::text_of(a.port, a.port_len); }
std::string protocol_of(const KZCIAddress &a) {
  return support::text_of(a.protocol, a.protocol_len);
}

TEST_F(AddressBuild, LogsEveryStepOfAGoodAddress) {
  Body input("(PROTOCOL=TCP)(HOST=10.0.0.1)(PORT=2881)(WEIGHT=2)) (next");
  ASSERT_EQ(KZCIAddressBuild(&list_, &input.params), 0);
  EXPECT_EQ(joined(support::events()),
            joined(address_call() + allocated(address_block) + refill(mode) +
                   read_item(protocol_item, "TCP") + read_item(host_item, "10.0.0.1") +
                   read_item(port_item, "2881") + read_item(weight_item, "2") + block_end()));
  EXPECT_EQ(host_of(*list_.address), "10.0.0.1");
  EXPECT_EQ(port_of(*list_.address), "2881");
  EXPECT_EQ(protocol_of(*list_.address), "TCP");
  EXPECT_EQ(list_.address->weight, 2);
  EXPECT_EQ(input.unread(), ") (next");
  EXPECT_EQ(input.params.tns_token_type, TNS_RIGHT_PARENTHESES);
}

TEST_F(AddressBuild, AbsentKeysLeaveTheDefaults) {
  const KZCIAddress *address = good("(HOST=h)(PORT=1)");
  ASSERT_NE(address, nullptr);
  EXPECT_EQ(host_of(*address), "h");
  EXPECT_EQ(port_of(*address), "1");
  EXPECT_EQ(address->protocol_len, 0u);
  EXPECT_EQ(address->weight, 1);
  const KZCIAddress *weighed = good("(WEIGHT=3)");
  ASSERT_NE(weighed, nullptr);
  EXPECT_EQ(weighed->host_len, 0u);
  EXPECT_EQ(weighed->port_len, 0u);
  EXPECT_EQ(weighed->weight, 3);
}

// The parse state stands in a comment with the rest of it at hand.
TEST_F(AddressBuild, MayBeginWithinAComment) {
  constexpr std::string_view at_hand = "(WEIGHT=1)\n(WEIGHT=7))";
  Body input("");
  std::memcpy(input.params.tns_buffer, at_hand.data(), at_hand.size());
  input.params.buffer_len = static_cast<ub4>(at_hand.size());
  input.params.is_comment = 1;
  EXPECT_EQ(KZCIAddressBuild(&list_, &input.params), 0);
  ASSERT_EQ(list_.address_count, 1u);
  EXPECT_EQ(list_.address->weight, 7);
  EXPECT_EQ(input.params.is_comment, 0);
  EXPECT_EQ(input.unread(), ")");
}

TEST_F(AddressBuild, ItemsMayComeInAnyOrderAndLetterCase) {
  const KZCIAddress *address = good("(weight=4)\n(Port=1)\t(HOST = h) (pRoToCoL=\"tcp\")");
  ASSERT_NE(address, nullptr);
  EXPECT_EQ(host_of(*address), "h");
  EXPECT_EQ(port_of(*address), "1");
  EXPECT_EQ(protocol_of(*address), "tcp");
  EXPECT_EQ(address->weight, 4);
}

TEST_F(AddressBuild, LaterItemOfTheSameKeyWins) {
  const KZCIAddress *address = good(
      "(HOST=a)(PORT=1)(WEIGHT=5)(PROTOCOL=TCP)"
      "(HOST=b)(PORT=22)(WEIGHT=6)(PROTOCOL=tcp)");
  ASSERT_NE(address, nullptr);
  EXPECT_EQ(host_of(*address), "b");
  EXPECT_EQ(port_of(*address), "22");
  EXPECT_EQ(protocol_of(*address), "tcp");
  EXPECT_EQ(address->weight, 6);
}

TEST_F(AddressBuild, CopiesTheTextWithoutTerminator) {
  const KZCIAddress *address = good("(HOST=abcdef)(HOST=xy)(PORT=123456)(PORT=9)");
  ASSERT_NE(address, nullptr);
  EXPECT_EQ(host_of(*address), "xy");
  EXPECT_EQ(support::text_of(address->host, 7), "xycdef\0"s);
  EXPECT_EQ(port_of(*address), "9");
  EXPECT_EQ(support::text_of(address->port, 7), "923456\0"s);
}

TEST_F(AddressBuild, HostKeepsQuotedText) {
  struct {
    std::string input, host;
  } const rows[] = {
      {"(HOST=\"a b\")", "a b"},  {"(HOST=a\"(=)\"b)", "a(=)b"}, {"(HOST=h#1)", "h#1"},
      {"(HOST=\"\")", ""},        {"(HOST=h)(HOST=\"\")", ""},   {"(HOST=\"a\nb\")", "a\nb"},
      {"(HOST=a\0b)"s, "a\0b"s},  {"(HOST=\"\0\")"s, "\0"s},     {"(HOST=# to the end\nh)", "h"},
      {"(HOST=::1)", "::1"},      {"(HOST=<,;-.>)", "<,;-.>"},   {"(HOST=\xC3\xA4)", "\xC3\xA4"},
      {"# front\n(HOST=h)", "h"}, {"(HOST=HOST)", "HOST"},       {"(\"HO\"ST=h)", "h"},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.input);
    const KZCIAddress *address = good(row.input);
    ASSERT_NE(address, nullptr);
    EXPECT_EQ(host_of(*address), row.host);
    EXPECT_EQ(support::warnings_and_errors(), block_end());
  }
}

TEST_F(AddressBuild, HostTakes256Characters) {
  for (const std::size_t length : {1u, 255u, 256u}) {
    SCOPED_TRACE(length);
    const std::string host(length, 'h');
    const KZCIAddress *address = good("(PORT=1)(HOST=" + host + ")(WEIGHT=7)");
    ASSERT_NE(address, nullptr);
    EXPECT_EQ(host_of(*address), host);
    EXPECT_EQ(port_of(*address), "1");
    EXPECT_EQ(address->weight, 7);
    EXPECT_EQ(address->host[256], '\0');
  }
}

TEST_F(AddressBuild, HostOf257CharactersIsCutAndItsRestIsOutOfPlace) {
  const std::string cut(256, 'h');
  expect_failure({"257 characters", "(HOST=" + cut + "x))",
                  read_item(host_item, cut) + mismatch(TNS_RIGHT_PARENTHESES, TNS_KEY), "x))"});
}

TEST_F(AddressBuild, HostWhose256thCharacterIsTheLastAtHandIsRefused) {
  const std::string longest(256, 'h');
  expect_failure({"at the end of the input", "(HOST=" + longest,
                  item_begins(host_item) + key_too_long() + no_text(), ""});
  const std::string blanks(1024 - 256 - 6, ' ');
  expect_failure({"at the end of a slice", blanks + "(HOST=" + longest + "))",
                  item_begins(host_item) + key_too_long() + no_text(), "))"});
}

TEST_F(AddressBuild, PortKeepsUpToSixCharacters) {
  struct {
    std::string input, port;
    Lines errors;
  } const rows[] = {
      {"(PORT=1)", "1", {}},
      {"(PORT=12345)", "12345", {}},
      {"(PORT=123456)", "123456", {}},
      {"(PORT=1234567)", "", no_text()},
      {"(PORT=12)(PORT=1234567)", "12", no_text()},
      {"(PORT=1234567)(PORT=12)", "12", no_text()},
      {"(PORT=1234567)(PORT=12345678)", "", no_text() + no_text()},
      {"(PORT=\"1234567\")", "", no_text()},
      {"(PORT=\"\")", "", {}},
      {"(PORT=12)(PORT=\"\")", "", {}},
      {"(PORT=http)", "http", {}},
      {"(PORT=\"1 2\")", "1 2", {}},
      {"(PORT=1\0002)"s, "1\0002"s, {}},
      {"(PORT=123456\0)"s, "", no_text()},
      {"(PORT=" + std::string(256, '1') + ")", "", no_text()},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.input);
    const KZCIAddress *address = good(row.input);
    ASSERT_NE(address, nullptr);
    EXPECT_EQ(port_of(*address), row.port);
    EXPECT_EQ(support::warnings_and_errors(), row.errors + block_end());
  }
}

TEST_F(AddressBuild, OverlongPortIsReportedAndTheAddressIsStillBuilt) {
  Body input("(PORT=1234567)(HOST=h))");
  ASSERT_EQ(KZCIAddressBuild(&list_, &input.params), 0);
  EXPECT_EQ(joined(support::events()), joined(address_call() + allocated(address_block) +
                                              refill(mode) + read_item(port_item, "1234567") +
                                              no_text() + read_item(host_item, "h") + block_end()));
  EXPECT_EQ(list_.address->port_len, 0u);
  EXPECT_EQ(list_.address->port[0], '\0');
  EXPECT_EQ(host_of(*list_.address), "h");
}

TEST_F(AddressBuild, ProtocolIsTcpInAnyLetterCase) {
  struct {
    std::string input, protocol;
  } const rows[] = {
      {"(PROTOCOL=TCP)", "TCP"},     {"(PROTOCOL=tcp)", "tcp"},     {"(PROTOCOL=tCp)", "tCp"},
      {"(PROTOCOL=\"TcP\")", "TcP"}, {"(PROTOCOL=T\"\"CP)", "TCP"}, {"(PROTOCOL= tcp )", "tcp"},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.input);
    const KZCIAddress *address = good(row.input);
    ASSERT_NE(address, nullptr);
    EXPECT_EQ(protocol_of(*address), row.protocol);
    EXPECT_EQ(support::warnings_and_errors(), block_end());
  }
}

TEST_F(AddressBuild, OtherProtocolsAreRefusedWithoutAMessageOfTheirOwn) {
  for (const std::string &text :
       {"UDP"s, "TCPX"s, "TC"s, "T"s, "ATCP"s, "TCPS"s, "TCPXY"s, "TCPXYZ"s, "\"\""s, "\"TCP \""s,
        "TC\0"s, "\0CP"s, "TCP\0"s, "T\0P"s}) {
    expect_failure(
        {"protocol", "(PROTOCOL=" + text + "))", read_item(protocol_item, unquoted(text)), "))"});
  }
}

TEST_F(AddressBuild, ProtocolOfMoreThanSixCharactersIsDroppedAndStillRefused) {
  for (const std::string &text : {"TCPTCPT"s, "TCP\0\0\0\0"s, std::string(256, 'T')}) {
    expect_failure(
        {"protocol", "(PROTOCOL=" + text + "))", read_item(protocol_item, text) + no_text(), "))"});
  }
}

TEST_F(AddressBuild, OverlongProtocolAfterTcpKeepsTcp) {
  const KZCIAddress *address = good("(PROTOCOL=tcp)(PROTOCOL=TCPTCPT)(HOST=h)");
  ASSERT_NE(address, nullptr);
  EXPECT_EQ(protocol_of(*address), "tcp");
  EXPECT_EQ(host_of(*address), "h");
  EXPECT_EQ(support::warnings_and_errors(), no_text() + block_end());
}

TEST_F(AddressBuild, OtherProtocolAfterTcpIsRefused) {
  const Lines first = read_item(protocol_item, "TCP");
  for (const std::string &text : {"UDP"s, "TCPXYZ"s, "\"\""s}) {
    expect_failure({"second protocol", "(PROTOCOL=TCP)(PROTOCOL=" + text + ")(HOST=h))",
                    first + read_item(protocol_item, unquoted(text)), ")(HOST=h))"});
  }
}

TEST_F(AddressBuild, WeightMinusFive) {
  const KZCIAddress *address = good("(WEIGHT=-5)");
  ASSERT_NE(address, nullptr);
  EXPECT_EQ(address->weight, -5);
}

TEST_F(AddressBuild, WeightWithATrailingLetterOrWithoutValueIsRefused) {
  expect_failure(
      {"letter", "(WEIGHT=5x))", read_item(weight_item, "5x") + not_a_number("5x"), "))"});
  expect_failure({"nothing", "(WEIGHT=))",
                  item_begins(weight_item) + mismatch(3, 2) + not_a_number("WEIGHT"), "))"});
}

TEST_F(AddressBuild, HostAndPortThatCannotBeRead) {
  for (const Item &item : {host_item, port_item}) {
    const Lines cut_off = item_begins(item) + key_cut_off(mode) + no_text();
    expect_failure({"end inside a value", "(" + item.key + "=12", cut_off, "", 100});
    expect_failure({"end inside quotes", "(" + item.key + "=\"12))", cut_off, "", 100});
    expect_failure({"end after empty quotes", "(" + item.key + "=\"\"", cut_off, "", 100});
  }
}

TEST_F(AddressBuild, ProtocolThatCannotBeReadIsCheckedAsItStands) {
  const Lines begins = item_begins(protocol_item);
  expect_failure(
      {"end inside a value", "(PROTOCOL=TCP", begins + key_cut_off(mode) + no_text(), "", -1});
  // An earlier TCP passes the check, and the status of the read remains.
  const Lines first = read_item(protocol_item, "TCP") + begins;
  expect_failure(
      {"end after TCP", "(PROTOCOL=TCP)(PROTOCOL=", first + input_end(mode) + no_text(), "", 100});
  expect_failure({"end inside a value after TCP", "(PROTOCOL=TCP)(PROTOCOL=UDP",
                  first + key_cut_off(mode) + no_text(), "", 100});
}

// The new characters stand over the key word "WEIGHT", six characters long.
TEST_F(AddressBuild, WeightThatTheEndCutsOffConvertsWhatTheKeyHolds) {
  const Lines cut_off = item_begins(weight_item) + key_cut_off(mode);
  expect_failures({
      {"a part", "(WEIGHT=12", cut_off + not_a_number("12IGHT"), ""},
      {"all but one", "(WEIGHT=12345", cut_off + not_a_number("12345T"), ""},
      {"exactly", "(WEIGHT=123456", cut_off, "", 100},
      {"more", "(WEIGHT=1234567x", cut_off, "", 100},
      {"negative", "(WEIGHT=-12345", cut_off, "", 100},
      {"open quotes", "(WEIGHT=\"123456))", cut_off, "", 100},
      {"letter inside", "(WEIGHT=12x456", cut_off + not_a_number("12x456"), ""},
      {"zero byte", "(WEIGHT=12\0"s, cut_off + not_a_number("12"), ""},
      {"nothing but quotes", "(WEIGHT=\"\"", cut_off + not_a_number("WEIGHT"), ""},
  });
}

TEST_F(AddressBuild, WeightOfTooManyDigitsConvertsTheFirstSix) {
  const Lines begins = item_begins(weight_item);
  expect_failure({"256 digits", "(WEIGHT=" + std::string(256, '1'), begins + key_too_long(), ""});
  expect_failure({"256 letters", "(WEIGHT=" + std::string(256, 'w'),
                  begins + key_too_long() + not_a_number("wwwwww"), ""});
}

TEST_F(AddressBuild, UnknownWordFailsWithStatusMinusOne) {
  expect_failure({"unknown word", "(HOST=h)(HOSTNAME=h))",
                  read_item(host_item, "h") + unknown_word("HOSTNAME"), "=h))", -1});
}

TEST_F(AddressBuild, LinksASingleAddressToItself) {
  const KZCIAddress *address = good("(HOST=h)");
  ASSERT_NE(address, nullptr);
  EXPECT_EQ(address->le.type, 0u);
  EXPECT_EQ(address->le.next, &address->le);
  EXPECT_EQ(address->le.prev, &address->le);
  EXPECT_EQ(address->connect_le.type, 0u);
  EXPECT_EQ(address->connect_le.next, &address->connect_le);
  EXPECT_EQ(address->connect_le.prev, &address->connect_le);
}

TEST_F(AddressBuild, AppendsAtTheEndOfTheRing) {
  for (const char *body : {"(HOST=a))", "(HOST=b))", "(HOST=c))"}) {
    Body input(body);
    ASSERT_EQ(KZCIAddressBuild(&list_, &input.params), 0);
  }
  ASSERT_EQ(list_.address_count, 3u);
  KZCIAddress *a = list_.address;
  KZCIAddress *b = KZCIAddressNext(a);
  KZCIAddress *c = KZCIAddressNext(b);
  EXPECT_EQ(host_of(*a) + host_of(*b) + host_of(*c), "abc");
  EXPECT_EQ(KZCIAddressNext(c), a);
  EXPECT_EQ(a->le.prev, &c->le);
  EXPECT_EQ(c->le.prev, &b->le);
  EXPECT_EQ(b->le.prev, &a->le);
  EXPECT_EQ(b->connect_le.next, &b->connect_le);
  EXPECT_EQ(live(), (Lines{address_block, address_block, address_block}));
}

TEST_F(AddressBuild, FailureLeavesTheListAsItWas) {
  KZCIAddress *first = const_cast<KZCIAddress *>(good("(HOST=a)"));
  Body input("(HOST=b)(WEIGHT=x))");
  EXPECT_EQ(KZCIAddressBuild(&list_, &input.params), -1);
  EXPECT_EQ(list_.address, first);
  EXPECT_EQ(list_.address_count, 1u);
  EXPECT_EQ(first->le.next, &first->le);
  EXPECT_EQ(first->le.prev, &first->le);
  EXPECT_EQ(live(), Lines{address_block});
}

// ------------------------------------------------------------ an address list

const Item kzlb_item = {"KZLB", LB_KZLB, {"DEBUG KZCIAddressListBuild get key_type 2"}, "ON"};
const Item strategy_item = {
    "KZLB_STRATEGY", LB_KZLB_STRATEGY, {"DEBUG KZCIAddressListBuild get key_type 17"}, "ROTATION"};

// The end of an address that fails inside a list.
Lines address_fails(sword status) {
  return address_failed(status) +
         Lines{"FREE address", "ERROR fail to call buil_address_list, status:-1"};
}

Lines list_begins() { return address_list_call() + allocated(list_block) + refill(mode); }

Lines list_built(unsigned addresses) {
  return {"DEBUG success to call KZCIAddressListBuild, address count:" + std::to_string(addresses)};
}

Lines list_failed() {
  return {"ERROR something error in KZCIAddressListBuild", "FREE address_list"};
}

Lines wrong_switch(const std::string &text) {
  return {std::string("ERROR parse LB_KZLB get wrong key:") + text.c_str()};
}

Lines wrong_strategy(const std::string &text) {
  return {std::string("ERROR parse LB_KZLB_STRATEGY get wrong key:") + text.c_str()};
}

class AddressListBuild : public ::testing::Test {
 protected:
  void SetUp() override {
    support::reset_platform();
    ASSERT_EQ(KZCIDescriptionInit(&des_), 0);
  }
  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    support::reset_platform();
  }

  const KZCIAddressList *good(const std::string &body) {
    support::reset_platform();
    KZCIDescriptionInit(&des_);
    Body input(body + ")");
    EXPECT_EQ(KZCIAddressListBuild(&des_, &input.params), 0);
    EXPECT_EQ(input.unread(), ")");
    EXPECT_EQ(des_.address_list_count, 1u);
    return des_.address_list;
  }

  void expect_failure(const Fault &fault) {
    SCOPED_TRACE(fault.name + ": " + fault.input);
    support::reset_platform();
    Body input(fault.input);
    EXPECT_EQ(KZCIAddressListBuild(&des_, &input.params), -1);
    EXPECT_EQ(joined(support::events()), joined(list_begins() + fault.log + list_failed()));
    EXPECT_EQ(input.unread(), fault.unread);
    EXPECT_EQ(live(), fault.left);
    EXPECT_EQ(des_.address_list, nullptr);
    EXPECT_EQ(des_.address_list_count, 0u);
  }

  void expect_failures(const std::vector<Fault> &faults) {
    for (const Fault &fault : faults) expect_failure(fault);
  }

  KZCIDescription des_;
};

TEST_F(AddressListBuild, LogsEveryStepOfAGoodList) {
  Body input(
      "(KZLB=ON)(KZLB_STRATEGY=ROTATION)"
      "(ADDRESS=(PROTOCOL=TCP)(HOST=10.0.0.1)(PORT=2881)(WEIGHT=2))"
      "(ADDRESS=(PROTOCOL=TCP)(HOST=10.0.0.2)(PORT=2881)))");
  ASSERT_EQ(KZCIAddressListBuild(&des_, &input.params), 0);
  const Lines first = new_listed_address() + read_item(protocol_item, "TCP") +
                      read_item(host_item, "10.0.0.1") + read_item(port_item, "2881") +
                      read_item(weight_item, "2") + block_end();
  const Lines second = new_listed_address() + read_item(protocol_item, "TCP") +
                       read_item(host_item, "10.0.0.2") + read_item(port_item, "2881") +
                       block_end();
  EXPECT_EQ(joined(support::events()),
            joined(address_list_call() + allocated(list_block) + refill(mode) +
                   read_item(kzlb_item, "ON") + read_item(strategy_item, "ROTATION") + first +
                   second + list_ends(2)));
  const KZCIAddressList *list = des_.address_list;
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->kzlb, 1);
  EXPECT_EQ(list->kzlb_strategy, LB_OPTION_ROTATION);
  EXPECT_EQ(list->address_count, 2u);
  EXPECT_EQ(host_of(*list->address), "10.0.0.1");
  EXPECT_EQ(list->address->weight, 2);
  EXPECT_EQ(host_of(*KZCIAddressNext(list->address)), "10.0.0.2");
  EXPECT_EQ(KZCIAddressNext(list->address)->weight, 1);
  EXPECT_EQ(input.unread(), ")");
  EXPECT_EQ(input.params.tns_token_type, TNS_RIGHT_PARENTHESES);
}

TEST_F(AddressListBuild, NoMemoryForTheFirstAddressReleasesTheList) {
  Body input("(ADDRESS=(HOST=h)))");
  support::fail_allocation(2);
  EXPECT_EQ(KZCIAddressListBuild(&des_, &input.params), -1);
  EXPECT_EQ(
      joined(support::events()),
      joined(list_begins() + key_word("ADDRESS", LB_ADDRESS) +
             Lines{"DEBUG KZCIAddressListBuild get key_type 18"} + address_call() +
             refused(address_block) +
             Lines{"ERROR malloc address error, malloc size:" + std::to_string(sizeof(KZCIAddress)),
                   "ERROR fail to call buil_address_list, status:-1"} +
             list_failed()));
  EXPECT_EQ(input.unread(), "(HOST=h)))");
  EXPECT_EQ(live(), Lines{});
  EXPECT_EQ(des_.address_list, nullptr);
}

TEST_F(AddressListBuild, NoMemoryForTheSecondAddressKeepsTheFirstAllocated) {
  Body input("(ADDRESS=(HOST=a))(ADDRESS=(HOST=b)))");
  support::fail_allocation(3);
  EXPECT_EQ(KZCIAddressListBuild(&des_, &input.params), -1);
  EXPECT_EQ(support::memory_events(), allocated(list_block) + allocated(address_block) +
                                          refused(address_block) + Lines{"FREE address_list"});
  EXPECT_EQ(live(), Lines{address_block});
  EXPECT_EQ(input.unread(), "(HOST=b)))");
}

TEST_F(AddressListBuild, OneAddressAndDefaults) {
  const KZCIAddressList *list = good("(ADDRESS=(HOST=h)(PORT=1))");
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->kzlb, 1);
  EXPECT_EQ(list->kzlb_strategy, LB_OPTION_RANDOM);
  ASSERT_EQ(list->address_count, 1u);
  EXPECT_EQ(list->address->weight, 1);
  EXPECT_EQ(list->address->protocol_len, 0u);
  EXPECT_EQ(host_of(*list->address), "h");
  EXPECT_EQ(port_of(*list->address), "1");
  EXPECT_EQ(live(), (Lines{list_block, address_block}));
}

TEST_F(AddressListBuild, ListWithoutAddressesIsBuilt) {
  const KZCIAddressList *list = good("(KZLB=OFF)");
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->kzlb, 0);
  EXPECT_EQ(list->address, nullptr);
  EXPECT_EQ(list->address_count, 0u);
  EXPECT_EQ(support::log_of(LOG_LEVEL_DEBUG).back(),
            "success to call KZCIAddressListBuild, address count:0");
}

TEST_F(AddressListBuild, SwitchIsALeadingPartOfOnOrOff) {
  struct {
    std::string text;
    boolean kzlb;
  } const rows[] = {
      {"ON", 1},     {"on", 1},      {"On", 1},         {"O", 1},     {"o", 1},
      {"OF", 0},     {"of", 0},      {"OFF", 0},        {"off", 0},   {"oFf", 0},
      {"\"\"", 1},   {"\"ON\"", 1},  {"O\"\"FF", 0},    {"ON\0"s, 1}, {"on\0zzz"s, 1},
      {"OFF\0"s, 0}, {"of\"f\"", 0}, {"OFF\0rest"s, 0},
  };
  for (const auto &row : rows) {
    for (const char *before : {"", "(KZLB=ON)", "(KZLB=OFF)"}) {
      SCOPED_TRACE(before + row.text);
      const KZCIAddressList *list = good(before + "(KZLB="s + row.text + ")");
      ASSERT_NE(list, nullptr);
      EXPECT_EQ(list->kzlb, row.kzlb);
      EXPECT_EQ(support::warnings_and_errors(), block_end());
    }
  }
}

TEST_F(AddressListBuild, OtherSwitchValuesAreRefused) {
  for (const std::string &text : {"ONX"s, "ONE"s, "OFFX"s, "OFFLINE"s, "YES"s, "N"s, "1"s, "TRUE"s,
                                  "\" ON\""s, "\"OFF \""s, "O\0"s, "OF\0"s, "\0"s, "KZLB"s}) {
    expect_failure({"switch", "(KZLB=" + text + "))",
                    item_begins(kzlb_item) + value(unquoted(text)) + wrong_switch(unquoted(text)),
                    "))"});
  }
  const std::string longest(256, 'O');
  expect_failure({"256 characters", "(KZLB=" + longest + "))",
                  item_begins(kzlb_item) + value(longest) + wrong_switch(longest), "))"});
}

TEST_F(AddressListBuild, StrategyIsALeadingPartOfItsName) {
  struct {
    std::string text;
    KZCILBOption strategy;
  } const rows[] = {
      {"RANDOM", LB_OPTION_RANDOM},
      {"random", LB_OPTION_RANDOM},
      {"R", LB_OPTION_RANDOM},
      {"r", LB_OPTION_RANDOM},
      {"RA", LB_OPTION_RANDOM},
      {"RANDO", LB_OPTION_RANDOM},
      {"\"\"", LB_OPTION_RANDOM},
      {"random\0zzz"s, LB_OPTION_RANDOM},
      {"SERVERAFFINITY", LB_OPTION_SERVERAFFINITY},
      {"ServerAffinity", LB_OPTION_SERVERAFFINITY},
      {"S", LB_OPTION_SERVERAFFINITY},
      {"server", LB_OPTION_SERVERAFFINITY},
      {"ROTATION", LB_OPTION_ROTATION},
      {"rotation", LB_OPTION_ROTATION},
      {"RO", LB_OPTION_ROTATION},
      {"ro", LB_OPTION_ROTATION},
      {"Rotat", LB_OPTION_ROTATION},
      {"ROTATION\0"s, LB_OPTION_ROTATION},
  };
  for (const auto &row : rows) {
    for (const char *before : {"", "(KZLB_STRATEGY=S)", "(KZLB_STRATEGY=RO)"}) {
      SCOPED_TRACE(before + row.text);
      const KZCIAddressList *list = good(before + "(KZLB_STRATEGY="s + row.text + ")");
      ASSERT_NE(list, nullptr);
      EXPECT_EQ(list->kzlb_strategy, row.strategy);
      EXPECT_EQ(support::warnings_and_errors(), block_end());
    }
  }
}

TEST_F(AddressListBuild, OtherStrategiesAreRefused) {
  for (const std::string &text : {"RANDOMX"s, "ROTATIONS"s, "SERVERAFFINITYX"s, "X"s, "RX"s,
                                  "SERVER_AFFINITY"s, "GROUP"s, "R\0"s, "\"RA \""s, "1001"s}) {
    expect_failure(
        {"strategy", "(KZLB_STRATEGY=" + text + "))",
         item_begins(strategy_item) + value(unquoted(text)) + wrong_strategy(unquoted(text)),
         "))"});
  }
}

TEST_F(AddressListBuild, SwitchOLowercaseOfAndYes) {
  const KZCIAddressList *on = good("(KZLB=OFF)(KZLB=O)");
  ASSERT_NE(on, nullptr);
  EXPECT_EQ(on->kzlb, 1);
  const KZCIAddressList *off = good("(KZLB=of)");
  ASSERT_NE(off, nullptr);
  EXPECT_EQ(off->kzlb, 0);
  KZCIDescriptionInit(&des_);
  expect_failure({"yes", "(KZLB=YES))",
                  read_item(kzlb_item, "YES") + Lines{"ERROR parse LB_KZLB get wrong key:YES"},
                  "))"});
}

TEST_F(AddressListBuild, StrategyRoIsRotationAndRIsRandom) {
  const KZCIAddressList *rotation = good("(KZLB_STRATEGY=ro)");
  ASSERT_NE(rotation, nullptr);
  EXPECT_EQ(rotation->kzlb_strategy, LB_OPTION_ROTATION);
  const KZCIAddressList *random = good("(KZLB_STRATEGY=S)(KZLB_STRATEGY=R)");
  ASSERT_NE(random, nullptr);
  EXPECT_EQ(random->kzlb_strategy, LB_OPTION_RANDOM);
}

// The new characters stand over the key word "KZLB", four characters long.
TEST_F(AddressListBuild, SwitchThatTheEndCutsOffComparesWhatTheKeyHolds) {
  const Lines cut_off = item_begins(kzlb_item) + key_cut_off(mode);
  expect_failures({
      {"one letter", "(KZLB=O", cut_off + wrong_switch("OZLB"), ""},
      {"ON", "(KZLB=ON", cut_off + wrong_switch("ONLB"), ""},
      {"OFF", "(KZLB=OFF", cut_off + wrong_switch("OFFB"), ""},
      {"longer", "(KZLB=OFFLINE", cut_off + wrong_switch("OFFL"), ""},
      {"zero byte after ON", "(KZLB=ON\0"s, cut_off, ""},
      {"zero byte after OFF", "(KZLB=OFF\0"s, cut_off, ""},
  });
  expect_failure({"256 characters", "(KZLB=" + std::string(256, 'O'),
                  item_begins(kzlb_item) + key_too_long() + wrong_switch("OOOO"), ""});
}

// "SERVERAFFINIT" fills the thirteen characters of the key word and matches.
TEST_F(AddressListBuild, StrategyThatTheEndCutsOffComparesWhatTheKeyHolds) {
  const Lines cut_off = item_begins(strategy_item) + key_cut_off(mode);
  expect_failures({
      {"RANDOM", "(KZLB_STRATEGY=RANDOM", cut_off + wrong_strategy("RANDOMTRATEGY"), ""},
      {"twelve", "(KZLB_STRATEGY=SERVERAFFINI", cut_off + wrong_strategy("SERVERAFFINIY"), ""},
      {"thirteen", "(KZLB_STRATEGY=SERVERAFFINIT", cut_off, ""},
      {"fourteen", "(KZLB_STRATEGY=SERVERAFFINITY", cut_off, ""},
      {"fifteen", "(KZLB_STRATEGY=SERVERAFFINITYX", cut_off, ""},
      {"zero byte", "(KZLB_STRATEGY=RO\0"s, cut_off + wrong_strategy("RO"), ""},
      {"zero byte after a name", "(KZLB_STRATEGY=random\0"s, cut_off, ""},
  });
}

// The last token consumed is the ")" of the address's own item.
TEST_F(AddressListBuild, AcceptsAnAddressThatIsNotClosed) {
  const struct {
    std::string rest;
    Lines log;
  } rows[] = {
      {"", input_end(mode) + ended()},
      {" # end", input_end(mode) + ended()},
      {"v))", mismatch(TNS_LEFT_PARENTHESES, TNS_KEY) + mismatch(TNS_RIGHT_PARENTHESES, TNS_KEY)},
      {"=))", mismatch(TNS_LEFT_PARENTHESES, TNS_EQUAL_SIGN) +
                  mismatch(TNS_RIGHT_PARENTHESES, TNS_EQUAL_SIGN)},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.rest);
    support::reset_platform();
    KZCIDescriptionInit(&des_);
    Body input("(ADDRESS=(HOST=h)" + row.rest);
    ASSERT_EQ(KZCIAddressListBuild(&des_, &input.params), 0);
    EXPECT_EQ(joined(support::events()),
              joined(list_begins() + new_listed_address() + host("h") + row.log + list_built(1)));
    EXPECT_EQ(des_.address_list->address_count, 1u);
  }
}

TEST_F(AddressListBuild, FailingAddressFailsTheList) {
  expect_failures({
      {"empty address", "(ADDRESS=))", new_listed_address() + block_end() + address_fails(-1),
       "))"},
      {"text for an address", "(ADDRESS=h))",
       new_listed_address() + mismatch(TNS_LEFT_PARENTHESES, TNS_KEY) + address_fails(-1), "h))"},
      {"end for an address",
       "(ADDRESS=", new_listed_address() + input_end(mode) + address_fails(100), "", 100},
      {"end inside a host", "(ADDRESS=(HOST=h",
       new_listed_address() + item_begins(host_item) + key_cut_off(mode) + no_text() +
           address_fails(100),
       ""},
      {"other protocol", "(ADDRESS=(PROTOCOL=UDP)))",
       new_listed_address() + read_item(protocol_item, "UDP") + address_fails(-1), ")))"},
      {"longer protocol", "(ADDRESS=(PROTOCOL=TCPX)))",
       new_listed_address() + read_item(protocol_item, "TCPX") + address_fails(-1), ")))"},
      {"list inside an address", "(ADDRESS=(ADDRESS=(HOST=h))))",
       new_listed_address() + key_word("ADDRESS", LB_ADDRESS) +
           Lines{"DEBUG KZCIAddressBuild get key_type 18",
                 "ERROR KZCIAddressBuild get error key_type"} +
           address_fails(-1),
       "(HOST=h))))"},
      {"switch inside an address", "(ADDRESS=(HOST=h)(KZLB=ON)))",
       new_listed_address() + host("h") + key_word("KZLB", LB_KZLB) +
           Lines{"DEBUG KZCIAddressBuild get key_type 2",
                 "ERROR KZCIAddressBuild get error key_type"} +
           address_fails(-1),
       "ON)))"},
  });
}

TEST_F(AddressListBuild, SecondAddressFailsAndTheFirstStaysAllocated) {
  expect_failure({"second weight",
                  "(ADDRESS=(HOST=a))(ADDRESS=(WEIGHT=x)))",
                  listed_address("a") + new_listed_address() + read_item(weight_item, "x") +
                      not_a_number("x") + address_fails(-1),
                  ")))",
                  -1,
                  {address_block}});
}

TEST_F(AddressListBuild, LaterFaultKeepsEveryAddressAllocated) {
  expect_failure({"bad switch after addresses",
                  "(ADDRESS=(HOST=a))(ADDRESS=(HOST=b))(KZLB=x))",
                  listed_address("a") + listed_address("b") + item_begins(kzlb_item) + value("x") +
                      wrong_switch("x"),
                  "))",
                  -1,
                  {address_block, address_block}});
}

TEST_F(AddressListBuild, AddressesKeepTheirOrder) {
  const KZCIAddressList *list =
      good("(ADDRESS=(HOST=a))(KZLB=OFF)(ADDRESS=(HOST=b))(ADDRESS=(HOST=c))");
  ASSERT_NE(list, nullptr);
  ASSERT_EQ(list->address_count, 3u);
  std::string hosts;
  KZCIAddress *address = list->address;
  for (ub4 i = 0; i < 3; ++i, address = KZCIAddressNext(address)) hosts += host_of(*address);
  EXPECT_EQ(hosts, "abc");
  EXPECT_EQ(address, list->address);
  EXPECT_EQ(support::log_of(LOG_LEVEL_DEBUG).back(),
            "success to call KZCIAddressListBuild, address count:3");
}

TEST_F(AddressListBuild, AppendsAtTheEndOfTheRing) {
  for (const char *body : {"(ADDRESS=(HOST=a)))", "(KZLB=OFF))", "(KZLB_STRATEGY=S))"}) {
    Body input(body);
    ASSERT_EQ(KZCIAddressListBuild(&des_, &input.params), 0);
  }
  ASSERT_EQ(des_.address_list_count, 3u);
  KZCIAddressList *a = des_.address_list;
  KZCIAddressList *b = KZCIAddressListNext(a);
  KZCIAddressList *c = KZCIAddressListNext(b);
  EXPECT_EQ(a->address_count, 1u);
  EXPECT_EQ(b->kzlb, 0);
  EXPECT_EQ(c->kzlb_strategy, LB_OPTION_SERVERAFFINITY);
  EXPECT_EQ(KZCIAddressListNext(c), a);
  EXPECT_EQ(a->le.prev, &c->le);
  EXPECT_EQ(b->le.prev, &a->le);
  EXPECT_EQ(c->le.prev, &b->le);
  EXPECT_EQ(a->le.type, 0u);
}

TEST_F(AddressListBuild, FailureLeavesTheDescriptionAsItWas) {
  const KZCIAddressList *first = good("(KZLB=OFF)");
  Body input("(KZLB=maybe))");
  EXPECT_EQ(KZCIAddressListBuild(&des_, &input.params), -1);
  EXPECT_EQ(des_.address_list, first);
  EXPECT_EQ(des_.address_list_count, 1u);
  EXPECT_EQ(first->le.next, &first->le);
  EXPECT_EQ(live(), Lines{list_block});
}

}  // namespace
