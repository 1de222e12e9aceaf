// KZCIRemoveStrategyBuild, KZCIAppendStrategyBuild and KZCIBlacklistConfBuild,
// each driven alone over the body of its block. They write into the caller's
// record as they read, so that every row also says what the record holds.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "support/builder_body.h"
#include "support/expected_log.h"
#include "support/parsing.h"

namespace {

using namespace builder_body;
using namespace expected_log;
using namespace std::string_literals;

// The record as "remove strategy, its time-out, append strategy, retries, duration".
std::string shown(const KZCIBlacklistConf &b) {
  return std::to_string(b.remove_strategy) + "," + std::to_string(b.remove_timeout) + "," +
         std::to_string(b.append_strategy) + "," + std::to_string(b.retry_times) + "," +
         std::to_string(b.duration);
}

// The defaults, save that no strategy stands where a name is to set one.
const std::string untouched = "3003,50,3003,1,10";

Lines wrong_name(const std::string &text) {
  return {std::string("ERROR parse LB_NAME get wrong key:") + text.c_str()};
}

// A fault and what the record holds after it.
struct Left {
  Fault fault;
  std::string record;
};

using Builder = sword (*)(KZCIBlacklistConf *, KZCITnsParseParams *);

class BlacklistTest : public ::testing::Test {
 protected:
  BlacklistTest(Builder builder, Lines call, std::string name)
      : builder_(builder), call_(std::move(call)), name_(std::move(name)) {}

  void SetUp() override { start(); }
  void TearDown() override {
    EXPECT_EQ(support::allocation_count(), 0u);
    EXPECT_EQ(support::memory_events(), Lines{});
    EXPECT_EQ(support::bad_releases(), 0u);
    support::reset_platform();
  }

  void start() {
    support::reset_platform();
    ASSERT_EQ(KZCIBlacklistConfInit(&black_), 0);
    black_.remove_strategy = LB_OPTION_MAX;
    black_.append_strategy = LB_OPTION_MAX;
  }

  // Reads a body that is good, from its defaults; gives what the record holds.
  std::string good(const std::string &body) {
    start();
    Body input(body + ")");
    EXPECT_EQ(builder_(&black_, &input.params), 0);
    EXPECT_EQ(input.unread(), ")");
    EXPECT_EQ(input.params.tns_token_type, TNS_RIGHT_PARENTHESES);
    return shown(black_);
  }

  void expect_good(const std::string &input_text, const Lines &log, const std::string &unread,
                   const std::string &record) {
    SCOPED_TRACE(input_text);
    start();
    Body input(input_text);
    EXPECT_EQ(builder_(&black_, &input.params), 0);
    EXPECT_EQ(joined(support::events()), joined(call_ + refill(mode) + log + built()));
    EXPECT_EQ(input.unread(), unread);
    EXPECT_EQ(shown(black_), record);
  }

  void expect_failure(const Fault &fault, const std::string &record = untouched) {
    SCOPED_TRACE(fault.name + ": " + fault.input);
    start();
    Body input(fault.input);
    EXPECT_EQ(builder_(&black_, &input.params), -1);
    EXPECT_EQ(joined(support::events()), joined(call_ + refill(mode) + fault.log + failed()));
    EXPECT_EQ(input.unread(), fault.unread);
    EXPECT_EQ(shown(black_), record);
  }

  void expect_failures(const std::vector<Fault> &faults, const std::string &record = untouched) {
    for (const Fault &fault : faults) expect_failure(fault, record);
  }

  void expect_left(const std::vector<Left> &rows) {
    for (const Left &row : rows) expect_failure(row.fault, row.record);
  }

  Lines built() const { return {"DEBUG success to call " + name_}; }
  Lines failed() const { return {"ERROR something error in " + name_}; }

  KZCIBlacklistConf black_;

 private:
  Builder builder_;
  Lines call_;
  std::string name_;
};

// ------------------------------------------------------------ remove strategy

class RemoveStrategyBuild : public BlacklistTest {
 protected:
  RemoveStrategyBuild()
      : BlacklistTest(KZCIRemoveStrategyBuild, strategy_call(), "KZCIRemoveStrategyBuild") {}
};

const Item remove_name = {"NAME", LB_NAME, {"DEBUG KZCIRemoveStrategyBuild get key_type 11"}, "T"};
const Item timeout_item = {
    "TIMEOUT", LB_TIMEOUT, {"DEBUG KZCIRemoveStrategyBuild get key_type 12"}, "30"};

TEST_F(RemoveStrategyBuild, LogsEveryStepOfAGoodBlock) {
  Body input("(NAME=TIMEOUT)(TIMEOUT=60))(next");
  ASSERT_EQ(KZCIRemoveStrategyBuild(&black_, &input.params), 0);
  EXPECT_EQ(joined(support::events()),
            joined(strategy_call() + refill(mode) + read_item(remove_name, "TIMEOUT") +
                   read_item(timeout_item, "60") + block_end() +
                   Lines{"DEBUG success to call KZCIRemoveStrategyBuild"}));
  EXPECT_EQ(shown(black_), "2001,60,3003,1,10");
  EXPECT_EQ(input.unread(), ")(next");
}

TEST_F(RemoveStrategyBuild, NameIsALeadingPartOfTimeout) {
  for (const std::string &text : {"TIMEOUT"s, "timeout"s, "time"s, "T"s, "TimeOu"s, "\"\""s,
                                  "\"time\""s, "TIMEOUT\0"s, "timeout\0zzz"s}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(good("(NAME=" + text + ")"), "2001,50,3003,1,10");
    EXPECT_EQ(support::warnings_and_errors(), block_end());
  }
}

TEST_F(RemoveStrategyBuild, OtherNamesAreRefused) {
  for (const std::string &text : {"TIMEOUTS"s, "RETRYDURATION"s, "X"s, "RETRY"s, "NORMAL"s,
                                  "TIME_OUT"s, "2001"s, "T\0"s, "\" TIMEOUT\""s, "\0"s, "NAME"s}) {
    expect_failure({"name", "(NAME=" + text + "))",
                    read_item(remove_name, unquoted(text)) + wrong_name(unquoted(text)), "))"});
  }
}

TEST_F(RemoveStrategyBuild, NameTimeIsAcceptedAndTheAppendNameIsNot) {
  EXPECT_EQ(good("(NAME=time)"), "2001,50,3003,1,10");
  expect_failure({"append name", "(NAME=RETRYDURATION))",
                  read_item(remove_name, "RETRYDURATION") + wrong_name("RETRYDURATION"), "))"});
}

TEST_F(RemoveStrategyBuild, RefusedTimeoutStaysInTheRecord) {
  struct {
    std::string text, left;
  } const rows[] = {
      {"12x", "12"},
      {"-12x", "-12"},
      {"1.5", "1"},
      {"abc", "0"},
      {"\"\"", "0"},
      {"-", "0"},
      {"\" \"", "0"},
      {"\"7 \"", "7"},
      {"7\0"s, "7"},
      {"18446744073709551616", "-1"},
      {"-9223372036854775809", "-9223372036854775808"},
  };
  for (const auto &row : rows) {
    expect_failure(
        {"number", "(TIMEOUT=" + row.text + "))",
         read_item(timeout_item, unquoted(row.text)) + not_a_number(unquoted(row.text)), "))"},
        "3003," + row.left + ",3003,1,10");
  }
}

TEST_F(RemoveStrategyBuild, LaterItemOfTheSameKeyWins) {
  EXPECT_EQ(good("(TIMEOUT=1)(NAME=T)(TIMEOUT=2)(NAME=time)"), "2001,2,3003,1,10");
}

TEST_F(RemoveStrategyBuild, ValuesReadBeforeAFaultStay) {
  expect_left({
      {{"name after time-out", "(TIMEOUT=30)(NAME=x))",
        read_item(timeout_item, "30") + read_item(remove_name, "x") + wrong_name("x"), "))"},
       "3003,30,3003,1,10"},
      {{"time-out after name", "(NAME=T)(TIMEOUT=8x))",
        read_item(remove_name, "T") + read_item(timeout_item, "8x") + not_a_number("8x"), "))"},
       "2001,8,3003,1,10"},
      {{"end after a value", "(TIMEOUT=30",
        item_begins(timeout_item) + key_cut_off(mode) + not_a_number("30MEOUT"), ""},
       "3003,30,3003,1,10"},
      {{"second value", "(TIMEOUT=30 40))",
        read_item(timeout_item, "30") + mismatch(TNS_RIGHT_PARENTHESES, TNS_KEY), "40))"},
       "3003,30,3003,1,10"},
  });
}

// The new characters stand over the key word "NAME", four characters long.
TEST_F(RemoveStrategyBuild, NameThatTheEndCutsOffComparesWhatTheKeyHolds) {
  const Lines cut_off = item_begins(remove_name) + key_cut_off(mode);
  const std::string stored = "2001,50,3003,1,10";
  expect_left({
      {{"one", "(NAME=T", cut_off + wrong_name("TAME"), ""}, untouched},
      {{"three", "(NAME=TIM", cut_off, ""}, stored},
      {{"four", "(NAME=time", cut_off, ""}, stored},
      {{"whole", "(NAME=TIMEOUT", cut_off, ""}, stored},
      {{"beyond", "(NAME=TIMELESS", cut_off, ""}, stored},
      {{"other", "(NAME=RETRY", cut_off + wrong_name("RETR"), ""}, untouched},
  });
}

// The new characters stand over the key word "TIMEOUT", seven characters long.
TEST_F(RemoveStrategyBuild, TimeoutThatTheEndCutsOffConvertsWhatTheKeyHolds) {
  const Lines begins = item_begins(timeout_item);
  const Lines cut_off = begins + key_cut_off(mode);
  expect_left({
      {{"a part", "(TIMEOUT=12", cut_off + not_a_number("12MEOUT"), ""}, "3003,12,3003,1,10"},
      {{"exactly", "(TIMEOUT=1234567", cut_off, ""}, "3003,1234567,3003,1,10"},
      {{"more", "(TIMEOUT=12345678", cut_off, ""}, "3003,1234567,3003,1,10"},
      {{"open quotes", "(TIMEOUT=\"-123456))", cut_off, ""}, "3003,-123456,3003,1,10"},
      {{"empty quotes", "(TIMEOUT=\"\"", cut_off + not_a_number("TIMEOUT"), ""},
       "3003,0,3003,1,10"},
      {{"zero byte", "(TIMEOUT=12\0"s, cut_off + not_a_number("12"), ""}, "3003,12,3003,1,10"},
      {{"256 digits", "(TIMEOUT=" + std::string(256, '3'), begins + key_too_long(), ""},
       "3003,3333333,3003,1,10"},
  });
}

TEST_F(RemoveStrategyBuild, TimeoutOf257DigitsIsCutAndOverflows) {
  const std::string cut(256, '9');
  expect_failure({"257 digits", "(TIMEOUT=" + cut + "9))",
                  read_item(timeout_item, cut) + not_a_number(cut), "9))"},
                 "3003,-1,3003,1,10");
}

TEST_F(RemoveStrategyBuild, HostIsRefused) {
  expect_failure({"host", "(HOST=x))",
                  key_word("HOST", LB_HOST) + Lines{"DEBUG KZCIRemoveStrategyBuild get key_type 20",
                                                    "ERROR get error key_type"},
                  "x))"});
}

// ------------------------------------------------------------ append strategy

class AppendStrategyBuild : public BlacklistTest {
 protected:
  AppendStrategyBuild()
      : BlacklistTest(KZCIAppendStrategyBuild, strategy_call(), "KZCIAppendStrategyBuild") {}
};

const Item append_name = {"NAME", LB_NAME, {"DEBUG get key_type 11"}, "r"};
const Item retry_item = {"RETRY_TIMES", LB_RETRY_TIMES, {"DEBUG get key_type 14"}, "3"};
const Item retrytimes_item = {"RETRYTIMES", LB_RETRY_TIMES, {"DEBUG get key_type 14"}, "3"};
const Item duration_item = {"DURATION", LB_DRUATION, {"DEBUG get key_type 15"}, "20"};

TEST_F(AppendStrategyBuild, LogsEveryStepOfAGoodBlock) {
  Body input("(NAME=RETRYDURATION)(RETRY_TIMES=3)(DURATION=20))(next");
  ASSERT_EQ(KZCIAppendStrategyBuild(&black_, &input.params), 0);
  EXPECT_EQ(joined(support::events()),
            joined(strategy_call() + refill(mode) + read_item(append_name, "RETRYDURATION") +
                   read_item(retry_item, "3") + read_item(duration_item, "20") + block_end() +
                   Lines{"DEBUG success to call KZCIAppendStrategyBuild"}));
  EXPECT_EQ(shown(black_), "3003,50,3001,3,20");
  EXPECT_EQ(input.unread(), ")(next");
}

TEST_F(AppendStrategyBuild, NameIsALeadingPartOfRetryDuration) {
  for (const std::string &text :
       {"RETRYDURATION"s, "retryduration"s, "RETRY"s, "r"s, "RetryDuratio"s, "\"\""s, "\"RETRY\""s,
        "RETRYDURATION\0"s, "retryduration\0zzz"s}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(good("(NAME=" + text + ")"), "3003,50,3001,1,10");
    EXPECT_EQ(support::warnings_and_errors(), block_end());
  }
}

TEST_F(AppendStrategyBuild, OtherNamesAreRefused) {
  for (const std::string &text :
       {"RETRYDURATIONS"s, "TIMEOUT"s, "T"s, "NORMAL"s, "N"s, "RETRY_DURATION"s, "RETRYDERUATION"s,
        "R\0"s, "\"RETRY \""s, "\0"s, "NAME"s}) {
    expect_failure({"name", "(NAME=" + text + "))",
                    read_item(append_name, unquoted(text)) + wrong_name(unquoted(text)), "))"});
  }
}

TEST_F(AppendStrategyBuild, TheRemoveNameIsRefused) {
  expect_failure({"remove name", "(NAME=TIMEOUT))",
                  read_item(append_name, "TIMEOUT") + wrong_name("TIMEOUT"), "))"});
}

TEST_F(AppendStrategyBuild, BothSpellingsSetTheRetryTimes) {
  EXPECT_EQ(good("(RETRYTIMES=5)"), "3003,50,3003,5,10");
  EXPECT_EQ(good("(RETRY_TIMES=5)"), "3003,50,3003,5,10");
  EXPECT_EQ(good("(retry_times=5)(RetryTimes=6)"), "3003,50,3003,6,10");
  EXPECT_EQ(good("(RETRYTIMES=5)(RETRY_TIMES=7)"), "3003,50,3003,7,10");
}

TEST_F(AppendStrategyBuild, DurationMinusOneIsStoredAndAWordOrNothingIsRefused) {
  EXPECT_EQ(good("(DURATION=-1)"), "3003,50,3003,1,-1");
  expect_left({
      {{"word", "(DURATION=abc))", read_item(duration_item, "abc") + not_a_number("abc"), "))"},
       "3003,50,3003,1,0"},
      {{"nothing", "(DURATION=))",
        item_begins(duration_item) + mismatch(3, 2) + not_a_number("DURATION"), "))"},
       "3003,50,3003,1,0"},
  });
}

TEST_F(AppendStrategyBuild, RefusedNumbersStayInTheRecord) {
  struct {
    std::string text, left;
  } const rows[] = {
      {"12x", "12"},
      {"-12x", "-12"},
      {"1.5", "1"},
      {"abc", "0"},
      {"\"\"", "0"},
      {"7\0"s, "7"},
      {"18446744073709551616", "-1"},
      {"-9223372036854775809", "-9223372036854775808"},
  };
  for (const auto &row : rows) {
    const std::string text = unquoted(row.text);
    for (const Item &item : {retry_item, retrytimes_item}) {
      expect_failure({item.key, "(" + item.key + "=" + row.text + "))",
                      read_item(item, text) + not_a_number(text), "))"},
                     "3003,50,3003," + row.left + ",10");
    }
    expect_failure({"duration", "(DURATION=" + row.text + "))",
                    read_item(duration_item, text) + not_a_number(text), "))"},
                   "3003,50,3003,1," + row.left);
  }
}

TEST_F(AppendStrategyBuild, ValuesReadBeforeAFaultStay) {
  expect_left({
      {{"name last", "(DURATION=5)(RETRYTIMES=6)(NAME=x))",
        read_item(duration_item, "5") + read_item(retrytimes_item, "6") +
            read_item(append_name, "x") + wrong_name("x"),
        "))"},
       "3003,50,3003,6,5"},
      {{"refused key last", "(NAME=r)(DURATION=5)(TIMEOUT=6))",
        read_item(append_name, "r") + read_item(duration_item, "5") +
            key_word("TIMEOUT", LB_TIMEOUT) +
            Lines{"DEBUG get key_type 12", "ERROR get error key_type"},
        "6))"},
       "3003,50,3001,1,5"},
  });
}

TEST_F(AppendStrategyBuild, NameThatTheEndCutsOffComparesWhatTheKeyHolds) {
  const Lines cut_off = item_begins(append_name) + key_cut_off(mode);
  const std::string stored = "3003,50,3001,1,10";
  expect_left({
      {{"one", "(NAME=r", cut_off + wrong_name("rAME"), ""}, untouched},
      {{"four", "(NAME=retr", cut_off, ""}, stored},
      {{"whole", "(NAME=RETRYDURATION", cut_off, ""}, stored},
      {{"other", "(NAME=TIMEOUT", cut_off + wrong_name("TIME"), ""}, untouched},
  });
}

// The key words have 11, 10 and 8 characters.
TEST_F(AppendStrategyBuild, NumbersThatTheEndCutsOffConvertWhatTheKeyHolds) {
  const Lines retry = item_begins(retry_item) + key_cut_off(mode);
  const Lines retrytimes = item_begins(retrytimes_item) + key_cut_off(mode);
  const Lines duration = item_begins(duration_item) + key_cut_off(mode);
  expect_left({
      {{"a part", "(RETRY_TIMES=12", retry + not_a_number("12TRY_TIMES"), ""},
       "3003,50,3003,12,10"},
      {{"exactly", "(RETRY_TIMES=12345678901", retry, ""}, "3003,50,3003,12345678901,10"},
      {{"more", "(RETRY_TIMES=123456789012", retry, ""}, "3003,50,3003,12345678901,10"},
      {{"a part", "(RETRYTIMES=12", retrytimes + not_a_number("12TRYTIMES"), ""},
       "3003,50,3003,12,10"},
      {{"exactly", "(RETRYTIMES=1234567890", retrytimes, ""}, "3003,50,3003,1234567890,10"},
      {{"a part", "(DURATION=-7", duration + not_a_number("-7RATION"), ""}, "3003,50,3003,1,-7"},
      {{"exactly", "(DURATION=12345678", duration, ""}, "3003,50,3003,1,12345678"},
  });
}

// ------------------------------------------------------------ the whole block

class BlacklistConfBuild : public BlacklistTest {
 protected:
  BlacklistConfBuild()
      : BlacklistTest(KZCIBlacklistConfBuild, blacklist_call(), "build_black_list_conf") {}
};

const Item remove_item = {
    "REMOVE_STRATEGY", LB_REMOVE_STRATEGY, {"DEBUG KZCIAddressListBuild get key_type 10"}, ""};
const Item append_item = {
    "APPEND_STRATEGY", LB_APPEND_STRATEGY, {"DEBUG KZCIAddressListBuild get key_type 13"}, ""};

Lines remove_begins() { return item_begins(remove_item) + strategy_call(); }
Lines append_begins() { return item_begins(append_item) + strategy_call(); }

Lines remove_built() {
  return block_end() + Lines{"DEBUG success to call KZCIRemoveStrategyBuild"};
}

Lines remove_fails() {
  return {"ERROR something error in KZCIRemoveStrategyBuild",
          "ERROR fail to call KZCIRemoveStrategyBuild, status:-1"};
}
Lines append_fails() {
  return {"ERROR something error in KZCIAppendStrategyBuild",
          "ERROR fail to call KZCIAppendStrategyBuild, status:-1"};
}

TEST_F(BlacklistConfBuild, LogsEveryStepOfAGoodBlock) {
  Body input(
      "(REMOVE_STRATEGY=(NAME=TIMEOUT)(TIMEOUT=50))"
      "(APPEND_STRATEGY=(NAME=RETRYDURATION)(RETRY_TIMES=3)(DURATION=10)))(next");
  ASSERT_EQ(KZCIBlacklistConfBuild(&black_, &input.params), 0);
  EXPECT_EQ(joined(support::events()),
            joined(blacklist_call() + refill(mode) + remove_begins() +
                   read_item(remove_name, "TIMEOUT") + read_item(timeout_item, "50") +
                   remove_built() + append_begins() + read_item(append_name, "RETRYDURATION") +
                   read_item(retry_item, "3") + read_item(duration_item, "10") + block_end() +
                   Lines{"DEBUG success to call KZCIAppendStrategyBuild"} + block_end() +
                   Lines{"DEBUG success to call build_black_list_conf"}));
  EXPECT_EQ(shown(black_), "2001,50,3001,3,10");
  EXPECT_EQ(input.unread(), ")(next");
}

TEST_F(BlacklistConfBuild, HandsItsOwnRecordToTheStrategies) {
  Body input("(APPEND_STRATEGY=(DURATION=1)))");
  ASSERT_EQ(KZCIBlacklistConfBuild(&black_, &input.params), 0);
  const std::string call =
      "DEBUG call KZCIAddressListBuild with params [black:" + support::pointer_text(&black_) +
      "], [parse_params:" + support::pointer_text(&input.params) + "]";
  EXPECT_EQ(support::log_records().at(5), call);
}

TEST_F(BlacklistConfBuild, TimeoutAloneLeavesTheOtherDefaults) {
  Body input("(REMOVE_STRATEGY=(TIMEOUT=30)))");
  ASSERT_EQ(KZCIBlacklistConfInit(&black_), 0);
  ASSERT_EQ(KZCIBlacklistConfBuild(&black_, &input.params), 0);
  EXPECT_EQ(black_.remove_strategy, LB_OPTION_TIMEOUT);
  EXPECT_EQ(black_.remove_timeout, 30);
  EXPECT_EQ(black_.append_strategy, LB_OPTION_NORMAL);
  EXPECT_EQ(black_.retry_times, 1);
  EXPECT_EQ(black_.duration, 10);
}

TEST_F(BlacklistConfBuild, ReadsStrategiesInAnyOrderAndLetterCase) {
  struct {
    std::string input, record;
  } const rows[] = {
      {"(APPEND_STRATEGY=(NAME=R)(DURATION=5)(RETRYTIMES=4))(REMOVE_STRATEGY=(NAME=T)(TIMEOUT=6))",
       "2001,6,3001,4,5"},
      {"(append_strategy=(duration=5)) ( Remove_Strategy = ( Timeout = 6 ) )", "3003,6,3003,1,5"},
      {"(APPEND_STRATEGY=(NAME=RETRY))", "3003,50,3001,1,10"},
      {"(REMOVE_STRATEGY=(NAME=\"\"))", "2001,50,3003,1,10"},
      {"(APPEND_STRATEGY=#)\n(DURATION=5))", "3003,50,3003,1,5"},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.input);
    EXPECT_EQ(good(row.input), row.record);
  }
}

TEST_F(BlacklistConfBuild, SecondAppendStrategyOverwritesWhatItNames) {
  EXPECT_EQ(good("(APPEND_STRATEGY=(NAME=R)(RETRYTIMES=4)(DURATION=5))"
                 "(APPEND_STRATEGY=(DURATION=6))"),
            "3003,50,3001,4,6");
}

TEST_F(BlacklistConfBuild, SecondRemoveStrategyOverwritesWhatItNames) {
  EXPECT_EQ(good("(REMOVE_STRATEGY=(NAME=T)(TIMEOUT=7))(REMOVE_STRATEGY=(TIMEOUT=8))"),
            "2001,8,3003,1,10");
}

TEST_F(BlacklistConfBuild, SecondBlockOverwritesWhatItNames) {
  Body one("(REMOVE_STRATEGY=(TIMEOUT=7))(APPEND_STRATEGY=(DURATION=5)))");
  Body two("(APPEND_STRATEGY=(DURATION=6)))");
  ASSERT_EQ(KZCIBlacklistConfBuild(&black_, &one.params), 0);
  ASSERT_EQ(KZCIBlacklistConfBuild(&black_, &two.params), 0);
  EXPECT_EQ(shown(black_), "3003,7,3003,1,6");
}

TEST_F(BlacklistConfBuild, EmptyBlockAndEmptyStrategiesAreRefused) {
  expect_failures({
      {"empty block", ")", block_end(), ")"},
      {"empty remove strategy", "(REMOVE_STRATEGY=))",
       remove_begins() + block_end() + remove_fails(), "))"},
      {"empty append strategy", "(APPEND_STRATEGY=))",
       append_begins() + block_end() + append_fails(), "))"},
  });
}

TEST_F(BlacklistConfBuild, NameDirectlyInsideTheBlockIsRefused) {
  expect_failure(
      {"name", "(NAME=TIMEOUT))",
       key_word("NAME", LB_NAME) + Lines{"DEBUG KZCIAddressListBuild get key_type 11",
                                         "ERROR build_black_list_conf get error key_type"},
       "TIMEOUT))"});
}

TEST_F(BlacklistConfBuild, FailingStrategyFailsTheBlock) {
  expect_left({
      {{"text for a strategy", "(REMOVE_STRATEGY=TIMEOUT))",
        remove_begins() + mismatch(TNS_LEFT_PARENTHESES, TNS_KEY) + remove_fails(), "TIMEOUT))"},
       untouched},
      {{"end for a strategy",
        "(APPEND_STRATEGY=", append_begins() + input_end(mode) + append_fails(), ""},
       untouched},
      {{"host in a remove strategy", "(REMOVE_STRATEGY=(HOST=x)))",
        remove_begins() + key_word("HOST", LB_HOST) +
            Lines{"DEBUG KZCIRemoveStrategyBuild get key_type 20", "ERROR get error key_type"} +
            remove_fails(),
        "x)))"},
       untouched},
      {{"bad number after a good strategy",
        "(REMOVE_STRATEGY=(TIMEOUT=7))(APPEND_STRATEGY="
        "(DURATION=12x)))",
        remove_begins() + read_item(timeout_item, "7") + remove_built() + append_begins() +
            read_item(duration_item, "12x") + not_a_number("12x") + append_fails(),
        ")))"},
       "3003,7,3003,1,12"},
      {{"wrong name", "(APPEND_STRATEGY=(RETRYTIMES=9)(NAME=TIMEOUT)))",
        append_begins() + read_item(retrytimes_item, "9") + read_item(append_name, "TIMEOUT") +
            wrong_name("TIMEOUT") + append_fails(),
        ")))"},
       "3003,50,3003,9,10"},
      {{"end inside a value", "(REMOVE_STRATEGY=(TIMEOUT=1234567",
        remove_begins() + item_begins(timeout_item) + key_cut_off(mode) + remove_fails(), ""},
       "3003,1234567,3003,1,10"},
  });
}

// The last token consumed is the ")" of the strategy's own item.
TEST_F(BlacklistConfBuild, AcceptsAStrategyThatIsNotClosed) {
  const Lines begins = append_begins() + read_item(duration_item, "7");
  const Lines strategy_built = {"DEBUG success to call KZCIAppendStrategyBuild"};
  expect_good("(APPEND_STRATEGY=(DURATION=7)", begins + input_end(mode) + strategy_built + ended(),
              "", "3003,50,3003,1,7");
  expect_good("(APPEND_STRATEGY=(DURATION=7)x))",
              begins + mismatch(TNS_LEFT_PARENTHESES, TNS_KEY) + strategy_built +
                  mismatch(TNS_RIGHT_PARENTHESES, TNS_KEY),
              "x))", "3003,50,3003,1,7");
}

}  // namespace
