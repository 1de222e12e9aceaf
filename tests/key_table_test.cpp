// The key words: which text is which key, in any letter case.
#include <gtest/gtest.h>

#include <cctype>
#include <cstddef>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "support/keys.h"
#include "support/parsing.h"

namespace {

using support::bytes;
using support::DescriptorState;
using support::Key;
using support::keys;
using support::Lines;
using namespace std::string_view_literals;

class KeyTable : public ::testing::Test {
 protected:
  void SetUp() override { support::reset_platform(); }
  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    EXPECT_EQ(support::memory_events(), Lines{}) << "a lookup allocates nothing";
  }
};

constexpr KZCILBKeyType untouched = LB_MAX_KEY_TYPE;

// A state with this key in it; the characters after it are no zero bytes.
KZCITnsParseParams state_with(std::string_view key) {
  KZCITnsParseParams params;
  std::memset(&params, 0, sizeof params);
  std::memset(params.tns_key, 'S', sizeof params.tns_key);
  std::memcpy(params.tns_key, key.data(), key.size());
  params.tns_key_len = static_cast<ub4>(key.size());
  params.key_type = untouched;
  return params;
}

Lines found(int number) { return {"DEBUG succ to find key, key is:" + std::to_string(number)}; }

// The text stands in the message up to its first zero byte.
Lines not_found(const std::string &key) {
  return {"DEBUG fail to find key, key size:" + std::to_string(key.size()) +
          ", key str:" + key.c_str()};
}

void expect_found(std::string_view key, int number) {
  SCOPED_TRACE(key);
  support::reset_platform();
  KZCITnsParseParams params = state_with(key);
  EXPECT_EQ(KZCITnsGetKeyType(&params), 0);
  EXPECT_EQ(params.key_type, number);
  EXPECT_EQ(support::log_records(), found(number));
}

void expect_not_found(std::string_view key) {
  SCOPED_TRACE(key);
  support::reset_platform();
  KZCITnsParseParams params = state_with(key);
  EXPECT_EQ(KZCITnsGetKeyType(&params), 0);
  EXPECT_EQ(params.key_type, LB_ERROR_KEY);
  EXPECT_EQ(support::log_records(), not_found(bytes(key)));
}

bool is_word(std::string_view text) {
  for (const Key &key : keys)
    if (key.word == text) return true;
  return false;
}

std::string lower(std::string_view text) {
  std::string out;
  for (const char c : text) out += static_cast<char>(std::tolower(c));
  return out;
}

// Upper and lower case in turn, beginning with either.
std::string mixed(std::string_view text, bool lower_first) {
  std::string out = lower(text);
  for (std::size_t i = lower_first ? 1 : 0; i < out.size(); i += 2) out[i] = text[i];
  return out;
}

TEST_F(KeyTable, IdentifiersHaveTheirNumbers) {
  EXPECT_EQ(LB_ERROR_KEY, 0);
  for (const Key &key : keys) EXPECT_EQ(key.type, key.number) << key.word;
}

// Every identifier between the bounds has a word, and only the retry count has two.
TEST_F(KeyTable, EveryIdentifierHasAWord) {
  std::map<int, std::set<std::string_view>> words;
  for (const Key &key : keys) words[key.number].insert(key.word);
  EXPECT_EQ(words.size(), static_cast<std::size_t>(LB_MAX_KEY_TYPE) - 1);
  for (int number = LB_ERROR_KEY + 1; number < LB_MAX_KEY_TYPE; ++number)
    EXPECT_EQ(words[number].size(), number == LB_RETRY_TIMES ? 2u : 1u) << number;
}

TEST_F(KeyTable, WordsInUpperCase) {
  for (const Key &key : keys) expect_found(key.word, key.number);
}

TEST_F(KeyTable, WordsInLowerCase) {
  for (const Key &key : keys) expect_found(lower(key.word), key.number);
}

TEST_F(KeyTable, WordsInMixedCase) {
  for (const Key &key : keys) {
    expect_found(mixed(key.word, true), key.number);
    expect_found(mixed(key.word, false), key.number);
  }
}

TEST_F(KeyTable, RetryTimesHasTwoSpellings) {
  for (const char *key : {"retry_times", "RETRYTIMES", "Retry_Times", "RetryTimes"})
    expect_found(key, LB_RETRY_TIMES);
  for (const char *key : {"RETRY-TIMES", "RETRY__TIMES", "RETRY TIMES", "_RETRYTIMES"})
    expect_not_found(key);
}

// Identifiers do not always repeat their word.
TEST_F(KeyTable, NamesOfIdentifiersAreNoKeyWords) {
  for (const char *key : {"EXTRA_INFO", "CONNECT_TIMEOUT", "READ_TIMEOUT", "WRITE_TIMEOUT",
                          "DRUATION", "KZLB_DRUATION", "ERROR_KEY", "MAX_KEY_TYPE"})
    expect_not_found(key);
  expect_found("DURATION", LB_DRUATION);
  expect_found("KZ_USER_EXTRA_INFO", LB_EXTRA_INFO);
  expect_found("KZLB_CONNECT_TIMEOUT", LB_CONNECT_TIMEOUT);
}

TEST_F(KeyTable, ValuesAreNoKeyWords) {
  for (const char *key : {"ON", "OFF", "TCP", "RANDOM", "ROTATION", "SERVERAFFINITY", "NORMAL",
                          "KZCISYSTEMVARIABLES", "DESCRIPTION_LIST", "KZLB_RETRY_DELAY"})
    expect_not_found(key);
}

TEST_F(KeyTable, EveryLengthUpToTheLimit) {
  for (std::size_t size = 0; size <= 20; ++size) {
    expect_not_found(std::string(size, 'Q'));
    expect_not_found(std::string(size, 'S'));
    expect_not_found(std::string(size, '\0'));
    expect_not_found(std::string(size, '_'));
  }
}

// No key word has one of these lengths.
TEST_F(KeyTable, LengthsWithoutWords) {
  for (int byte = 0; byte < 256; ++byte) expect_not_found(std::string(1, static_cast<char>(byte)));
  for (const char *key : {"", "ID", "SI", "KZ", "id", "HOSTS", "PORTS", "_NAME", "WEIGH", "KZLB_"})
    expect_not_found(key);
}

void expect_too_long(ub4 length, const std::string &printed) {
  SCOPED_TRACE(printed);
  support::reset_platform();
  KZCITnsParseParams params = state_with("HOST");
  params.tns_key_len = length;
  EXPECT_EQ(KZCITnsGetKeyType(&params), 0);
  EXPECT_EQ(params.key_type, LB_ERROR_KEY);
  EXPECT_EQ(support::log_records(), Lines{"ERROR parse_params tns_key_len:" + printed + " > 20"});
}

TEST_F(KeyTable, LengthsAboveTheLimit) {
  for (const ub4 length : {21u, 22u, 100u, 255u, 256u})
    expect_too_long(length, std::to_string(length));
}

// The test is unsigned, the message is not.
TEST_F(KeyTable, LargestLengthIsAboveTheLimit) { expect_too_long(0xFFFFFFFFu, "-1"); }

TEST_F(KeyTable, AWordWithACharacterMoreThanTheLimit) {
  for (const Key &key : keys) {
    if (key.word.size() != 20) continue;
    SCOPED_TRACE(key.word);
    support::reset_platform();
    KZCITnsParseParams params = state_with(bytes(key.word) + "S");
    EXPECT_EQ(KZCITnsGetKeyType(&params), 0);
    EXPECT_EQ(params.key_type, LB_ERROR_KEY);
    EXPECT_EQ(support::log_records(), Lines{"ERROR parse_params tns_key_len:21 > 20"});
  }
}

TEST_F(KeyTable, LeadingPartsOfWordsAreNoWords) {
  for (const Key &key : keys)
    for (std::size_t size = 0; size < key.word.size(); ++size)
      if (!is_word(key.word.substr(0, size))) expect_not_found(key.word.substr(0, size));
}

TEST_F(KeyTable, TrailingPartsOfWordsAreNoWords) {
  for (const Key &key : keys)
    for (std::size_t from = 1; from < key.word.size(); ++from)
      if (!is_word(key.word.substr(from))) expect_not_found(key.word.substr(from));
}

TEST_F(KeyTable, OneCharacterMoreMakesNoWord) {
  for (const Key &key : keys) {
    if (key.word.size() == 20) continue;
    for (const char more : {'S', '_', ' ', '\0', '1'}) {
      expect_not_found(bytes(key.word) + more);
      expect_not_found(more + bytes(key.word));
    }
  }
}

// Only letters have a case: a byte that differs from the word's own in the bit
// of the case alone is another byte when the word has no letter there.
TEST_F(KeyTable, OneOtherByteAtAnyPlaceMakesNoWord) {
  for (const Key &key : keys) {
    for (std::size_t place = 0; place < key.word.size(); ++place) {
      for (int byte = 0; byte < 256; ++byte) {
        std::string word(key.word);
        word[place] = static_cast<char>(byte);
        if (byte < 128 && std::toupper(byte) == key.word[place])
          expect_found(word, key.number);
        else
          expect_not_found(word);
      }
    }
  }
}

TEST_F(KeyTable, ZeroByteDoesNotEndAKey) {
  expect_not_found("SID\0"sv);
  expect_not_found("HOST\0\0\0"sv);
  expect_not_found("SI\0"sv);
  expect_not_found("\0SID"sv);
  expect_not_found("ADDRESS\0LIST"sv);
}

// The length says how much of the array is the key.
TEST_F(KeyTable, CharactersAfterTheKeyDoNotMatter) {
  KZCITnsParseParams params = state_with("ADDRESS_LIST");
  params.tns_key_len = 7;
  EXPECT_EQ(KZCITnsGetKeyType(&params), 0);
  EXPECT_EQ(params.key_type, LB_ADDRESS);
}

TEST_F(KeyTable, LookupForgetsTheOneBefore) {
  KZCITnsParseParams params = state_with("HOST");
  EXPECT_EQ(KZCITnsGetKeyType(&params), 0);
  EXPECT_EQ(params.key_type, LB_HOST);
  params.tns_key_len = 3;
  EXPECT_EQ(KZCITnsGetKeyType(&params), 0);
  EXPECT_EQ(params.key_type, LB_ERROR_KEY);
  EXPECT_EQ(support::log_records(), (Lines{"DEBUG succ to find key, key is:20",
                                           "DEBUG fail to find key, key size:3, key str:HOS"}));
}

TEST_F(KeyTable, NothingButTheKeyTypeChanges) {
  for (const char *key : {"HOST", "NOTHING", "", "A_TEXT_OF_MORE_THAN_20_CHARACTERS"}) {
    SCOPED_TRACE(key);
    KZCITnsParseParams params = state_with(key);
    params.buffer_pos = 3;
    params.buffer_len = 9;
    params.is_comment = 1;
    params.tns_token_type = TNS_EQUAL_SIGN;
    KZCITnsParseParams before;
    std::memcpy(&before, &params, sizeof params);
    EXPECT_EQ(KZCITnsGetKeyType(&params), 0);
    params.key_type = untouched;
    EXPECT_EQ(std::memcmp(&before, &params, sizeof params), 0);
  }
}

TEST_F(KeyTable, NullRecordIsNotLogged) {
  EXPECT_EQ(KZCITnsGetKeyType(nullptr), -2);
  EXPECT_EQ(support::events(), Lines{});
}

TEST_F(KeyTable, KeysAsTheTokenizerReadsThem) {
  DescriptorState state("kz_mode \"Host\" \"\" ID KZLB\"_STRATEGY\"=");
  for (const int number : {27, 20, 0, 0, 17}) {
    EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
    EXPECT_EQ(KZCITnsGetKeyType(&state.params), 0);
    EXPECT_EQ(state.params.key_type, number);
  }
  EXPECT_EQ(
      support::log_records(),
      (Lines{"DEBUG read data mode=2", "DEBUG get key size:7, key:kz_mode",
             "DEBUG succ to find key, key is:27", "DEBUG get key size:4, key:Host",
             "DEBUG succ to find key, key is:20", "DEBUG get key size:0, key:",
             "DEBUG fail to find key, key size:0, key str:", "DEBUG get key size:2, key:ID",
             "DEBUG fail to find key, key size:2, key str:ID",
             "DEBUG get key size:13, key:KZLB_STRATEGY", "DEBUG succ to find key, key is:17"}));
}

TEST_F(KeyTable, KeyThatTheTokenizerHasCutIsTooLong) {
  DescriptorState state(std::string(300, 'k') + " ");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  support::reset_platform();
  EXPECT_EQ(KZCITnsGetKeyType(&state.params), 0);
  EXPECT_EQ(state.params.key_type, LB_ERROR_KEY);
  EXPECT_EQ(support::log_records(), Lines{"ERROR parse_params tns_key_len:256 > 20"});
}

}  // namespace
