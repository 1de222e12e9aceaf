// KZCIConnectDataBuild, driven alone over the body of a CONNECT_DATA block.
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

Lines get_key_type(int type) {
  return {"DEBUG KZCIConnectDataBuild get key_type " + std::to_string(type)};
}

const Item service_item = {"SERVICE_NAME", LB_SERVICE_NAME, get_key_type(24), "sales"};
const Item sid_item = {"SID", LB_SID, get_key_type(25), "orcl"};
const Item extra_item = {"KZ_USER_EXTRA_INFO", LB_EXTRA_INFO, get_key_type(26), "report"};
const Item session_item = {"SESSION_VARIABLE", LB_SESSION_VARIABLE, get_key_type(32), "a"};
const Item mode_item = {"KZ_MODE", LB_KZ_MODE, get_key_type(27), "1"};
const Item default_sid_item = {"USE_DEFAULT_SID", LB_USE_DEFAULT_SID, get_key_type(28), "1"};

const Item text_items[] = {service_item, sid_item, extra_item, session_item};

Lines data_opened() { return connect_data_call() + allocated(data_block) + refill(mode); }

Lines data_built(const std::string &service) {
  return {std::string("DEBUG success to call KZCIConnectDataBuild, service_name:") +
          service.c_str()};
}

Lines data_failed() {
  return {"ERROR something error in KZCIConnectDataBuild", "FREE KZCIConnectData"};
}

std::string service_of(const KZCIConnectData &d) {
  return support::text_of(d.service_name, d.service_name_len);
}
std::string extra_of(const KZCIConnectData &d) {
  return support::text_of(d.user_extra_info, d.user_extra_info_len);
}
std::string session_of(const KZCIConnectData &d) {
  return support::text_of(d.session_variable, d.session_variable_len);
}

// The text that the item fills.
std::string text_of_item(const Item &item, const KZCIConnectData &data) {
  if (item.type == LB_EXTRA_INFO) return extra_of(data);
  if (item.type == LB_SESSION_VARIABLE) return session_of(data);
  return service_of(data);
}

class ConnectDataBuild : public ::testing::Test {
 protected:
  void SetUp() override {
    support::reset_platform();
    ASSERT_EQ(KZCIDescriptionInit(&des_), 0);
  }
  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    support::reset_platform();
  }

  // Builds the data of a body that is good; the body ends before its ")".
  const KZCIConnectData *good(const std::string &body) {
    support::reset_platform();
    KZCIDescriptionInit(&des_);
    Body input(body + ")");
    EXPECT_EQ(KZCIConnectDataBuild(&des_, &input.params), 0);
    EXPECT_EQ(input.unread(), ")");
    EXPECT_EQ(support::memory_events(), allocated(data_block));
    return des_.connect_data;
  }

  void expect_failure(const Fault &fault) {
    SCOPED_TRACE(fault.name + ": " + fault.input);
    support::reset_platform();
    Body input(fault.input);
    EXPECT_EQ(KZCIConnectDataBuild(&des_, &input.params), -1);
    EXPECT_EQ(joined(support::events()), joined(data_opened() + fault.log + data_failed()));
    EXPECT_EQ(input.unread(), fault.unread);
    EXPECT_EQ(des_.connect_data, nullptr);
  }

  void expect_failures(const std::vector<Fault> &faults) {
    for (const Fault &fault : faults) expect_failure(fault);
  }

  KZCIDescription des_;
};

TEST_F(ConnectDataBuild, LogsEveryStepOfGoodData) {
  Body input("(SERVICE_NAME=sales)(KZ_USER_EXTRA_INFO=report)(KZ_MODE=1))(next");
  ASSERT_EQ(KZCIConnectDataBuild(&des_, &input.params), 0);
  EXPECT_EQ(joined(support::events()), joined(data_opened() + read_item(service_item, "sales") +
                                              read_item(extra_item, "report") +
                                              read_item(mode_item, "1") + data_ends("sales")));
  const KZCIConnectData *data = des_.connect_data;
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(service_of(*data), "sales");
  EXPECT_EQ(extra_of(*data), "report");
  EXPECT_EQ(data->kz_mode, 1);
  EXPECT_EQ(data->session_variable_len, 0u);
  EXPECT_EQ(data->use_default_sid, 0);
  EXPECT_EQ(input.unread(), ")(next");
  EXPECT_EQ(input.params.tns_token_type, TNS_RIGHT_PARENTHESES);
}

TEST_F(ConnectDataBuild, FillsEveryField) {
  const KZCIConnectData *data = good(
      "(USE_DEFAULT_SID=2)(kz_mode=-3) (Session_Variable=\"set x = (1)\")\n"
      "(KZ_USER_EXTRA_INFO = report) (SERVICE_NAME=sales)");
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(service_of(*data), "sales");
  EXPECT_EQ(extra_of(*data), "report");
  EXPECT_EQ(session_of(*data), "set x = (1)");
  EXPECT_EQ(data->kz_mode, -3);
  EXPECT_EQ(data->use_default_sid, 2);
}

TEST_F(ConnectDataBuild, ServiceNameAndSidAreSynonyms) {
  struct {
    std::string input, service;
  } const rows[] = {
      {"(SERVICE_NAME=a)(SID=b)", "b"},
      {"(SID=b)(SERVICE_NAME=a)", "a"},
      {"(SID=orcl)", "orcl"},
      {"(SERVICE_NAME=a)(SID=b)(SERVICE_NAME=c)", "c"},
      {"(SERVICE_NAME=a)(SID=\"\")", ""},
      {"(KZ_MODE=1)", ""},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.input);
    const KZCIConnectData *data = good(row.input);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(service_of(*data), row.service);
    EXPECT_EQ(support::log_of(LOG_LEVEL_DEBUG).back(),
              "success to call KZCIConnectDataBuild, service_name:" + row.service);
  }
}

TEST_F(ConnectDataBuild, LaterItemOfTheSameKeyWins) {
  const KZCIConnectData *data = good(
      "(KZ_USER_EXTRA_INFO=a)(SESSION_VARIABLE=b)(KZ_MODE=1)(USE_DEFAULT_SID=2)"
      "(KZ_USER_EXTRA_INFO=c)(SESSION_VARIABLE=d)(KZ_MODE=3)(USE_DEFAULT_SID=4)");
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(extra_of(*data), "c");
  EXPECT_EQ(session_of(*data), "d");
  EXPECT_EQ(data->kz_mode, 3);
  EXPECT_EQ(data->use_default_sid, 4);
}

TEST_F(ConnectDataBuild, TextsAreCopiedAsTheyStand) {
  struct {
    std::string written, text;
  } const rows[] = {
      {"x", "x"},       {"\"\"", ""},       {"\"a b\"", "a b"}, {"a\"(=)\"b", "a(=)b"},
      {"a#b", "a#b"},   {"a\0b"s, "a\0b"s}, {"\"\0\""s, "\0"s}, {"\"a\r\nb\"", "a\r\nb"},
      {"\xE4", "\xE4"},
  };
  for (const Item &item : text_items) {
    for (const auto &row : rows) {
      SCOPED_TRACE(item.key + "=" + row.written);
      const KZCIConnectData *data = good("(" + item.key + "=" + row.written + ")");
      ASSERT_NE(data, nullptr);
      EXPECT_EQ(text_of_item(item, *data), row.text);
      EXPECT_EQ(support::warnings_and_errors(), block_end());
    }
  }
}

TEST_F(ConnectDataBuild, SuccessMessagePrintsUpToAZeroByte) {
  Body input("(SID=a\0b))"s);
  ASSERT_EQ(KZCIConnectDataBuild(&des_, &input.params), 0);
  EXPECT_EQ(joined(support::events()),
            joined(data_opened() + read_item(sid_item, "a\0b"s) + block_end() + data_built("a")));
  EXPECT_EQ(service_of(*des_.connect_data), "a\0b"s);
}

TEST_F(ConnectDataBuild, CopiesTheTextWithoutTerminator) {
  const KZCIConnectData *data = good(
      "(SID=abcdef)(SID=xy)(KZ_USER_EXTRA_INFO=abcdef)(KZ_USER_EXTRA_INFO=xy)"
      "(SESSION_VARIABLE=abcdef)(SESSION_VARIABLE=\"\")");
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(service_of(*data), "xy");
  EXPECT_EQ(support::text_of(data->service_name, 7), "xycdef\0"s);
  EXPECT_EQ(support::text_of(data->user_extra_info, 7), "xycdef\0"s);
  EXPECT_EQ(data->session_variable_len, 0u);
  EXPECT_EQ(support::text_of(data->session_variable, 7), "abcdef\0"s);
}

TEST_F(ConnectDataBuild, TextsTake256Characters) {
  for (const Item &item : text_items) {
    for (const std::size_t length : {1u, 255u, 256u}) {
      SCOPED_TRACE(item.key + " of " + std::to_string(length));
      const std::string text(length, 't');
      const KZCIConnectData *data = good("(" + item.key + "=" + text + ")(KZ_MODE=7)");
      ASSERT_NE(data, nullptr);
      EXPECT_EQ(text_of_item(item, *data), text);
      EXPECT_EQ(data->kz_mode, 7);
      EXPECT_EQ(support::warnings_and_errors(), block_end());
    }
  }
}

TEST_F(ConnectDataBuild, ExtraInfoMayFillItsWholeArray) {
  const std::string text(256, 'e');
  const KZCIConnectData *data =
      good("(SID=s)(SESSION_VARIABLE=v)(KZ_USER_EXTRA_INFO=" + text + ")");
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(sizeof data->user_extra_info, 256u);
  EXPECT_EQ(data->user_extra_info_len, 256u);
  EXPECT_EQ(support::text_of(data->user_extra_info, 256), text);
  EXPECT_EQ(service_of(*data), "s");
  EXPECT_EQ(session_of(*data), "v");
}

TEST_F(ConnectDataBuild, TextOf257CharactersIsCutAndItsRestIsOutOfPlace) {
  const std::string cut(256, 't');
  for (const Item &item : text_items) {
    expect_failure({"257 characters", "(" + item.key + "=" + cut + "x))",
                    read_item(item, cut) + mismatch(TNS_RIGHT_PARENTHESES, TNS_KEY), "x))"});
  }
}

TEST_F(ConnectDataBuild, TextWhose256thCharacterIsTheLastAtHandIsRefused) {
  const std::string longest(256, 't');
  for (const Item &item : text_items) {
    const Lines log = item_begins(item) + key_too_long() + no_text();
    expect_failure({"at the end of the input", "(" + item.key + "=" + longest, log, ""});
    const std::string blanks(1024 - 256 - 2 - item.key.size(), ' ');
    expect_failure(
        {"at the end of a slice", blanks + "(" + item.key + "=" + longest + "))", log, "))"});
  }
}

TEST_F(ConnectDataBuild, ModeMinusOne) {
  const KZCIConnectData *data = good("(KZ_MODE=-1)");
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(data->kz_mode, -1);
}

TEST_F(ConnectDataBuild, ModeOneAndAHalfOrAWordOrNothingIsRefused) {
  const Lines begins = item_begins(mode_item);
  expect_failures({
      {"fraction", "(KZ_MODE=1.5))", begins + key("1.5") + not_a_number("1.5"), "))"},
      {"word", "(KZ_MODE=abc))", begins + key("abc") + not_a_number("abc"), "))"},
      {"nothing", "(KZ_MODE=))", begins + mismatch(3, 2) + not_a_number("KZ_MODE"), "))"},
  });
}

TEST_F(ConnectDataBuild, TextsThatCannotBeRead) {
  for (const Item &item : text_items) {
    const Lines cut_off = item_begins(item) + key_cut_off(mode) + no_text();
    expect_failure({"end inside a value", "(" + item.key + "=ab", cut_off, ""});
    expect_failure({"end inside quotes", "(" + item.key + "=\"ab))", cut_off, ""});
    expect_failure({"end after empty quotes", "(" + item.key + "=\"\"", cut_off, ""});
  }
}

// The new characters stand over the key word, whose length is still in force.
TEST_F(ConnectDataBuild, IntegersThatTheEndCutsOffConvertWhatTheKeyHolds) {
  const Lines mode_cut_off = item_begins(mode_item) + key_cut_off(mode);
  const Lines sid_cut_off = item_begins(default_sid_item) + key_cut_off(mode);
  expect_failures({
      {"a part", "(KZ_MODE=12", mode_cut_off + not_a_number("12_MODE"), ""},
      {"all but one", "(KZ_MODE=123456", mode_cut_off + not_a_number("123456E"), ""},
      {"exactly", "(KZ_MODE=1234567", mode_cut_off, ""},
      {"more", "(KZ_MODE=12345678x", mode_cut_off, ""},
      {"open quotes", "(KZ_MODE=\"  12345))", mode_cut_off, ""},
      {"zero byte", "(KZ_MODE=12\0"s, mode_cut_off + not_a_number("12"), ""},
      {"a part", "(USE_DEFAULT_SID=1", sid_cut_off + not_a_number("1SE_DEFAULT_SID"), ""},
      {"exactly", "(USE_DEFAULT_SID=-12345678901234", sid_cut_off, ""},
  });
  expect_failure({"256 digits", "(KZ_MODE=" + std::string(256, '1'),
                  item_begins(mode_item) + key_too_long(), ""});
}

TEST_F(ConnectDataBuild, HostIsRefused) {
  expect_failure({"host", "(HOST=x))",
                  key_word("HOST", LB_HOST) + get_key_type(20) +
                      Lines{"ERROR KZCIConnectDataBuild get error key_type"},
                  "x))"});
}

TEST_F(ConnectDataBuild, SecondBlockIsParsedInFullAndThenRefused) {
  Body one("(SID=a))");
  ASSERT_EQ(KZCIConnectDataBuild(&des_, &one.params), 0);
  const KZCIConnectData *first = des_.connect_data;
  Body two("(SID=b)(KZ_MODE=2))");
  EXPECT_EQ(KZCIConnectDataBuild(&des_, &two.params), -1);
  const Lines first_call = data_opened() + read_item(sid_item, "a") + block_end() + data_built("a");
  EXPECT_EQ(joined(support::events()),
            joined(first_call + data_opened() + read_item(sid_item, "b") +
                   read_item(mode_item, "2") + block_end() + data_built("b") +
                   Lines{"FREE KZCIConnectData", "ERROR connect_data is already parse"}));
  EXPECT_EQ(des_.connect_data, first);
  EXPECT_EQ(service_of(*first), "a");
  EXPECT_EQ(first->kz_mode, 0);
  EXPECT_EQ(two.unread(), ")");
  EXPECT_EQ(live(), Lines{data_block});
}

TEST_F(ConnectDataBuild, SecondBlockThatIsMalformedFailsAsAnyOther) {
  const KZCIConnectData *first = good("(SID=a)");
  Body two("(SID=b)(KZ_MODE=x))");
  EXPECT_EQ(KZCIConnectDataBuild(&des_, &two.params), -1);
  EXPECT_EQ(support::log_of(LOG_LEVEL_ERROR),
            (std::vector<std::string>{"fail to covert to int, src value:x",
                                      "something error in KZCIConnectDataBuild"}));
  EXPECT_EQ(des_.connect_data, first);
  EXPECT_EQ(service_of(*first), "a");
  EXPECT_EQ(live(), Lines{data_block});
}

}  // namespace
