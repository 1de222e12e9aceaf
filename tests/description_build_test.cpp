// KZCIDescriptionBuild, driven alone over the body of a DESCRIPTION block.
#include <gtest/gtest.h>

#include <memory>
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

Item item_of(const std::string &word, int type, const std::string &value) {
  return {word, type, {"DEBUG bulid_description get key_type " + std::to_string(type)}, value};
}

const Item kzlb_item = item_of("KZLB", 2, "ON");
const Item group_item = item_of("KZLB_GROUP_STRATEGY", 6, "ROTATION");
const Item delay_item = item_of("RETRY_DELAY", 37, "5");

// The integers that a description keeps.
struct Stored {
  Item item;
  sb8 (*get)(const KZCIDescription &);
};

const Stored stored_integers[] = {
    {item_of("KZLB_RETRY_ALL_DOWNS", 7, "5"),
     [](const KZCIDescription &d) { return d.retry_all_downs; }},
    {item_of("KZLB_RETRY_TIMEOUT", 8, "5"),
     [](const KZCIDescription &d) { return static_cast<sb8>(d.retry_timeout); }},
    {item_of("KZLB_CONNECT_TIMEOUT", 3, "5"),
     [](const KZCIDescription &d) { return d.connect_timout; }},
    {item_of("KZLB_READ_TIMEOUT", 4, "5"), [](const KZCIDescription &d) { return d.read_timout; }},
    {item_of("KZLB_WRITE_TIMEOUT", 5, "5"),
     [](const KZCIDescription &d) { return d.write_timout; }},
};

const Item &read_timeout_item = stored_integers[3].item;

Lines begins() { return new_description() + refill(mode); }

Lines failed() { return {"ERROR something error in build description", "FREE KZCIDescription"}; }

Lines wrong_switch(const std::string &text) {
  return {std::string("ERROR parse LB_KZLB get wrong key:") + text.c_str()};
}

Lines wrong_group(const std::string &text) {
  return {std::string("ERROR parse LB_KZLB_GROUP_STRATEGY get wrong key:") + text.c_str()};
}

Lines delay_of(const std::string &number) { return {"DEBUG oracle RETRY_DELAY=" + number}; }

// "(ADDRESS=" of a description up to the first token of the address's body.
Lines bare_begins() { return new_implied_list() + new_bare_address(); }

// "(ADDRESS_LIST=(ADDRESS=(HOST=value)))".
Lines list_of(const std::string &host_value) {
  return new_list() + listed_address(host_value) + list_ends(1);
}

// "(CONNECT_DATA=(SID=value))".
Lines data_of(const std::string &sid_value) {
  return new_data() + sid(sid_value) + data_ends(sid_value);
}

// "(KZLB_BLACKLIST=(REMOVE_STRATEGY=" up to the first token of that body.
Lines blacklist_begins() {
  return description_key("KZLB_BLACKLIST", LB_KZLB_BLACKLIST) + blacklist_call();
}

Lines remove_begins() {
  return key_word("REMOVE_STRATEGY", LB_REMOVE_STRATEGY) +
         Lines{"DEBUG KZCIAddressListBuild get key_type 10"} + strategy_call();
}

// "(TIMEOUT=value" of a remove strategy.
Lines timeout_of(const std::string &text) {
  return key_word("TIMEOUT", LB_TIMEOUT) + Lines{"DEBUG KZCIRemoveStrategyBuild get key_type 12"} +
         value(text);
}

std::string host_of(const KZCIAddressList &list) {
  return support::text_of(list.address->host, list.address->host_len);
}

class DescriptionBuild : public ::testing::Test {
 protected:
  void SetUp() override { start(); }
  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    support::reset_platform();
  }

  void start() {
    support::reset_platform();
    ASSERT_EQ(KZCITnsServiceInit(&service_, 0, ""), 0);
  }

  // Builds a description of a body that is good; the body ends before its ")".
  const KZCIDescription *good(const std::string &body) {
    start();
    Body input(body + ")");
    EXPECT_EQ(KZCIDescriptionBuild(&service_, &input.params), 0);
    EXPECT_EQ(input.unread(), ")");
    EXPECT_EQ(service_.description_count, 1u);
    return service_.description;
  }

  void expect_good(const std::string &input_text, const Lines &log, const std::string &unread) {
    SCOPED_TRACE(input_text);
    start();
    Body input(input_text);
    EXPECT_EQ(KZCIDescriptionBuild(&service_, &input.params), 0);
    EXPECT_EQ(joined(support::events()), joined(begins() + log));
    EXPECT_EQ(input.unread(), unread);
    EXPECT_EQ(service_.description_count, 1u);
    ASSERT_NE(service_.description, nullptr);
  }

  void expect_failure(const Fault &fault) {
    SCOPED_TRACE(fault.name + ": " + fault.input);
    start();
    Body input(fault.input);
    EXPECT_EQ(KZCIDescriptionBuild(&service_, &input.params), -1);
    EXPECT_EQ(joined(support::events()), joined(begins() + fault.log + failed()));
    EXPECT_EQ(input.unread(), fault.unread);
    EXPECT_EQ(live(), fault.left);
    EXPECT_EQ(service_.description, nullptr);
    EXPECT_EQ(service_.description_count, 0u);
  }

  void expect_failures(const std::vector<Fault> &faults) {
    for (const Fault &fault : faults) expect_failure(fault);
  }

  // The same with an n-th allocation that fails.
  void expect_no_memory(std::size_t n, const Fault &fault) {
    SCOPED_TRACE(fault.name + ": " + fault.input);
    start();
    Body input(fault.input);
    support::fail_allocation(n);
    EXPECT_EQ(KZCIDescriptionBuild(&service_, &input.params), -1);
    EXPECT_EQ(joined(support::events()), joined(begins() + fault.log + failed()));
    EXPECT_EQ(input.unread(), fault.unread);
    EXPECT_EQ(live(), fault.left);
    EXPECT_EQ(service_.description, nullptr);
  }

  // A record with a flexible array cannot be a member itself.
  std::unique_ptr<KZCITnsService> service_record_ = std::make_unique<KZCITnsService>();
  KZCITnsService &service_ = *service_record_;
};

TEST_F(DescriptionBuild, SwitchTimeoutListAndData) {
  Body input(
      "(KZLB=on)(KZLB_CONNECT_TIMEOUT=3000)(ADDRESS_LIST=(ADDRESS=(HOST=h)))"
      "(CONNECT_DATA=(SERVICE_NAME=s)))(next");
  ASSERT_EQ(KZCIDescriptionBuild(&service_, &input.params), 0);
  EXPECT_EQ(joined(support::events()),
            joined(begins() + read_item(kzlb_item, "on") +
                   read_item(item_of("KZLB_CONNECT_TIMEOUT", 3, ""), "3000") + list_of("h") +
                   new_data() + key_word("SERVICE_NAME", LB_SERVICE_NAME) +
                   Lines{"DEBUG KZCIConnectDataBuild get key_type 24"} + key("s") + data_ends("s") +
                   description_ends(1)));
  const KZCIDescription *des = service_.description;
  ASSERT_NE(des, nullptr);
  EXPECT_EQ(des->kzlb, 1);
  EXPECT_EQ(des->connect_timout, 3000);
  EXPECT_EQ(des->address_list_count, 1u);
  ASSERT_NE(des->address_list, nullptr);
  EXPECT_EQ(host_of(*des->address_list), "h");
  ASSERT_NE(des->connect_data, nullptr);
  EXPECT_EQ(support::text_of(des->connect_data->service_name, des->connect_data->service_name_len),
            "s");
  EXPECT_EQ(input.unread(), ")(next");
  EXPECT_EQ(input.params.tns_token_type, TNS_RIGHT_PARENTHESES);
  EXPECT_EQ(live(), (Lines{description_block, list_block, address_block, data_block}));
}

TEST_F(DescriptionBuild, AbsentKeysLeaveTheDefaults) {
  const KZCIDescription *des = good("(RETRY_DELAY=5)");
  ASSERT_NE(des, nullptr);
  EXPECT_EQ(des->address_list, nullptr);
  EXPECT_EQ(des->address_list_count, 0u);
  EXPECT_EQ(des->connect_data, nullptr);
  EXPECT_EQ(des->kzlb, 0);
  EXPECT_EQ(des->retry_all_downs, 120);
  EXPECT_EQ(des->connect_timout, 0);
  EXPECT_EQ(des->read_timout, 0);
  EXPECT_EQ(des->write_timout, 0);
  EXPECT_EQ(des->retry_timeout, 10000);
  EXPECT_EQ(des->kzlb_group_strategy, LB_OPTION_GROUP_ROTATION);
  EXPECT_EQ(des->black_list_conf.remove_strategy, LB_OPTION_TIMEOUT);
  EXPECT_EQ(des->black_list_conf.remove_timeout, 50);
  EXPECT_EQ(des->black_list_conf.append_strategy, LB_OPTION_NORMAL);
  EXPECT_EQ(des->black_list_conf.retry_times, 1);
  EXPECT_EQ(des->black_list_conf.duration, 10);
  EXPECT_EQ(des->le.next, &des->le);
  EXPECT_EQ(des->le.prev, &des->le);
  EXPECT_EQ(live(), Lines{description_block});
}

TEST_F(DescriptionBuild, SwitchIsALeadingPartOfOnOrOff) {
  struct {
    std::string text;
    boolean kzlb;
  } const rows[] = {
      {"ON", 1},     {"on", 1},    {"O", 1},      {"o", 1},         {"oN", 1},
      {"OF", 0},     {"of", 0},    {"OFF", 0},    {"Off", 0},       {"\"\"", 1},
      {"O\"\"N", 1}, {"ON\0"s, 1}, {"OFF\0"s, 0}, {"on\0rest"s, 1},
  };
  for (const auto &row : rows) {
    for (const char *before : {"(KZLB=ON)", "(KZLB=OFF)"}) {
      SCOPED_TRACE(before + row.text);
      const KZCIDescription *des = good(before + "(KZLB="s + row.text + ")");
      ASSERT_NE(des, nullptr);
      EXPECT_EQ(des->kzlb, row.kzlb);
      EXPECT_EQ(support::warnings_and_errors(), block_end());
    }
  }
}

TEST_F(DescriptionBuild, SwitchOffxFailsOIsOnAndLowercaseOfIsOff) {
  expect_failure(
      {"offx", "(KZLB=OFFX))", read_item(kzlb_item, "OFFX") + wrong_switch("OFFX"), "))"});
  const KZCIDescription *on = good("(KZLB=O)");
  ASSERT_NE(on, nullptr);
  EXPECT_EQ(on->kzlb, 1);
  const KZCIDescription *off = good("(KZLB=ON)(KZLB=of)");
  ASSERT_NE(off, nullptr);
  EXPECT_EQ(off->kzlb, 0);
}

TEST_F(DescriptionBuild, OtherSwitchValuesAreRefused) {
  for (const std::string &text : {"ONE"s, "OFFLINE"s, "ONX"s, "YES"s, "1"s, "0"s, "\" ON\""s,
                                  "\"OFF \""s, "O\0"s, "\0"s, std::string(256, 'O')}) {
    expect_failure({"switch", "(KZLB=" + text + "))",
                    read_item(kzlb_item, unquoted(text)) + wrong_switch(unquoted(text)), "))"});
  }
}

// The new characters stand over the key word "KZLB", four characters long.
TEST_F(DescriptionBuild, SwitchThatTheEndCutsOffComparesWhatTheKeyHolds) {
  const Lines cut_off = item_begins(kzlb_item) + key_cut_off(mode);
  expect_failures({
      {"ON", "(KZLB=ON", cut_off + wrong_switch("ONLB"), ""},
      {"OFF", "(KZLB=off", cut_off + wrong_switch("offB"), ""},
      {"longer", "(KZLB=OFFSIDE", cut_off + wrong_switch("OFFS"), ""},
      {"zero byte", "(KZLB=ON\0"s, cut_off, ""},
      {"empty quotes", "(KZLB=\"\"", cut_off + wrong_switch("KZLB"), ""},
  });
  expect_failure({"256 characters", "(KZLB=" + std::string(256, 'O'),
                  item_begins(kzlb_item) + key_too_long() + wrong_switch("OOOO"), ""});
}

TEST_F(DescriptionBuild, ValueOf257CharactersIsCutAndRefused) {
  const std::string cut(256, 'O');
  expect_failure({"257 characters", "(KZLB=" + cut + "N))",
                  read_item(kzlb_item, cut) + wrong_switch(cut), "N))"});
}

TEST_F(DescriptionBuild, GroupStrategyIsALeadingPartOfRotation) {
  for (const std::string &text : {"ROTATION"s, "rotation"s, "rot"s, "R"s, "r"s, "\"\""s, "\"RO\""s,
                                  "ROTATION\0"s, "rotation\0zzz"s}) {
    SCOPED_TRACE(text);
    const KZCIDescription *des = good("(KZLB_GROUP_STRATEGY=" + text + ")");
    ASSERT_NE(des, nullptr);
    EXPECT_EQ(des->kzlb_group_strategy, LB_OPTION_GROUP_ROTATION);
    EXPECT_EQ(support::warnings_and_errors(), block_end());
  }
}

TEST_F(DescriptionBuild, GroupStrategyRandomFailsAndRotIsAccepted) {
  expect_failure({"random", "(KZLB_GROUP_STRATEGY=random))",
                  read_item(group_item, "random") + wrong_group("random"), "))"});
  const KZCIDescription *des = good("(KZLB_GROUP_STRATEGY=rot)");
  ASSERT_NE(des, nullptr);
  EXPECT_EQ(des->kzlb_group_strategy, LB_OPTION_GROUP_ROTATION);
}

TEST_F(DescriptionBuild, OtherGroupStrategiesAreRefused) {
  for (const std::string &text : {"RANDOM"s, "RA"s, "SERVERAFFINITY"s, "S"s, "ROTATIONS"s, "X"s,
                                  "GROUP_ROTATION"s, "R\0"s, "\"ROT \""s}) {
    expect_failure({"strategy", "(KZLB_GROUP_STRATEGY=" + text + "))",
                    read_item(group_item, unquoted(text)) + wrong_group(unquoted(text)), "))"});
  }
}

// The new characters stand over the nineteen of "KZLB_GROUP_STRATEGY".
TEST_F(DescriptionBuild, GroupStrategyThatTheEndCutsOffComparesWhatTheKeyHolds) {
  const Lines cut_off = item_begins(group_item) + key_cut_off(mode);
  expect_failures({
      {"whole name", "(KZLB_GROUP_STRATEGY=ROTATION", cut_off + wrong_group("ROTATIONUP_STRATEGY"),
       ""},
      {"zero byte", "(KZLB_GROUP_STRATEGY=ROTATION\0"s, cut_off, ""},
      {"leading part and zero byte", "(KZLB_GROUP_STRATEGY=ROT\0"s, cut_off + wrong_group("ROT"),
       ""},
  });
}

TEST_F(DescriptionBuild, EveryIntegerHasItsOwnField) {
  const KZCIDescription *des = good(
      "(KZLB_RETRY_ALL_DOWNS=1)(KZLB_RETRY_TIMEOUT=2)(KZLB_CONNECT_TIMEOUT=3)"
      "(KZLB_READ_TIMEOUT=4)(KZLB_WRITE_TIMEOUT=5)");
  ASSERT_NE(des, nullptr);
  EXPECT_EQ(des->retry_all_downs, 1);
  EXPECT_EQ(des->retry_timeout, 2);
  EXPECT_EQ(des->connect_timout, 3);
  EXPECT_EQ(des->read_timout, 4);
  EXPECT_EQ(des->write_timout, 5);
}

TEST_F(DescriptionBuild, ReadTimeoutMinusFiveIsStored) {
  const KZCIDescription *des = good("(KZLB_READ_TIMEOUT=-5)");
  ASSERT_NE(des, nullptr);
  EXPECT_EQ(des->read_timout, -5);
}

TEST_F(DescriptionBuild, ReadTimeoutWithUnitOrWithoutValueIsRefused) {
  expect_failure({"unit", "(KZLB_READ_TIMEOUT=5s))",
                  read_item(read_timeout_item, "5s") + not_a_number("5s"), "))"});
  expect_failure(
      {"nothing", "(KZLB_READ_TIMEOUT=))",
       item_begins(read_timeout_item) + mismatch(3, 2) + not_a_number("KZLB_READ_TIMEOUT"), "))"});
}

// The key words have 20, 18, 20, 17 and 18 characters.
TEST_F(DescriptionBuild, IntegersThatTheEndCutsOffConvertWhatTheKeyHolds) {
  const struct {
    Item item;
    std::string part, held, whole;
  } rows[] = {
      {stored_integers[0].item, "7", "7ZLB_RETRY_ALL_DOWNS", "12345678901234567890"},
      {stored_integers[1].item, "77", "77LB_RETRY_TIMEOUT", "123456789012345678"},
      {stored_integers[2].item, "-7", "-7LB_CONNECT_TIMEOUT", "12345678901234567890"},
      {stored_integers[3].item, "7", "7ZLB_READ_TIMEOUT", "12345678901234567"},
      {stored_integers[4].item, "7", "7ZLB_WRITE_TIMEOUT", "-12345678901234567"},
  };
  for (const auto &row : rows) {
    const Lines cut_off = item_begins(row.item) + key_cut_off(mode);
    const std::string text = "(" + row.item.key + "=";
    expect_failures({
        {"a part", text + row.part, cut_off + not_a_number(row.held), ""},
        {"exactly", text + row.whole, cut_off, ""},
        {"more", text + row.whole + "x", cut_off, ""},
        {"open quotes", text + "\"" + row.whole + "))", cut_off, ""},
    });
  }
  expect_failure({"overflow", "(KZLB_CONNECT_TIMEOUT=99999999999999999999",
                  item_begins(stored_integers[2].item) + key_cut_off(mode) +
                      not_a_number("99999999999999999999"),
                  ""});
}

TEST_F(DescriptionBuild, RetryDelayIsOnlyLogged) {
  const Lines log =
      read_item(delay_item, "5") + Lines{"DEBUG oracle RETRY_DELAY=5"} + description_ends(0);
  expect_good("(RETRY_DELAY=5))", log, ")");
  KZCIDescription defaults;
  ASSERT_EQ(KZCIDescriptionInit(&defaults), 0);
  const KZCIDescription *des = service_.description;
  EXPECT_EQ(des->retry_timeout, defaults.retry_timeout);
  EXPECT_EQ(des->retry_all_downs, defaults.retry_all_downs);
  EXPECT_EQ(des->black_list_conf.retry_times, defaults.black_list_conf.retry_times);
  EXPECT_EQ(des->black_list_conf.duration, defaults.black_list_conf.duration);
}

TEST_F(DescriptionBuild, RetryDelayPrintsTheLow32Bits) {
  const struct {
    const char *text, *printed;
  } rows[] = {
      {"0", "0"},
      {"-7", "-7"},
      {"2147483647", "2147483647"},
      {"2147483648", "-2147483648"},
      {"4294967301", "5"},
      {"9223372036854775807", "-1"},
      {"-9223372036854775808", "0"},
  };
  for (const auto &row : rows) {
    expect_good("(RETRY_DELAY="s + row.text + "))",
                read_item(delay_item, row.text) + delay_of(row.printed) + description_ends(0), ")");
  }
}

TEST_F(DescriptionBuild, RefusedRetryDelayIsLoggedAsConverted) {
  const struct {
    std::string text, printed;
  } rows[] = {
      {"5s", "5"},
      {"abc", "0"},
      {"\"\"", "0"},
      {"-3x", "-3"},
      {"7\0"s, "7"},
      {"18446744073709551616", "-1"},
      {"-9223372036854775809", "0"},
  };
  for (const auto &row : rows) {
    const std::string text = unquoted(row.text);
    expect_failure({"delay", "(RETRY_DELAY=" + row.text + "))",
                    read_item(delay_item, text) + not_a_number(text) + delay_of(row.printed),
                    "))"});
  }
}

// The new characters stand over the eleven of "RETRY_DELAY". The low 32 bits of
// 12345678901 are 3755744309, which print as -539222987.
TEST_F(DescriptionBuild, RetryDelayThatTheEndCutsOffConvertsWhatTheKeyHolds) {
  const Lines cut_off = item_begins(delay_item) + key_cut_off(mode);
  expect_failures({
      {"a part", "(RETRY_DELAY=12", cut_off + not_a_number("12TRY_DELAY") + delay_of("12"), ""},
      {"exactly", "(RETRY_DELAY=12345678901", cut_off + delay_of("-539222987"), ""},
      {"leading zeros", "(RETRY_DELAY=00000000042", cut_off + delay_of("42"), ""},
  });
}

TEST_F(DescriptionBuild, ItemsMayComeInAnyOrderAndLetterCase) {
  const KZCIDescription *des = good(
      "(Connect_Data=(SID=s))\n(kzlb_write_timeout = 5) # last\n"
      "(KZLB_BLACKLIST=(REMOVE_STRATEGY=(TIMEOUT=30)))(KZLB=\"on\")(address=(HOST=h))"
      "(KZLB_RETRY_ALL_DOWNS=7)");
  ASSERT_NE(des, nullptr);
  EXPECT_EQ(des->write_timout, 5);
  EXPECT_EQ(des->kzlb, 1);
  EXPECT_EQ(des->retry_all_downs, 7);
  EXPECT_EQ(des->black_list_conf.remove_timeout, 30);
  EXPECT_NE(des->connect_data, nullptr);
  EXPECT_EQ(des->address_list_count, 1u);
}

TEST_F(DescriptionBuild, LaterItemOfTheSameKeyWins) {
  const KZCIDescription *des = good(
      "(KZLB_RETRY_ALL_DOWNS=1)(KZLB=ON)(KZLB_RETRY_ALL_DOWNS=2)(KZLB=OFF)"
      "(KZLB_BLACKLIST=(APPEND_STRATEGY=(DURATION=3)(RETRYTIMES=4)))"
      "(KZLB_BLACKLIST=(APPEND_STRATEGY=(DURATION=5)))");
  ASSERT_NE(des, nullptr);
  EXPECT_EQ(des->retry_all_downs, 2);
  EXPECT_EQ(des->kzlb, 0);
  EXPECT_EQ(des->black_list_conf.duration, 5);
  EXPECT_EQ(des->black_list_conf.retry_times, 4);
}

TEST_F(DescriptionBuild, RetryTimesIsRefused) {
  expect_failure({"retry times", "(RETRY_TIMES=3))",
                  description_key("RETRY_TIMES", LB_RETRY_TIMES) +
                      Lines{"ERROR KZCIDescriptionBuild get error key_type"},
                  "3))"});
}

TEST_F(DescriptionBuild, BareAddressMakesAListWithDefaults) {
  expect_good("(ADDRESS=(HOST=h)))", bare_address("h") + description_ends(1), ")");
  const KZCIAddressList *list = service_.description->address_list;
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(service_.description->address_list_count, 1u);
  EXPECT_EQ(list->kzlb, 1);
  EXPECT_EQ(list->kzlb_strategy, LB_OPTION_RANDOM);
  EXPECT_EQ(list->address_count, 1u);
  EXPECT_EQ(host_of(*list), "h");
  EXPECT_EQ(list->le.next, &list->le);
  EXPECT_EQ(live(), (Lines{description_block, list_block, address_block}));
}

TEST_F(DescriptionBuild, SecondBareAddressIsRefused) {
  expect_failure({"two addresses",
                  "(ADDRESS=(HOST=a))(ADDRESS=(HOST=b)))",
                  bare_address("a") + description_key("ADDRESS", LB_ADDRESS) +
                      Lines{"ERROR no address_list, but address_list is not NULL"},
                  "(HOST=b)))",
                  -1,
                  {list_block, address_block}});
}

TEST_F(DescriptionBuild, BareAddressAfterAListIsRefused) {
  expect_failure({"list, then address",
                  "(ADDRESS_LIST=(ADDRESS=(HOST=a)))(ADDRESS=(HOST=b)))",
                  list_of("a") + description_key("ADDRESS", LB_ADDRESS) +
                      Lines{"ERROR no address_list, but address_list is not NULL"},
                  "(HOST=b)))",
                  -1,
                  {list_block, address_block}});
}

TEST_F(DescriptionBuild, ListAfterABareAddressIsAppended) {
  expect_good("(ADDRESS=(HOST=a))(ADDRESS_LIST=(ADDRESS=(HOST=b))))",
              bare_address("a") + list_of("b") + description_ends(2), ")");
  KZCIAddressList *first = service_.description->address_list;
  ASSERT_EQ(service_.description->address_list_count, 2u);
  EXPECT_EQ(host_of(*first), "a");
  EXPECT_EQ(host_of(*KZCIAddressListNext(first)), "b");
  EXPECT_EQ(KZCIAddressListNext(KZCIAddressListNext(first)), first);
}

TEST_F(DescriptionBuild, ListsKeepTheirOrder) {
  const KZCIDescription *des = good(
      "(ADDRESS_LIST=(ADDRESS=(HOST=a)))(ADDRESS_LIST=(ADDRESS=(HOST=b)))"
      "(ADDRESS_LIST=(ADDRESS=(HOST=c)))");
  ASSERT_NE(des, nullptr);
  ASSERT_EQ(des->address_list_count, 3u);
  KZCIAddressList *list = des->address_list;
  std::string hosts;
  for (int i = 0; i < 3; ++i, list = KZCIAddressListNext(list)) hosts += host_of(*list);
  EXPECT_EQ(hosts, "abc");
  EXPECT_EQ(list, des->address_list);
  EXPECT_EQ(support::log_of(LOG_LEVEL_DEBUG).back(),
            "success to build description, address count:3");
}

// The implied list is released before the failure is told.
TEST_F(DescriptionBuild, FailingBareAddressReleasesItsList) {
  const Lines release = {"FREE address_list", "ERROR fail to call KZCIAddressBuild"};
  const auto address_fails = [](int status) {
    return Lines{"ERROR something error in build address, status:" + std::to_string(status),
                 "FREE address"};
  };
  expect_failures({
      {"empty address", "(ADDRESS=))", bare_begins() + block_end() + address_fails(-1) + release,
       "))"},
      {"text for an address", "(ADDRESS=h))",
       bare_begins() + mismatch(TNS_LEFT_PARENTHESES, TNS_KEY) + address_fails(-1) + release,
       "h))"},
      {"end for an address",
       "(ADDRESS=", bare_begins() + input_end(mode) + address_fails(100) + release, ""},
      {"unknown word", "(ADDRESS=(HOSTS=h)))",
       bare_begins() + unknown_word("HOSTS") + address_fails(-1) + release, "=h)))"},
  });
}

TEST_F(DescriptionBuild, FailingListAfterABareAddressKeepsTheAddressAllocated) {
  expect_failure({"list after address",
                  "(ADDRESS=(HOST=a))(ADDRESS_LIST=))",
                  bare_address("a") + new_list() + block_end() +
                      Lines{"ERROR something error in KZCIAddressListBuild", "FREE address_list",
                            "ERROR fail to call KZCIAddressListBuild, status:-1"},
                  "))",
                  -1,
                  {list_block, address_block}});
}

TEST_F(DescriptionBuild, FailingListFailsTheDescription) {
  const Lines fails = {"ERROR something error in KZCIAddressListBuild", "FREE address_list",
                       "ERROR fail to call KZCIAddressListBuild, status:-1"};
  expect_failures({
      {"empty list", "(ADDRESS_LIST=))", new_list() + block_end() + fails, "))"},
      {"text for a list", "(ADDRESS_LIST=h))",
       new_list() + mismatch(TNS_LEFT_PARENTHESES, TNS_KEY) + fails, "h))"},
      {"end for a list", "(ADDRESS_LIST=", new_list() + input_end(mode) + fails, ""},
      {"refused key word", "(ADDRESS_LIST=(HOST=h)))",
       new_list() + key_word("HOST", LB_HOST) +
           Lines{"DEBUG KZCIAddressListBuild get key_type 20",
                 "ERROR KZCIAddressListBuild get error key_type"} +
           fails,
       "h)))"},
      {"second item of a list",
       "(ADDRESS_LIST=(ADDRESS=(HOST=a))(ADDRESSES=h)))",
       new_list() + listed_address("a") + unknown_word("ADDRESSES") + fails,
       "=h)))",
       -1,
       {address_block}},
  });
}

TEST_F(DescriptionBuild, FailingConnectDataFailsTheDescription) {
  const Lines fails = {"ERROR something error in KZCIConnectDataBuild", "FREE KZCIConnectData",
                       "ERROR fail to call KZCIConnectDataBuild, status:-1"};
  expect_failures({
      {"empty data", "(CONNECT_DATA=))", new_data() + block_end() + fails, "))"},
      {"refused key word", "(CONNECT_DATA=(HOST=x)))",
       new_data() + key_word("HOST", LB_HOST) +
           Lines{"DEBUG KZCIConnectDataBuild get key_type 20",
                 "ERROR KZCIConnectDataBuild get error key_type"} +
           fails,
       "x)))"},
      {"empty second data",
       "(CONNECT_DATA=(SID=a))(CONNECT_DATA=))",
       data_of("a") + new_data() + block_end() + fails,
       "))",
       -1,
       {data_block}},
  });
}

// The message names the builder of address lists.
TEST_F(DescriptionBuild, FailingBlacklistFailsTheDescription) {
  const Lines fails = {"ERROR something error in build_black_list_conf",
                       "ERROR fail to call KZCIAddressListBuild, status:-1"};
  expect_failures({
      {"empty blacklist", "(KZLB_BLACKLIST=))", blacklist_begins() + block_end() + fails, "))"},
      {"refused key word", "(KZLB_BLACKLIST=(NAME=TIMEOUT)))",
       blacklist_begins() + key_word("NAME", LB_NAME) +
           Lines{"DEBUG KZCIAddressListBuild get key_type 11",
                 "ERROR build_black_list_conf get error key_type"} +
           fails,
       "TIMEOUT)))"},
      {"bad number", "(KZLB_BLACKLIST=(REMOVE_STRATEGY=(TIMEOUT=12x))))",
       blacklist_begins() + remove_begins() + timeout_of("12x") + not_a_number("12x") +
           Lines{"ERROR something error in KZCIRemoveStrategyBuild",
                 "ERROR fail to call KZCIRemoveStrategyBuild, status:-1"} +
           fails,
       "))))"},
  });
}

TEST_F(DescriptionBuild, BlacklistIsReadInPlace) {
  expect_good("(KZLB_BLACKLIST=(REMOVE_STRATEGY=(TIMEOUT=30))))",
              blacklist_begins() + remove_begins() + timeout_of("30") + block_end() +
                  Lines{"DEBUG success to call KZCIRemoveStrategyBuild"} + block_end() +
                  Lines{"DEBUG success to call build_black_list_conf"} + description_ends(0),
              ")");
  EXPECT_EQ(service_.description->black_list_conf.remove_timeout, 30);
  EXPECT_EQ(service_.description->black_list_conf.append_strategy, LB_OPTION_NORMAL);
  EXPECT_EQ(live(), Lines{description_block});
}

// The refused block is parsed in full, so that the last token consumed is ")".
TEST_F(DescriptionBuild, SecondConnectDataEndsTheDescriptionWhichIsGood) {
  expect_good("(CONNECT_DATA=(SID=a))(CONNECT_DATA=(SID=b))(KZLB=ON))",
              data_of("a") + data_of("b") +
                  Lines{"FREE KZCIConnectData", "ERROR connect_data is already parse",
                        "ERROR fail to call KZCIConnectDataBuild, status:-1"} +
                  description_built(0),
              ")(KZLB=ON))");
  const KZCIDescription *des = service_.description;
  ASSERT_NE(des->connect_data, nullptr);
  EXPECT_EQ(support::text_of(des->connect_data->service_name, des->connect_data->service_name_len),
            "a");
  EXPECT_EQ(des->kzlb, 0);
  EXPECT_EQ(live(), (Lines{description_block, data_block}));
}

// A block that ends after a complete item is content, and its ")" is what the
// description looks for next.
TEST_F(DescriptionBuild, AcceptsABlockThatIsNotClosed) {
  const Lines open_end = input_end(mode);
  expect_good("(ADDRESS=(HOST=h)",
              bare_begins() + host("h") + open_end + ended() + description_built(1), "");
  expect_good(
      "(ADDRESS_LIST=(ADDRESS=(HOST=h))",
      new_list() + listed_address("h") + open_end + list_built(1) + ended() + description_built(1),
      "");
  expect_good("(CONNECT_DATA=(SID=a)",
              new_data() + sid("a") + open_end + data_built("a") + ended() + description_built(0),
              "");
  expect_good("(KZLB_BLACKLIST=(REMOVE_STRATEGY=(TIMEOUT=30)",
              blacklist_begins() + remove_begins() + timeout_of("30") + open_end +
                  Lines{"DEBUG success to call KZCIRemoveStrategyBuild"} + ended() +
                  Lines{"DEBUG success to call build_black_list_conf"} + ended() +
                  description_built(0),
              "");
  EXPECT_EQ(service_.description->black_list_conf.remove_timeout, 30);
  expect_good("(ADDRESS=(HOST=h)x)",
              bare_begins() + host("h") + mismatch(TNS_LEFT_PARENTHESES, TNS_KEY) +
                  mismatch(TNS_RIGHT_PARENTHESES, TNS_KEY) + description_built(1),
              "x)");
}

TEST_F(DescriptionBuild, NoMemoryBelowTheDescription) {
  const std::string list_size = std::to_string(sizeof(KZCIAddressList));
  const Lines no_list =
      refused(list_block) + Lines{"ERROR malloc address_list error, malloc size:" + list_size};
  const Lines no_address =
      refused(address_block) +
      Lines{"ERROR malloc address error, malloc size:" + std::to_string(sizeof(KZCIAddress))};
  expect_no_memory(2, {"implied list", "(ADDRESS=(HOST=h)))",
                       description_key("ADDRESS", LB_ADDRESS) + no_list, "(HOST=h)))"});
  expect_no_memory(
      3, {"bare address", "(ADDRESS=(HOST=h)))",
          description_key("ADDRESS", LB_ADDRESS) + allocated(list_block) + address_call() +
              no_address + Lines{"FREE address_list", "ERROR fail to call KZCIAddressBuild"},
          "(HOST=h)))"});
  expect_no_memory(2, {"list", "(ADDRESS_LIST=(KZLB=ON)))",
                       description_key("ADDRESS_LIST", LB_ADDRESS_LIST) + address_list_call() +
                           no_list + Lines{"ERROR fail to call KZCIAddressListBuild, status:-1"},
                       "(KZLB=ON)))"});
  expect_no_memory(2, {"data", "(CONNECT_DATA=(SID=a)))",
                       description_key("CONNECT_DATA", LB_CONNECT_DATA) + connect_data_call() +
                           refused(data_block) +
                           Lines{"ERROR malloc connect_data error, malloc size:" +
                                     std::to_string(sizeof(KZCIConnectData)),
                                 "ERROR fail to call KZCIConnectDataBuild, status:-1"},
                       "(SID=a)))"});
  expect_no_memory(3, {"second data",
                       "(CONNECT_DATA=(SID=a))(CONNECT_DATA=(SID=b)))",
                       data_of("a") + description_key("CONNECT_DATA", LB_CONNECT_DATA) +
                           connect_data_call() + refused(data_block) +
                           Lines{"ERROR malloc connect_data error, malloc size:" +
                                     std::to_string(sizeof(KZCIConnectData)),
                                 "ERROR fail to call KZCIConnectDataBuild, status:-1"},
                       "(SID=b)))",
                       -1,
                       {data_block}});
}

TEST_F(DescriptionBuild, FailureKeepsEveryChildAllocated) {
  expect_failure(
      {"bad switch last",
       "(ADDRESS_LIST=(ADDRESS=(HOST=a)))(CONNECT_DATA=(SID=s))"
       "(ADDRESS_LIST=(ADDRESS=(HOST=b)))(KZLB=x))",
       list_of("a") + data_of("s") + list_of("b") + read_item(kzlb_item, "x") + wrong_switch("x"),
       "))",
       -1,
       {list_block, address_block, data_block, list_block, address_block}});
}

TEST_F(DescriptionBuild, AppendsAtTheEndOfTheRing) {
  for (const char *body :
       {"(KZLB_READ_TIMEOUT=1))", "(KZLB_READ_TIMEOUT=2))", "(KZLB_READ_TIMEOUT=3))"}) {
    Body input(body);
    ASSERT_EQ(KZCIDescriptionBuild(&service_, &input.params), 0);
  }
  ASSERT_EQ(service_.description_count, 3u);
  KZCIDescription *a = service_.description;
  KZCIDescription *b = KZCIDescriptionNext(a);
  KZCIDescription *c = KZCIDescriptionNext(b);
  EXPECT_EQ(a->read_timout, 1);
  EXPECT_EQ(b->read_timout, 2);
  EXPECT_EQ(c->read_timout, 3);
  EXPECT_EQ(KZCIDescriptionNext(c), a);
  EXPECT_EQ(a->le.prev, &c->le);
  EXPECT_EQ(b->le.prev, &a->le);
  EXPECT_EQ(c->le.prev, &b->le);
  EXPECT_EQ(a->le.type, 0u);
}

TEST_F(DescriptionBuild, FailureLeavesTheServiceAsItWas) {
  const KZCIDescription *first = good("(KZLB=ON)");
  Body input("(KZLB=maybe))");
  EXPECT_EQ(KZCIDescriptionBuild(&service_, &input.params), -1);
  EXPECT_EQ(service_.description, first);
  EXPECT_EQ(service_.description_count, 1u);
  EXPECT_EQ(first->le.next, &first->le);
  EXPECT_EQ(first->le.prev, &first->le);
  EXPECT_EQ(live(), Lines{description_block});
}

TEST_F(DescriptionBuild, BodyOfSeveralSlices) {
  const std::string comment = "#" + std::string(1022, 'c') + "\n";
  expect_good(comment + "(KZLB=ON)" + comment + "(KZLB_READ_TIMEOUT=5))",
              refill(mode) + read_item(kzlb_item, "ON") + refill(mode) +
                  read_item(read_timeout_item, "5") + description_ends(0),
              ")");
  EXPECT_EQ(service_.description->read_timout, 5);
}

TEST_F(DescriptionBuild, ReadsFromAFileAsWell) {
  support::FileState file("(KZLB=ON)(CONNECT_DATA=(SID=a)))");
  file.params.tns_token_type = TNS_EQUAL_SIGN;
  ASSERT_EQ(KZCIDescriptionBuild(&service_, &file.params), 0);
  EXPECT_EQ(joined(support::events()),
            joined(description_call() + allocated(description_block) + refill(TNS_MODE_FILE) +
                   read_item(kzlb_item, "ON") + data_of("a") + description_ends(0)));
}

}  // namespace
