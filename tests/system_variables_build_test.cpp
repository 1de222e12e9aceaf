// The values of the reserved entry: what each key stores, reports and refuses.
#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>
#include <string_view>

#include "kzoci/oci_tnsname.h"
#include "support/expected_log.h"
#include "support/parsing.h"

namespace {

using namespace expected_log;
using namespace std::string_view_literals;
using support::bytes;
using support::text_of;

// No message of this builder holds a pointer, so that the log is compared as it is.
struct Key {
  KZCILBKeyType type;
  const char *word;
  const char *message;
};

const Key threshold = {LB_SLOWSQL_THRESHOLD, "SLOWSQL_THRESHOLD",
                       "DEBUG parse system variables get slowsql threshold:"};
const Key buffer_size = {LB_SLOWSQL_BUFFER_SIZE, "SLOWSQL_BUFFER_SIZE",
                         "DEBUG parse system variables get slowsql buffer size:"};
const Key flush_second = {LB_SLOWSQL_FLUSH_SECOND, "SLOWSQL_FLUSH_SECOND",
                          "DEBUG parse system variables get slowsql flush second:"};
const Key session = {LB_SESSION_VARIABLE, "SESSION_VARIABLE",
                     "DEBUG parse system variables get session variable:"};
const Key log_size = {LB_LOG_SIZE, "LOG_SIZE", "DEBUG parse system variables get log size:"};
const Key level = {LB_LOG_LEVEL, "LOG_LEVEL", "DEBUG parse system variables get log level:"};
// The count is reported under the level's wording.
const Key log_count = {LB_LOG_COUNT, "LOG_COUNT", "DEBUG parse system variables get log level:"};
const Key path = {LB_LOG_PATH, "LOG_PATH", "DEBUG parse system variables get log path:"};

const Key number_keys[] = {threshold, buffer_size, flush_second, log_size, log_count};
const Key text_keys[] = {session, level, path};

std::string shown(const KZCISystemVariables &vars) {
  std::ostringstream out;
  out << "threshold=" << vars.slowsql_threshold << " buffer=" << vars.slowsql_buffer_size
      << " flush=" << vars.slowsql_flush_second
      << " session=" << text_of(vars.session_variable, vars.session_variable_len)
      << " size=" << vars.log_size << " count=" << vars.log_count
      << " level=" << text_of(vars.log_level, vars.log_level_len)
      << " path=" << text_of(vars.log_path, vars.log_path_len);
  return out.str();
}

constexpr char defaults[] = "threshold=100 buffer=0 flush=60 session= size=0 count=0 level= path=";

// The number that a key stores.
sb8 number_of(const KZCISystemVariables &vars, const Key &key) {
  switch (key.type) {
    case LB_SLOWSQL_THRESHOLD:
      return vars.slowsql_threshold;
    case LB_SLOWSQL_BUFFER_SIZE:
      return vars.slowsql_buffer_size;
    case LB_SLOWSQL_FLUSH_SECOND:
      return vars.slowsql_flush_second;
    case LB_LOG_SIZE:
      return vars.log_size;
    default:
      return vars.log_count;
  }
}

// The array and the length of a text that a key stores.
struct TextField {
  char *array;
  ub4 *length;
  std::size_t size;
};

TextField text_field(KZCISystemVariables &vars, const Key &key) {
  switch (key.type) {
    case LB_SESSION_VARIABLE:
      return {vars.session_variable, &vars.session_variable_len, sizeof vars.session_variable};
    case LB_LOG_LEVEL:
      return {vars.log_level, &vars.log_level_len, sizeof vars.log_level};
    default:
      return {vars.log_path, &vars.log_path_len, sizeof vars.log_path};
  }
}

// A parse state after an item's "=", with its key identified.
class Value : public support::DescriptorState {
 public:
  Value(const Key &key, std::string_view text) : DescriptorState(text) {
    params.key_type = key.type;
    params.tns_token_type = TNS_EQUAL_SIGN;
    params.tns_key_len = static_cast<ub4>(std::strlen(key.word));
    std::memcpy(params.tns_key, key.word, params.tns_key_len);
  }
};

class SystemVariables : public testing::Test {
 protected:
  void SetUp() override { begin(); }
  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    EXPECT_EQ(support::allocation_count(), 0u);
  }

  void begin() {
    support::reset_platform();
    ASSERT_EQ(KZCISystemVariablesInit(&vars_), 0);
  }

  sword store(const Key &key, std::string_view text) {
    Value value(key, text);
    return KZCISystemVariablesBuild(&vars_, &value.params);
  }

  // Stores a value and forgets the log of it.
  void hold(const Key &key, std::string_view text) {
    EXPECT_EQ(store(key, text), 0);
    support::reset_platform();
  }

  KZCISystemVariables vars_;
};

Lines covert_error(const std::string &text) {
  return {"ERROR fail to covert to int, src value:" + text};
}

// ----------------------------------------------------------------------
// Arguments
// ----------------------------------------------------------------------

TEST_F(SystemVariables, ANullArgumentIsReportedByTheStatusAlone) {
  Value value(threshold, "5)");
  EXPECT_EQ(KZCISystemVariablesBuild(nullptr, &value.params), -2);
  EXPECT_EQ(KZCISystemVariablesBuild(&vars_, nullptr), -2);
  EXPECT_EQ(KZCISystemVariablesBuild(nullptr, nullptr), -2);
  EXPECT_EQ(support::log_records(), Lines{});
  EXPECT_EQ(value.params.buffer_len, 0u);
  EXPECT_EQ(shown(vars_), defaults);
}

TEST_F(SystemVariables, OneValueIsConsumedAndNothingAfterIt) {
  for (const Key &key : {threshold, buffer_size, flush_second, session, log_size, level, log_count,
                         path, Key{LB_ERROR_KEY, "ANYTHING", ""}}) {
    SCOPED_TRACE(key.word);
    Value value(key, " 5 )");
    EXPECT_EQ(KZCISystemVariablesBuild(&vars_, &value.params), 0);
    EXPECT_EQ(value.params.tns_token_type, TNS_KEY);
    EXPECT_EQ(value.key(), "5");
    EXPECT_EQ(KZCITnsParse(&value.params, TNS_RIGHT_PARENTHESES), 0);
  }
}

// The parse state stands in a comment with the rest of it at hand, and a key at its beginning.
TEST_F(SystemVariables, TheValueMayComeAfterTheRestOfAComment) {
  constexpr std::string_view at_hand = "1) is the old one\n7) and no more";
  Value value(threshold, "");
  std::memcpy(value.params.tns_buffer, at_hand.data(), at_hand.size());
  value.params.buffer_len = static_cast<ub4>(at_hand.size());
  value.params.is_comment = 1;
  EXPECT_EQ(KZCISystemVariablesBuild(&vars_, &value.params), 0);
  EXPECT_EQ(vars_.slowsql_threshold, 7);
  EXPECT_EQ(value.params.is_comment, 0);
  EXPECT_EQ(value.params.buffer_pos, at_hand.find(") and"));
  EXPECT_EQ(support::log_records(),
            (Lines{"DEBUG get key size:1, key:7",
                   "DEBUG parse system variables get slowsql threshold:7"}));
}

TEST_F(SystemVariables, EveryKeyStoresIntoItsOwnField) {
  EXPECT_EQ(shown(vars_), defaults);
  EXPECT_EQ(store(threshold, "1)"), 0);
  EXPECT_EQ(store(buffer_size, "2)"), 0);
  EXPECT_EQ(store(flush_second, "3)"), 0);
  EXPECT_EQ(store(session, "four)"), 0);
  EXPECT_EQ(store(log_size, "5000000)"), 0);
  EXPECT_EQ(store(level, "INFO)"), 0);
  EXPECT_EQ(store(log_count, "7)"), 0);
  EXPECT_EQ(store(path, "/var/log)"), 0);
  EXPECT_EQ(shown(vars_),
            "threshold=1 buffer=2 flush=3 session=four size=5000000 count=7 level=INFO "
            "path=/var/log");
}

TEST_F(SystemVariables, TheLastAcceptedValueStays) {
  EXPECT_EQ(store(threshold, "1)"), 0);
  EXPECT_EQ(store(threshold, "2)"), 0);
  EXPECT_EQ(store(level, "INFO)"), 0);
  EXPECT_EQ(store(level, "debug)"), 0);
  EXPECT_EQ(store(level, "()"), -1);
  EXPECT_EQ(shown(vars_),
            "threshold=2 buffer=0 flush=60 session= size=0 count=0 level=debug path=");
}

// ----------------------------------------------------------------------
// Numbers
// ----------------------------------------------------------------------

struct NumberRow {
  Key key;
  std::string text;   // As written, before ")".
  std::string value;  // As read.
  sb8 stored;
};

class SystemVariableNumbers : public SystemVariables {
 protected:
  void run(const NumberRow &row, bool accepted) {
    SCOPED_TRACE(row.key.word + std::string("=") + row.text);
    begin();
    EXPECT_EQ(store(row.key, row.text + ")"), accepted ? 0 : -1);
    EXPECT_EQ(number_of(vars_, row.key), row.stored);
    EXPECT_EQ(support::log_records(), refill(2) + expected_log::key(row.value) +
                                          (accepted ? Lines{} : covert_error(row.value)) +
                                          Lines{row.key.message + std::to_string(row.stored)});
  }
};

constexpr sb8 lowest = INT64_MIN;

TEST_F(SystemVariableNumbers, AWholeNumberIsStored) {
  const NumberRow rows[] = {
      {threshold, "10", "10", 10},
      {threshold, "0", "0", 0},
      {threshold, "-5", "-5", -5},
      {threshold, "+5", "+5", 5},
      {threshold, "\"5\"", "5", 5},
      {threshold, "\" \t5\"", " \t5", 5},
      {threshold, "1\"2\"3", "123", 123},
      {threshold, "9223372036854775807", "9223372036854775807", INT64_MAX},
      {threshold, "-9223372036854775808", "-9223372036854775808", lowest},
      {threshold, "9223372036854775808", "9223372036854775808", lowest},
      {threshold, "18446744073709551615", "18446744073709551615", -1},
      {buffer_size, "65536", "65536", 65536},
      {buffer_size, "-1", "-1", -1},
      {buffer_size, "4294967296", "4294967296", 4294967296},
      {flush_second, "30", "30", 30},
      {flush_second, "4294967295", "4294967295", 4294967295},
      {flush_second, "4294967296", "4294967296", 0},
      {flush_second, "4294967301", "4294967301", 5},
      {flush_second, "-1", "-1", 4294967295},
      {log_size, "1000", "1000", 1048576},
      {log_size, "1048575", "1048575", 1048576},
      {log_size, "1048576", "1048576", 1048576},
      {log_size, "1048577", "1048577", 1048577},
      {log_size, "5000000", "5000000", 5000000},
      {log_size, "9223372036854775807", "9223372036854775807", INT64_MAX},
      {log_size, "0", "0", 1048576},
      {log_size, "-1", "-1", 1048576},
      {log_size, "18446744073709551615", "18446744073709551615", 1048576},
      {log_count, "3", "3", 3},
      {log_count, "0", "0", 0},
      {log_count, "4294967294", "4294967294", 4294967294},
      {log_count, "4294967295", "4294967295", 4294967295},
      {log_count, "4294967296", "4294967296", 0},
      {log_count, "4294967297", "4294967297", 0},
      {log_count, "9223372036854775807", "9223372036854775807", 0},
      {log_count, "-1", "-1", 4294967295},
      {log_count, "-4294967296", "-4294967296", 0},
      {log_count, "-4294967297", "-4294967297", 4294967295},
      {log_count, "18446744073709551615", "18446744073709551615", 4294967295},
  };
  for (const NumberRow &row : rows) run(row, true);
}

// What was converted before the fault stays in the field.
TEST_F(SystemVariableNumbers, ARejectedNumberIsLeftInItsField) {
  const NumberRow rows[] = {
      {threshold, "10ms", "10ms", 10},
      {threshold, "-10ms", "-10ms", -10},
      {threshold, "1.5", "1.5", 1},
      {threshold, "abc", "abc", 0},
      {threshold, "-", "-", 0},
      {threshold, "--5", "--5", 0},
      {threshold, "0x10", "0x10", 0},
      {threshold, "\"5 \"", "5 ", 5},
      {threshold, "\"5 6\"", "5 6", 5},
      {threshold, "\"\"", "", 0},
      {threshold, "18446744073709551616", "18446744073709551616", -1},
      {threshold, "-9223372036854775809", "-9223372036854775809", lowest},
      {buffer_size, "64k", "64k", 64},
      {buffer_size, "x", "x", 0},
      {flush_second, "10x", "10x", 10},
      {flush_second, "4294967301x", "4294967301x", 5},
      {flush_second, "x", "x", 0},
      {flush_second, "18446744073709551616", "18446744073709551616", 4294967295},
      {log_size, "5000000x", "5000000x", 5000000},
      {log_size, "5M", "5M", 1048576},
      {log_size, "abc", "abc", 1048576},
      {log_size, "\"\"", "", 1048576},
      {log_count, "7x", "7x", 7},
      {log_count, "4294967297x", "4294967297x", 0},
      {log_count, "-1x", "-1x", 4294967295},
      {log_count, "abc", "abc", 0},
  };
  for (const NumberRow &row : rows) run(row, false);
}

// The key word itself is converted when there is no value, and is no number.
TEST_F(SystemVariableNumbers, AMissingValueIsReadAsTheKeyWord) {
  struct Row {
    const char *text;
    Lines read;
  };
  const Row rows[] = {
      {"(5)", refill(2) + mismatch(3, 1)}, {")", refill(2) + mismatch(3, 2)},
      {"=5", refill(2) + mismatch(3, 0)},  {"", input_end(2)},
      {" # 5", refill(2) + input_end(2)},
  };
  for (const Key &key : number_keys) {
    const std::string stored = key.type == LB_LOG_SIZE ? "1048576" : "0";
    for (const Row &row : rows) {
      SCOPED_TRACE(key.word + std::string("=") + row.text);
      begin();
      EXPECT_EQ(store(key, row.text), -1);
      EXPECT_EQ(support::log_records(),
                row.read + covert_error(key.word) + Lines{key.message + stored});
      EXPECT_EQ(std::to_string(number_of(vars_, key)), stored);
    }
  }
}

// The characters that were read stand over the key word, whose length stays.
TEST_F(SystemVariableNumbers, AValueThatTheEndCutsOffIsMixedWithTheKeyWord) {
  struct Row {
    Key key;
    const char *text;
    const char *mixed;
    sb8 stored;
  };
  const Row rows[] = {
      {threshold, "12", "12OWSQL_THRESHOLD", 12},
      {buffer_size, "12", "12OWSQL_BUFFER_SIZE", 12},
      {flush_second, "-1", "-1OWSQL_FLUSH_SECOND", 4294967295},
      {log_size, "2000000", "2000000E", 2000000},
      {log_count, "12", "12G_COUNT", 12},
      {log_count, "12345678", "12345678T", 12345678},
      {log_count, "abc", "abc_COUNT", 0},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.mixed);
    begin();
    EXPECT_EQ(store(row.key, row.text), -1);
    EXPECT_EQ(number_of(vars_, row.key), row.stored);
    EXPECT_EQ(support::log_records(), refill(2) + key_cut_off(2) + covert_error(row.mixed) +
                                          Lines{row.key.message + std::to_string(row.stored)});
  }
}

// Enough digits stand over the whole key word: the conversion is content, and
// the status of the read is what remains.
TEST_F(SystemVariableNumbers, DigitsOverTheWholeKeyWordGiveTheStatusOfTheRead) {
  struct Row {
    std::string text;
    sword status;
    Lines read;
    sb8 stored;
  };
  const Row rows[] = {
      {"123456789", 100, refill(2) + key_cut_off(2), 123456789},
      {"1234567890123", 100, refill(2) + key_cut_off(2), 123456789},
      {"-12345678", 100, refill(2) + key_cut_off(2), 4294967296 - 12345678},
      {std::string(256, '1'), -1, refill(2) + key_too_long(), 111111111},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.text);
    begin();
    EXPECT_EQ(store(log_count, row.text), row.status);
    EXPECT_EQ(vars_.log_count, row.stored);
    EXPECT_EQ(support::log_records(),
              row.read + Lines{log_count.message + std::to_string(row.stored)});
  }
}

TEST_F(SystemVariableNumbers, ANumberHeldFromAnEarlierReadIsTaken) {
  Value value(Key{LB_SLOWSQL_THRESHOLD, "42", ""}, "(5)");
  EXPECT_EQ(KZCISystemVariablesBuild(&vars_, &value.params), -1);
  EXPECT_EQ(vars_.slowsql_threshold, 42);
  EXPECT_EQ(
      support::log_records(),
      refill(2) + mismatch(3, 1) + Lines{"DEBUG parse system variables get slowsql threshold:42"});
}

// ----------------------------------------------------------------------
// Texts
// ----------------------------------------------------------------------

class SystemVariableTexts : public SystemVariables {
 protected:
  std::string stored(const Key &key) {
    const TextField field = text_field(vars_, key);
    return text_of(field.array, *field.length);
  }
};

TEST_F(SystemVariableTexts, ATextIsStoredAsWritten) {
  struct Row {
    std::string text;
    std::string value;
  };
  const std::string t256(256, 't');
  const Row rows[] = {
      {"debug", "debug"},
      {"INFO", "INFO"},
      {"Info", "Info"},
      {"x", "x"},
      {"\"two words\"", "two words"},
      {"\"a=(1)#\"", "a=(1)#"},
      {"/var/log/#1", "/var/log/#1"},
      {"\"\"", ""},
      {t256, t256},
      {"\"" + t256 + "\"", t256},
  };
  for (const Key &key : text_keys) {
    for (const Row &row : rows) {
      SCOPED_TRACE(key.word + std::string("=") + row.text);
      begin();
      EXPECT_EQ(store(key, row.text + ")"), 0);
      EXPECT_EQ(stored(key), row.value);
      EXPECT_EQ(support::log_records(),
                refill(2) + expected_log::key(row.value) + Lines{key.message + row.value});
    }
  }
}

// A key ends at 256 characters; what follows is the next token.
TEST_F(SystemVariableTexts, NoMoreThan256CharactersArrive) {
  const std::string t256(256, 't');
  for (const Key &key : text_keys) {
    SCOPED_TRACE(key.word);
    begin();
    Value value(key, t256 + "u)");
    EXPECT_EQ(KZCISystemVariablesBuild(&vars_, &value.params), 0);
    EXPECT_EQ(stored(key), t256);
    EXPECT_EQ(KZCITnsParse(&value.params, TNS_KEY), 0);
    EXPECT_EQ(value.key(), "u");
  }
}

TEST_F(SystemVariableTexts, AStringCopyEndsAtAZeroByte) {
  for (const Key &key : text_keys) {
    SCOPED_TRACE(key.word);
    begin();
    EXPECT_EQ(store(key, "old_text)"), 0);
    EXPECT_EQ(store(key, "a\0b)"sv), 0);
    EXPECT_EQ(stored(key), bytes("a\0\0"sv));
    EXPECT_EQ(support::log_records().back(), key.message + std::string("a"));
  }
}

TEST_F(SystemVariableTexts, ACopyTakesItsLengthAndNoTerminator) {
  for (const Key &key : text_keys) {
    SCOPED_TRACE(key.word);
    begin();
    EXPECT_EQ(store(key, "abcdef)"), 0);
    EXPECT_EQ(store(key, "xy)"), 0);
    EXPECT_EQ(stored(key), "xy");
    EXPECT_EQ(text_of(text_field(vars_, key).array, 7), bytes("xycdef\0"sv));
    EXPECT_EQ(store(key, "\"\")"), 0);
    EXPECT_EQ(stored(key), "");
    EXPECT_EQ(text_of(text_field(vars_, key).array, 7), bytes("xycdef\0"sv));
  }
}

TEST_F(SystemVariableTexts, AMissingValueKeepsTheOldOne) {
  struct Row {
    std::string text;
    sword status;
    Lines read;
  };
  const Row rows[] = {
      {"(INFO)", -1, refill(2) + mismatch(3, 1)},
      {")", -1, refill(2) + mismatch(3, 2)},
      {"=", -1, refill(2) + mismatch(3, 0)},
      {"", 100, input_end(2)},
      {"\n", 100, refill(2) + input_end(2)},
      {"INFO", 100, refill(2) + key_cut_off(2)},
      {"\"INFO)", 100, refill(2) + key_cut_off(2)},
      {std::string(256, 't'), -1, refill(2) + key_too_long()},
  };
  for (const Key &key : text_keys) {
    for (const bool has_old : {false, true}) {
      const std::string old = has_old ? "old" : "";
      for (const Row &row : rows) {
        SCOPED_TRACE(key.word + std::string("=") + row.text);
        begin();
        if (has_old) hold(key, "old)");
        EXPECT_EQ(store(key, row.text), row.status);
        EXPECT_EQ(stored(key), old);
        EXPECT_EQ(support::log_records(),
                  (row.read + Lines{"ERROR fail to parse string value", key.message + old}));
      }
    }
  }
}

TEST_F(SystemVariableTexts, AMessagePrintsNoMoreThanTheFieldHolds) {
  for (const Key &key : text_keys) {
    SCOPED_TRACE(key.word);
    begin();
    const TextField field = text_field(vars_, key);
    std::memset(field.array, 'f', field.size);
    *field.length = 5000;
    EXPECT_EQ(store(key, "()"), -1);
    EXPECT_EQ(support::log_records().back(), key.message + std::string(field.size, 'f'));
  }
}

// ----------------------------------------------------------------------
// Keys that are no system variable
// ----------------------------------------------------------------------

bool is_variable(int type) {
  for (const Key &key :
       {threshold, buffer_size, flush_second, session, log_size, level, log_count, path})
    if (key.type == type) return true;
  return false;
}

TEST_F(SystemVariables, TheValueOfAnyOtherKeyIsSkipped) {
  struct Row {
    const char *text;
    Lines read;
  };
  const Row rows[] = {
      {"5)", refill(2) + expected_log::key("5")},
      {"\"two words\")", refill(2) + expected_log::key("two words")},
      {"(5)", refill(2) + mismatch(3, 1)},
      {")", refill(2) + mismatch(3, 2)},
      {"", input_end(2)},
      {"INFO", refill(2) + key_cut_off(2)},
  };
  for (int type = LB_ERROR_KEY; type <= LB_MAX_KEY_TYPE; ++type) {
    if (is_variable(type)) continue;
    for (const Row &row : rows) {
      SCOPED_TRACE(std::to_string(type) + "=" + row.text);
      begin();
      EXPECT_EQ(store({static_cast<KZCILBKeyType>(type), "ANYTHING", ""}, row.text), 0);
      EXPECT_EQ(shown(vars_), defaults);
      EXPECT_EQ(support::log_records(),
                Lines{"WARN parse system variables get error key type:" + std::to_string(type)} +
                    row.read);
    }
  }
}

}  // namespace
