// The tokenizer: refills, blanks and comments, keys, and the token that a
// caller expects.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "support/parsing.h"

namespace {

using support::bytes;
using support::DescriptorState;
using support::FileState;
using support::Lines;
using support::TemporaryFolder;
using support::operator+;
using namespace std::string_view_literals;

class TokenizerTest : public ::testing::Test {
 protected:
  void SetUp() override { support::reset_platform(); }
  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    EXPECT_EQ(support::memory_events(), Lines{}) << "the tokenizer allocates nothing";
  }
};

class TokenizerTypes : public TokenizerTest {};
class CheckBuffer : public TokenizerTest {};
class ParseBlank : public TokenizerTest {};
class ParseKey : public TokenizerTest {};
class Tokenizer : public TokenizerTest {};

// ----------------------------------------------------------------------
// What is logged
// ----------------------------------------------------------------------

const std::string reach_eof = "DEBUG reach eof";

std::string read_data(int mode = TNS_MODE_DESCRIPTION) {
  return "DEBUG read data mode=" + std::to_string(mode);
}

// The text stands in the message up to its first zero byte.
std::string got_key(const std::string &key) {
  return "DEBUG get key size:" + std::to_string(key.size()) + ", key:" + key.c_str();
}

std::string unexpected(int expected, int found) {
  return "WARN expect token type is " + std::to_string(expected) + ", but get " +
         std::to_string(found);
}

std::string blank_failed(int status) {
  return "WARN fail to call parse blank, status:" + std::to_string(status);
}

std::string key_failed(int status) {
  return "ERROR fail to call parse key, status:" + std::to_string(status);
}

const std::string key_too_long = "ERROR key size:256 bigger than 256";

// A printable name of a byte, for the trace of a failing row.
std::string byte_name(int byte) { return "byte " + std::to_string(byte); }

std::string one_byte(int byte) { return std::string(1, static_cast<char>(byte)); }

// A text without blanks, terminators, quotes and "#", in which no two slices
// of 1024 characters are alike.
std::string letters(std::size_t size) {
  std::string text;
  for (std::size_t i = 0; i < size; ++i) text += static_cast<char>('a' + (i + i / 26) % 25);
  return text;
}

std::string blanks(std::size_t n) { return std::string(n, ' '); }

std::string held(const KZCITnsParseParams &params) {
  return {params.tns_buffer, params.buffer_len};
}

// ----------------------------------------------------------------------
// Types
// ----------------------------------------------------------------------

TEST_F(TokenizerTypes, TokensHaveTheirNumbers) {
  EXPECT_EQ(TNS_EQUAL_SIGN, 0);
  EXPECT_EQ(TNS_LEFT_PARENTHESES, 1);
  EXPECT_EQ(TNS_RIGHT_PARENTHESES, 2);
  EXPECT_EQ(TNS_KEY, 3);
  EXPECT_EQ(TNS_ERROR_TYPE, 4);
  EXPECT_EQ(TNS_MAX_TOKEN_TYPE, 5);
}

TEST_F(TokenizerTypes, ModesAndStatesHaveTheirNumbers) {
  EXPECT_EQ(TNS_MODE_FILE, 1);
  EXPECT_EQ(TNS_MODE_DESCRIPTION, 2);
  EXPECT_EQ(TNS_PARSE_NORMAL, 0);
  EXPECT_EQ(TNS_PARSE_QUOTE, 1);
}

template <class Expected, class Field>
constexpr bool has_type(Field KZCITnsParseParams::*) {
  return std::is_same_v<Expected, Field>;
}

TEST_F(TokenizerTypes, FieldsHaveTheirTypes) {
  static_assert(has_type<char[1024]>(&KZCITnsParseParams::tns_buffer));
  static_assert(has_type<char[256]>(&KZCITnsParseParams::tns_key));
  static_assert(has_type<ub4>(&KZCITnsParseParams::buffer_pos));
  static_assert(has_type<ub4>(&KZCITnsParseParams::buffer_len));
  static_assert(has_type<ub4>(&KZCITnsParseParams::tns_key_len));
  static_assert(has_type<int>(&KZCITnsParseParams::is_eof));
  static_assert(has_type<int>(&KZCITnsParseParams::mode));
  static_assert(has_type<char *>(&KZCITnsParseParams::tns_name));
  static_assert(has_type<FILE *>(&KZCITnsParseParams::tns_file));
  static_assert(has_type<char *>(&KZCITnsParseParams::description));
  static_assert(has_type<int>(&KZCITnsParseParams::description_len));
  static_assert(has_type<int>(&KZCITnsParseParams::description_offset));
  static_assert(has_type<int>(&KZCITnsParseParams::is_comment));
  static_assert(has_type<KZCITnsTokenType>(&KZCITnsParseParams::tns_token_type));
  static_assert(has_type<KZCILBKeyType>(&KZCITnsParseParams::key_type));
}

TEST_F(TokenizerTypes, FieldsStandInOrder) {
  using Params = KZCITnsParseParams;
  const std::vector<std::size_t> offsets = {offsetof(Params, tns_buffer),
                                            offsetof(Params, tns_key),
                                            offsetof(Params, buffer_pos),
                                            offsetof(Params, buffer_len),
                                            offsetof(Params, tns_key_len),
                                            offsetof(Params, is_eof),
                                            offsetof(Params, mode),
                                            offsetof(Params, tns_name),
                                            offsetof(Params, tns_file),
                                            offsetof(Params, description),
                                            offsetof(Params, description_len),
                                            offsetof(Params, description_offset),
                                            offsetof(Params, is_comment),
                                            offsetof(Params, tns_token_type),
                                            offsetof(Params, key_type)};
  EXPECT_EQ(offsets.front(), 0u);
  for (std::size_t i = 1; i < offsets.size(); ++i) EXPECT_LT(offsets[i - 1], offsets[i]) << i;
}

// ----------------------------------------------------------------------
// Both modes
// ----------------------------------------------------------------------

template <class State>
class TokenizerInEachMode : public TokenizerTest {
 protected:
  static constexpr int mode =
      std::is_same_v<State, FileState> ? TNS_MODE_FILE : TNS_MODE_DESCRIPTION;
  static std::string read() { return read_data(mode); }

  // Refills until the input has ended; gives the slices.
  static Lines slices(KZCITnsParseParams &params) {
    Lines out;
    while (KZCITnsCheckBuffer(&params) == 0) {
      EXPECT_EQ(params.buffer_pos, 0u);
      out.push_back(held(params));
      params.buffer_pos = params.buffer_len;
    }
    return out;
  }
};

using States = ::testing::Types<DescriptorState, FileState>;
TYPED_TEST_SUITE(TokenizerInEachMode, States);

TYPED_TEST(TokenizerInEachMode, RefillTakesAShortInputWhole) {
  TypeParam state("hello");
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), 0);
  EXPECT_EQ(state.params.buffer_pos, 0u);
  EXPECT_EQ(held(state.params), "hello");
  EXPECT_EQ(state.params.is_eof, 0);
  EXPECT_EQ(support::log_records(), Lines{this->read()});
}

TYPED_TEST(TokenizerInEachMode, RefillReadsNothingWhileACharacterIsAtHand) {
  TypeParam state(letters(1500));
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), 0);
  state.params.buffer_pos = 1023;
  support::reset_platform();
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), 0);
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), 0);
  EXPECT_EQ(state.params.buffer_pos, 1023u);
  EXPECT_EQ(state.params.buffer_len, 1024u);
  EXPECT_EQ(support::log_records(), Lines{});
}

TYPED_TEST(TokenizerInEachMode, RefillAtTheEndSetsEofOnceAndIsThenSilent) {
  TypeParam state("x");
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), 0);
  state.params.buffer_pos = 1;
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), -1);
  EXPECT_EQ(state.params.is_eof, 1);
  EXPECT_EQ(state.params.buffer_pos, 0u);
  EXPECT_EQ(state.params.buffer_len, 0u);
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), -1);
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), -1);
  EXPECT_EQ(support::log_records(), (Lines{this->read(), this->read()}));
}

TYPED_TEST(TokenizerInEachMode, EmptyInputEndsAtTheFirstRefill) {
  TypeParam state("");
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), -1);
  EXPECT_EQ(state.params.is_eof, 1);
  EXPECT_EQ(support::log_records(), Lines{this->read()});
}

TYPED_TEST(TokenizerInEachMode, SlicesAreOf1024Characters) {
  const std::vector<std::vector<std::size_t>> rows = {
      {},           {1},          {1023},          {1024},           {1024, 1},
      {1024, 1023}, {1024, 1024}, {1024, 1024, 1}, {1024, 1024, 452}};
  for (const auto &sizes : rows) {
    support::reset_platform();
    std::size_t total = 0;
    for (const std::size_t size : sizes) total += size;
    SCOPED_TRACE(total);
    const std::string text = letters(total);
    Lines expected;
    for (std::size_t i = 0; i < sizes.size(); ++i)
      expected.push_back(text.substr(1024 * i, sizes[i]));
    TypeParam state(text);
    EXPECT_EQ(this->slices(state.params), expected);
    EXPECT_EQ(state.params.is_eof, 1);
    EXPECT_EQ(support::log_records(), Lines(sizes.size() + 1, this->read()));
  }
}

TYPED_TEST(TokenizerInEachMode, EveryByteArrivesUnchanged) {
  std::string text;
  for (int round = 0; round < 9; ++round)
    for (int byte = 0; byte < 256; ++byte) text += one_byte(byte);
  TypeParam state(text);
  std::string arrived;
  for (const std::string &slice : this->slices(state.params)) arrived += slice;
  EXPECT_EQ(arrived, text);
}

// An entry of a names file from its comment to its end, token by token.
TYPED_TEST(TokenizerInEachMode, AWholeEntry) {
  TypeParam state("# names (of)\nsales = (HOST=\"my host\")(\tPORT\r\n=1521 )\n");
  KZCITnsParseParams *params = &state.params;
  const std::vector<KZCITnsTokenType> tokens = {
      TNS_KEY, TNS_EQUAL_SIGN,        TNS_LEFT_PARENTHESES, TNS_KEY, TNS_EQUAL_SIGN,
      TNS_KEY, TNS_RIGHT_PARENTHESES, TNS_LEFT_PARENTHESES, TNS_KEY, TNS_EQUAL_SIGN,
      TNS_KEY, TNS_RIGHT_PARENTHESES};
  for (const KZCITnsTokenType token : tokens) {
    EXPECT_EQ(KZCITnsParse(params, token), 0);
    EXPECT_EQ(params->tns_token_type, token);
  }
  EXPECT_EQ(KZCITnsParse(params, TNS_LEFT_PARENTHESES), 100);
  EXPECT_EQ(KZCITnsParse(params, TNS_KEY), 100);
  EXPECT_EQ(params->tns_token_type, TNS_RIGHT_PARENTHESES);
  EXPECT_EQ(support::log_records(),
            (Lines{this->read(), got_key("sales"), got_key("HOST"), got_key("my host"),
                   got_key("PORT"), got_key("1521"), this->read(), reach_eof, blank_failed(100),
                   reach_eof, blank_failed(100)}));
}

TYPED_TEST(TokenizerInEachMode, KeyCutOffByTheEndIsLost) {
  TypeParam state("LONGNAME AB");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 100);
  EXPECT_EQ(state.params.tns_key_len, 8u);
  EXPECT_EQ(state.key(), "ABNGNAME");
  EXPECT_EQ(state.params.tns_token_type, TNS_KEY);
  EXPECT_EQ(support::log_records(),
            (Lines{this->read(), got_key("LONGNAME"), this->read(), reach_eof, key_failed(100)}));
}

TYPED_TEST(TokenizerInEachMode, CommentRunsAcrossSeveralRefills) {
  TypeParam state("#" + letters(5000) + "\n(");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_LEFT_PARENTHESES), 0);
  EXPECT_EQ(state.params.is_comment, 0);
  EXPECT_EQ(support::log_records(), Lines(5, this->read()));
}

TYPED_TEST(TokenizerInEachMode, OverlongKeyAtTheEndOfTheBuffer) {
  TypeParam state("OLD" + blanks(765) + letters(256) + " next ");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), -1);
  EXPECT_EQ(state.params.tns_key_len, 3u);
  EXPECT_EQ(state.key(), letters(3));
  EXPECT_EQ(state.params.tns_token_type, TNS_KEY);
  EXPECT_EQ(state.params.buffer_pos, 1024u);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), "next");
  EXPECT_EQ(support::log_records(), (Lines{this->read(), got_key("OLD"), key_too_long,
                                           key_failed(-1), this->read(), got_key("next")}));
}

// ----------------------------------------------------------------------
// Null records
// ----------------------------------------------------------------------

TEST_F(Tokenizer, NullRecordsAreNotLogged) {
  EXPECT_EQ(KZCITnsCheckBuffer(nullptr), -2);
  EXPECT_EQ(KZCITnsParseBlank(nullptr), -2);
  EXPECT_EQ(KZCITnsParseKey(nullptr), -2);
  for (const auto token : {TNS_EQUAL_SIGN, TNS_LEFT_PARENTHESES, TNS_RIGHT_PARENTHESES, TNS_KEY})
    EXPECT_EQ(KZCITnsParse(nullptr, token), -2);
  EXPECT_EQ(support::events(), Lines{});
}

// ----------------------------------------------------------------------
// Refill
// ----------------------------------------------------------------------

TEST_F(CheckBuffer, CharacterAtHandAnswersEvenAfterTheEnd) {
  DescriptorState state("ab");
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), 0);
  state.params.is_eof = 1;
  support::reset_platform();
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), 0);
  state.params.buffer_pos = 2;
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), -1);
  EXPECT_EQ(support::log_records(), Lines{});
}

TEST_F(CheckBuffer, NothingIsReadAfterTheEnd) {
  DescriptorState state("ab");
  state.params.is_eof = 1;
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), -1);
  EXPECT_EQ(state.params.description_offset, 0);
  EXPECT_EQ(state.params.buffer_len, 0u);
  EXPECT_EQ(support::log_records(), Lines{});
}

// As signed numbers the position would be below the length.
TEST_F(CheckBuffer, PositionAndLengthAreComparedUnsigned) {
  DescriptorState state("ab");
  state.params.buffer_pos = 0xFFFFFFFFu;
  state.params.buffer_len = 5;
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), 0);
  EXPECT_EQ(state.params.buffer_pos, 0u);
  EXPECT_EQ(held(state.params), "ab");
  EXPECT_EQ(support::log_records(), Lines{read_data()});
}

TEST_F(CheckBuffer, DescriptorKeepsAnOffset) {
  DescriptorState state(letters(2500));
  const std::vector<int> offsets = {1024, 2048, 2500};
  for (const int offset : offsets) {
    EXPECT_EQ(KZCITnsCheckBuffer(&state.params), 0);
    EXPECT_EQ(state.params.description_offset, offset);
    EXPECT_EQ(state.params.is_eof, 0);
    state.params.buffer_pos = state.params.buffer_len;
  }
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), -1);
  EXPECT_EQ(state.params.description_offset, 2500);
  EXPECT_EQ(state.params.is_eof, 1);
}

TEST_F(CheckBuffer, DescriptorGoesOnFromItsOffset) {
  DescriptorState state("abcdef");
  state.params.description_offset = 4;
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), 0);
  EXPECT_EQ(held(state.params), "ef");
}

TEST_F(CheckBuffer, DescriptorOffsetAfterItsEndIsTheEnd) {
  DescriptorState state("abcdef");
  state.params.description_offset = 7;
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), -1);
  EXPECT_EQ(state.params.is_eof, 1);
}

TEST_F(CheckBuffer, AnyOtherModeReadsTheFile) {
  for (const int mode : {0, 3, -1, 1000}) {
    SCOPED_TRACE(mode);
    support::reset_platform();
    FileState state("text");
    state.params.mode = mode;
    EXPECT_EQ(KZCITnsCheckBuffer(&state.params), 0);
    EXPECT_EQ(held(state.params), "text");
    EXPECT_EQ(support::log_records(), Lines{read_data(mode)});
  }
}

TEST_F(CheckBuffer, FileIsReadFromWhereItStands) {
  FileState state("abcdef");
  std::fseek(state.params.tns_file, 2, SEEK_SET);
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), 0);
  EXPECT_EQ(held(state.params), "cdef");
}

void expect_end_of(std::FILE *file) {
  ASSERT_NE(file, nullptr);
  KZCITnsParseParams params;
  std::memset(&params, 0, sizeof params);
  params.mode = TNS_MODE_FILE;
  params.tns_file = file;
  EXPECT_EQ(KZCITnsParse(&params, TNS_KEY), 100);
  EXPECT_EQ(params.is_eof, 1);
  EXPECT_EQ(support::log_records(), (Lines{read_data(1), reach_eof, blank_failed(100)}));
  std::fclose(file);
}

TEST_F(CheckBuffer, ReadErrorIsTheEndOfTheInput) {
  const TemporaryFolder folder;
  expect_end_of(std::fopen(folder.write("names", "sales").c_str(), "a"));
}

#if !defined(_WIN32)  // A folder cannot be opened there.
TEST_F(CheckBuffer, FolderInPlaceOfAFileIsTheEndOfTheInput) {
  const TemporaryFolder folder;
  expect_end_of(std::fopen(folder.path().c_str(), "r"));
}
#endif

// ----------------------------------------------------------------------
// Blanks and comments
// ----------------------------------------------------------------------

struct BlankRow {
  std::string_view text;
  ub4 position;
};

TEST_F(ParseBlank, StopsAtTheNextCharacterOfAToken) {
  const std::vector<BlankRow> rows = {{"(", 0},
                                      {"  (", 2},
                                      {" \t\n\r=", 4},
                                      {"\r\n\r\nx", 4},
                                      {"#\nx", 2},
                                      {"#a(b\n(", 5},
                                      {"##\n#\n x", 6},
                                      {" # one\n # two\n )", 15},
                                      {"#a\r b\nx", 6},
                                      {"#\"\nx", 3},
                                      {"\n\n#(=)\"\t\n\tk", 10},
                                      {"\"#\"", 0},
                                      {"x#y", 0},
                                      {"#\tcomment #two\n=", 15}};
  for (const BlankRow &row : rows) {
    SCOPED_TRACE(row.text);
    support::reset_platform();
    DescriptorState state(row.text);
    EXPECT_EQ(KZCITnsParseBlank(&state.params), 0);
    EXPECT_EQ(state.params.buffer_pos, row.position);
    EXPECT_EQ(state.params.is_comment, 0);
    EXPECT_EQ(support::log_records(), Lines{read_data()});
  }
}

TEST_F(ParseBlank, StandsStillOnACharacterOfAToken) {
  DescriptorState state("  x");
  EXPECT_EQ(KZCITnsParseBlank(&state.params), 0);
  EXPECT_EQ(KZCITnsParseBlank(&state.params), 0);
  EXPECT_EQ(state.params.buffer_pos, 2u);
}

TEST_F(ParseBlank, OnlyFourCharactersAreBlank) {
  for (int byte = 0; byte < 256; ++byte) {
    if (byte == '#') continue;
    SCOPED_TRACE(byte_name(byte));
    const bool is_blank = byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
    DescriptorState state(one_byte(byte) + "x");
    EXPECT_EQ(KZCITnsParseBlank(&state.params), 0);
    EXPECT_EQ(state.params.buffer_pos, is_blank ? 1u : 0u);
  }
}

TEST_F(ParseBlank, OnlyALineFeedOrAZeroByteEndsAComment) {
  for (int byte = 0; byte < 256; ++byte) {
    SCOPED_TRACE(byte_name(byte));
    DescriptorState state("#" + one_byte(byte) + "x\n=");
    EXPECT_EQ(KZCITnsParseBlank(&state.params), 0);
    const ub4 position = byte == '\n' ? 2 : byte == 0 ? 1 : 4;
    EXPECT_EQ(state.params.buffer_pos, position);
    EXPECT_EQ(state.params.is_comment, 0);
  }
}

TEST_F(ParseBlank, ZeroByteAfterACommentIsLeft) {
  DescriptorState state("  #(c\0AB)"sv);
  EXPECT_EQ(KZCITnsParseBlank(&state.params), 0);
  EXPECT_EQ(state.params.buffer_pos, 5u);
  EXPECT_EQ(KZCITnsParseKey(&state.params), 0);
  EXPECT_EQ(state.key(), bytes("\0AB"sv));
  EXPECT_EQ(support::log_records(), (Lines{read_data(), "DEBUG get key size:3, key:"}));
}

TEST_F(ParseBlank, GoesOnInsideAComment) {
  DescriptorState state("still comment\nx");
  state.params.is_comment = 1;
  EXPECT_EQ(KZCITnsParseBlank(&state.params), 0);
  EXPECT_EQ(state.params.buffer_pos, 14u);
  EXPECT_EQ(state.params.is_comment, 0);
}

TEST_F(ParseBlank, EndOfInput) {
  for (const std::string_view text : {""sv, "   "sv, "\t\r\n"sv, "#done\n"sv}) {
    SCOPED_TRACE(text);
    support::reset_platform();
    DescriptorState state(text);
    EXPECT_EQ(KZCITnsParseBlank(&state.params), 100);
    EXPECT_EQ(state.params.is_comment, 0);
    const Lines reads(text.empty() ? 1 : 2, read_data());
    EXPECT_EQ(support::log_records(), reads + Lines{reach_eof});
  }
}

TEST_F(ParseBlank, EndOfInputInsideAComment) {
  DescriptorState state("  #no end");
  EXPECT_EQ(KZCITnsParseBlank(&state.params), 100);
  EXPECT_EQ(state.params.is_comment, 1);
  EXPECT_EQ(KZCITnsParseBlank(&state.params), 100);
  EXPECT_EQ(support::log_records(), (Lines{read_data(), read_data(), reach_eof, reach_eof}));
}

TEST_F(ParseBlank, AfterTheEndNothingIsRead) {
  DescriptorState state("  x");
  state.params.is_eof = 1;
  EXPECT_EQ(KZCITnsParseBlank(&state.params), 100);
  EXPECT_EQ(state.params.description_offset, 0);
  EXPECT_EQ(support::log_records(), Lines{reach_eof});
}

TEST_F(ParseBlank, ManyBlanksAndComments) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += " \t#line (with) = signs\n\r\n";
  DescriptorState state(text + "x");
  EXPECT_EQ(KZCITnsParseBlank(&state.params), 0);
  EXPECT_EQ(state.params.tns_buffer[state.params.buffer_pos], 'x');
  EXPECT_EQ(state.params.description_offset, state.params.description_len);
}

// ----------------------------------------------------------------------
// Keys
// ----------------------------------------------------------------------

struct KeyRow {
  std::string_view text;
  std::string_view key;
  ub4 position;  // Where the reader stands afterwards.
};

void expect_key(const KeyRow &row) {
  SCOPED_TRACE(row.text);
  support::reset_platform();
  DescriptorState state(row.text);
  state.params.tns_key_len = 77;
  EXPECT_EQ(KZCITnsParseKey(&state.params), 0);
  EXPECT_EQ(state.key(), row.key);
  EXPECT_EQ(state.params.buffer_pos, row.position);
  EXPECT_EQ(support::log_records(), (Lines{read_data(), got_key(bytes(row.key))}));
}

TEST_F(ParseKey, EndsInFrontOfATerminator) {
  const std::vector<KeyRow> rows = {
      {"AB=(", "AB", 2},  {"AB)", "AB", 2},   {"AB(C", "AB", 2},
      {"AB CD", "AB", 2}, {"AB\tC", "AB", 2}, {"AB\nC", "AB", 2},
      {"AB\rC", "AB", 2}, {"A ", "A", 1},     {"10.0.0.1)", "10.0.0.1", 8}};
  for (const KeyRow &row : rows) expect_key(row);
}

TEST_F(ParseKey, EveryOtherByteBelongsToTheKey) {
  for (int byte = 0; byte < 256; ++byte) {
    if (byte == '"' ||
        std::string_view("\t\n\r ()=").find(static_cast<char>(byte)) != std::string_view::npos)
      continue;
    SCOPED_TRACE(byte_name(byte));
    expect_key({"a" + one_byte(byte) + "b)", "a" + one_byte(byte) + "b", 3});
    expect_key({one_byte(byte) + "b)", one_byte(byte) + "b", 2});
  }
}

TEST_F(ParseKey, BetweenQuotesEveryByteBelongsToTheKey) {
  for (int byte = 0; byte < 256; ++byte) {
    if (byte == '"') continue;
    SCOPED_TRACE(byte_name(byte));
    expect_key({"\"a" + one_byte(byte) + "\"b)", "a" + one_byte(byte) + "b", 5});
  }
}

TEST_F(ParseKey, QuotesOpenAndCloseAnywhere) {
  const std::vector<KeyRow> rows = {
      {"A\"B C\"D)", "AB CD", 7}, {"ab\"c d\"e ", "abc de", 8},
      {"\"A\")", "A", 3},         {"\"(=)# \t\n\r\")", "(=)# \t\n\r", 10},
      {"\"A\"\"B\")", "AB", 6},   {"\"A\"B\"C\")", "ABC", 7},
      {"A\"\"B)", "AB", 4},       {"A\"B\"=x", "AB", 4},
      {"A\"#\"#=x", "A##", 5}};
  for (const KeyRow &row : rows) expect_key(row);
}

TEST_F(ParseKey, EmptyQuotesAreAKeyOfLengthZero) {
  const std::vector<KeyRow> rows = {{"\"\")", "", 2}, {"\"\"\"\" ", "", 4}, {"\"\"=x", "", 2}};
  for (const KeyRow &row : rows) expect_key(row);
}

// The callers never stand on a terminator; the reader itself takes it as the
// end of an empty key.
TEST_F(ParseKey, TerminatorInFrontIsAKeyOfLengthZero) {
  for (const std::string_view text : {"=x"sv, "(x"sv, ")x"sv, " x"sv, "\tx"sv, "\nx"sv, "\rx"sv})
    expect_key({text, "", 0});
}

TEST_F(ParseKey, HashInsideAKeyIsNoComment) {
  const std::vector<KeyRow> rows = {{"a#b c", "a#b", 3}, {"a# ", "a#", 2}, {"\"#a\" ", "#a", 4}};
  for (const KeyRow &row : rows) expect_key(row);
}

TEST_F(ParseKey, KeyOverwritesTheOneBefore) {
  DescriptorState state("first 2nd ");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), "2nd");
}

TEST_F(ParseKey, LengthsAtTheLimitInTheMiddleOfTheBuffer) {
  for (const std::size_t size : {254u, 255u, 256u}) {
    const std::string key = letters(size);
    expect_key({key + ")", key, static_cast<ub4>(size)});
    expect_key({"\"" + key.substr(1) + "\"k)", key.substr(1) + "k", static_cast<ub4>(size + 2)});
  }
}

TEST_F(ParseKey, LongerThanTheLimitIsCut) {
  for (const std::size_t size : {257u, 300u, 512u, 700u}) {
    const std::string key = letters(size);
    expect_key({key + ")", key.substr(0, 256), 256});
  }
}

TEST_F(ParseKey, WhatIsCutOffIsTheNextToken) {
  DescriptorState state("  " + letters(300) + ")");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), letters(256));
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), letters(300).substr(256));
  EXPECT_EQ(state.params.tns_key_len, 44u);
  EXPECT_EQ(support::log_records(),
            (Lines{read_data(), got_key(letters(256)), got_key(letters(300).substr(256))}));
}

// The limit is reached before the closing quote, which is left: it opens
// the next key.
TEST_F(ParseKey, QuotedKeyAtTheLimitLeavesItsClosingQuote) {
  DescriptorState state("\"" + letters(256) + "\" )\" ");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), letters(256));
  EXPECT_EQ(state.params.buffer_pos, 257u);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_RIGHT_PARENTHESES), -1);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), " )");
  EXPECT_EQ(support::log_records(),
            (Lines{read_data(), got_key(letters(256)), unexpected(TNS_RIGHT_PARENTHESES, TNS_KEY),
                   got_key(" )")}));
}

TEST_F(ParseKey, QuoteAfterTheLimitIsLeft) {
  expect_key({letters(256) + "\"x\")", letters(256), 256});
}

// The quote state belongs to one key: after the cut the reader is outside.
TEST_F(ParseKey, UnbalancedQuoteRunsToTheLimitAndDoesNotLeak) {
  DescriptorState state("\"" + letters(255) + "()tail ");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), letters(255) + "(");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_RIGHT_PARENTHESES), 0);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), "tail");
}

TEST_F(ParseKey, UnbalancedQuoteRunsToTheEndOfTheInput) {
  DescriptorState state("old \"a b) = (c\n");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 100);
  EXPECT_EQ(state.params.tns_key_len, 3u);
  EXPECT_EQ(state.key(), "a b");
  EXPECT_EQ(support::log_records(),
            (Lines{read_data(), got_key("old"), read_data(), reach_eof, key_failed(100)}));
}

// Quotes are not counted: however many of them, the key is empty.
TEST_F(ParseKey, EmptyQuotesWithoutNumberAcrossARefill) {
  DescriptorState state(std::string(1500, '"') + "x)");
  EXPECT_EQ(KZCITnsParseKey(&state.params), 0);
  EXPECT_EQ(state.key(), "x");
  EXPECT_EQ(support::log_records(), (Lines{read_data(), read_data(), got_key("x")}));
}

TEST_F(ParseKey, EndOfInput) {
  for (const std::string_view text : {""sv, "A"sv, "AB"sv, "\""sv, "\"A"sv, "\"A\""sv, "\"\""sv}) {
    SCOPED_TRACE(text);
    support::reset_platform();
    DescriptorState state(text);
    state.params.tns_key_len = 77;
    EXPECT_EQ(KZCITnsParseKey(&state.params), 100);
    EXPECT_EQ(state.params.tns_key_len, 77u);
    EXPECT_EQ(state.params.is_eof, 1);
    const Lines reads(text.empty() ? 1 : 2, read_data());
    EXPECT_EQ(support::log_records(), reads + Lines{reach_eof});
  }
}

TEST_F(ParseKey, AfterTheEndNothingIsRead) {
  DescriptorState state("key ");
  state.params.is_eof = 1;
  EXPECT_EQ(KZCITnsParseKey(&state.params), 100);
  EXPECT_EQ(state.params.description_offset, 0);
  EXPECT_EQ(support::log_records(), Lines{reach_eof});
}

// The 256th character is the last one at hand, whether or not more input
// follows.
TEST_F(ParseKey, LimitAtTheEndOfTheBufferIsAFailure) {
  for (const std::string_view after : {""sv, ")"sv, "more"sv}) {
    SCOPED_TRACE(after);
    support::reset_platform();
    DescriptorState state(blanks(768) + letters(256) + bytes(after));
    EXPECT_EQ(KZCITnsParseBlank(&state.params), 0);
    state.params.tns_key_len = 5;
    EXPECT_EQ(KZCITnsParseKey(&state.params), -1);
    EXPECT_EQ(state.params.tns_key_len, 5u);
    EXPECT_EQ(state.key(), letters(5));
    EXPECT_EQ(state.params.is_eof, 0);
    EXPECT_EQ(support::log_records(), (Lines{read_data(), key_too_long}));
  }
}

TEST_F(ParseKey, LimitAtTheEndOfAShortInputIsAFailure) {
  DescriptorState state(letters(256));
  EXPECT_EQ(KZCITnsParseKey(&state.params), -1);
  EXPECT_EQ(support::log_records(), (Lines{read_data(), key_too_long}));
}

TEST_F(ParseKey, BelowTheLimitAtTheEndOfAShortInputIsTheEnd) {
  DescriptorState state(letters(255));
  EXPECT_EQ(KZCITnsParseKey(&state.params), 100);
  EXPECT_EQ(support::log_records(), (Lines{read_data(), read_data(), reach_eof}));
}

// What stands in the comment looks like a key, and is at hand.
TEST_F(Tokenizer, GoesOnInsideAComment) {
  constexpr std::string_view at_hand = "still comment, to the end\nname = (the value)";
  DescriptorState state("");
  at_hand.copy(state.params.tns_buffer, at_hand.size());
  state.params.buffer_len = static_cast<ub4>(at_hand.size());
  state.params.is_comment = 1;
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), "name");
  EXPECT_EQ(state.params.buffer_pos, 30u);
  EXPECT_EQ(state.params.is_comment, 0);
  EXPECT_EQ(support::log_records(), Lines{"DEBUG get key size:4, key:name"});
}

// In a comment a line feed is its end before it is a blank.
TEST_F(Tokenizer, LineFeedAtHandEndsTheComment) {
  constexpr std::string_view at_hand = "\n= no comment";
  DescriptorState state("");
  at_hand.copy(state.params.tns_buffer, at_hand.size());
  state.params.buffer_len = static_cast<ub4>(at_hand.size());
  state.params.is_comment = 1;
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_EQUAL_SIGN), 0);
  EXPECT_EQ(state.params.buffer_pos, 2u);
  EXPECT_EQ(state.params.is_comment, 0);
}

// ----------------------------------------------------------------------
// The expected token
// ----------------------------------------------------------------------

TEST_F(Tokenizer, ExpectedTokenAgainstFoundToken) {
  const std::vector<std::string> texts = {"= ", "( ", ") ", "k "};
  for (int found = 0; found < 4; ++found) {
    for (int expected = 0; expected < 6; ++expected) {
      SCOPED_TRACE(texts[static_cast<std::size_t>(found)] + std::to_string(expected));
      support::reset_platform();
      DescriptorState state(" " + texts[static_cast<std::size_t>(found)]);
      state.params.tns_token_type = TNS_ERROR_TYPE;
      const sword status = KZCITnsParse(&state.params, static_cast<KZCITnsTokenType>(expected));
      const bool fits = expected == found;
      EXPECT_EQ(status, fits ? 0 : -1);
      EXPECT_EQ(state.params.buffer_pos, fits ? 2u : 1u);
      EXPECT_EQ(state.params.tns_token_type, fits ? expected : TNS_ERROR_TYPE);
      Lines log = {read_data()};
      if (!fits) log.push_back(unexpected(expected, found));
      if (fits && found == TNS_KEY) log.push_back(got_key("k"));
      EXPECT_EQ(support::log_records(), log);
    }
  }
}

// No token is of the type that bounds them, so each is named in the message.
TEST_F(Tokenizer, ClassOfEveryByte) {
  for (int byte = 0; byte < 256; ++byte) {
    if (std::string_view(" \t\n\r#").find(static_cast<char>(byte)) != std::string_view::npos)
      continue;
    SCOPED_TRACE(byte_name(byte));
    support::reset_platform();
    DescriptorState state(one_byte(byte) + "x");
    const int found = byte == '('   ? TNS_LEFT_PARENTHESES
                      : byte == ')' ? TNS_RIGHT_PARENTHESES
                      : byte == '=' ? TNS_EQUAL_SIGN
                                    : TNS_KEY;
    EXPECT_EQ(KZCITnsParse(&state.params, TNS_MAX_TOKEN_TYPE), -1);
    EXPECT_EQ(state.params.buffer_pos, 0u);
    EXPECT_EQ(support::log_records(), (Lines{read_data(), unexpected(TNS_MAX_TOKEN_TYPE, found)}));
  }
}

TEST_F(Tokenizer, EveryByteThatIsNoSignBeginsAKey) {
  for (int byte = 0; byte < 256; ++byte) {
    if (std::string_view(" \t\n\r#()=\"").find(static_cast<char>(byte)) != std::string_view::npos)
      continue;
    SCOPED_TRACE(byte_name(byte));
    DescriptorState state(one_byte(byte) + ")");
    EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
    EXPECT_EQ(state.key(), one_byte(byte));
  }
}

TEST_F(Tokenizer, UnexpectedTokenIsLeftForTheNextCall) {
  DescriptorState state("(");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_EQUAL_SIGN), -1);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_LEFT_PARENTHESES), 0);
  EXPECT_EQ(state.params.tns_token_type, TNS_LEFT_PARENTHESES);
  EXPECT_EQ(support::log_records(), (Lines{read_data(), unexpected(0, 1)}));
}

// Blanks before an unexpected token are gone; the token is not.
TEST_F(Tokenizer, UnexpectedTokenKeepsTheKeyAndTheTypeBefore) {
  DescriptorState state("name  #c\n )");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_EQUAL_SIGN), -1);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), -1);
  EXPECT_EQ(state.params.tns_token_type, TNS_KEY);
  EXPECT_EQ(state.params.buffer_pos, 10u);
  EXPECT_EQ(state.key(), "name");
  EXPECT_EQ(support::log_records(),
            (Lines{read_data(), got_key("name"), unexpected(0, 2), unexpected(3, 2)}));
}

TEST_F(Tokenizer, ParenthesisInACommentIsNoToken) {
  DescriptorState state("  # a ( in a comment\n(x");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_LEFT_PARENTHESES), 0);
  EXPECT_EQ(state.params.buffer_pos, 22u);
  EXPECT_EQ(support::log_records(), Lines{read_data()});
}

TEST_F(Tokenizer, CommentBeginsBetweenAnyTwoTokens) {
  DescriptorState state("#1\n(#2\nA #3\n=#4\nB #5\n)#6\n");
  for (const auto token :
       {TNS_LEFT_PARENTHESES, TNS_KEY, TNS_EQUAL_SIGN, TNS_KEY, TNS_RIGHT_PARENTHESES})
    EXPECT_EQ(KZCITnsParse(&state.params, token), 0);
  EXPECT_EQ(state.key(), "B");
  EXPECT_EQ(support::log_records(), (Lines{read_data(), got_key("A"), got_key("B")}));
}

TEST_F(Tokenizer, HashRightAfterAKeyBelongsToIt) {
  DescriptorState state("A#1 =B#2)");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), "A#1");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_EQUAL_SIGN), 0);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), "B#2");
}

TEST_F(Tokenizer, ZeroByteEndsACommentAndBeginsAKey) {
  DescriptorState state("#c(\0K)"sv);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), bytes("\0K"sv));
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_RIGHT_PARENTHESES), 0);
}

TEST_F(Tokenizer, QuotedSignsAreAKey) {
  DescriptorState state("\"(\"");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_LEFT_PARENTHESES), -1);
  EXPECT_EQ(support::warnings_and_errors(), Lines{unexpected(1, 3)});
}

TEST_F(Tokenizer, SignsNeedNoBlanks) {
  DescriptorState state("()==))((");
  for (const auto token :
       {TNS_LEFT_PARENTHESES, TNS_RIGHT_PARENTHESES, TNS_EQUAL_SIGN, TNS_EQUAL_SIGN,
        TNS_RIGHT_PARENTHESES, TNS_RIGHT_PARENTHESES, TNS_LEFT_PARENTHESES, TNS_LEFT_PARENTHESES}) {
    EXPECT_EQ(KZCITnsParse(&state.params, token), 0);
    EXPECT_EQ(state.params.tns_token_type, token);
  }
  EXPECT_EQ(support::log_records(), Lines{read_data()});
}

TEST_F(Tokenizer, EndOfInputForEveryExpectation) {
  for (int expected = 0; expected < 6; ++expected) {
    SCOPED_TRACE(expected);
    support::reset_platform();
    DescriptorState state(" ");
    state.params.tns_token_type = TNS_RIGHT_PARENTHESES;
    EXPECT_EQ(KZCITnsParse(&state.params, static_cast<KZCITnsTokenType>(expected)), 100);
    EXPECT_EQ(state.params.tns_token_type, TNS_RIGHT_PARENTHESES);
    EXPECT_EQ(support::log_records(),
              (Lines{read_data(), read_data(), reach_eof, blank_failed(100)}));
  }
}

TEST_F(Tokenizer, WhatIsAtHandIsReadEvenWhenTheEndIsKnown) {
  DescriptorState state("( )");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_LEFT_PARENTHESES), 0);
  state.params.is_eof = 1;
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_RIGHT_PARENTHESES), 0);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_RIGHT_PARENTHESES), 100);
  EXPECT_EQ(support::log_records(), (Lines{read_data(), reach_eof, blank_failed(100)}));
}

TEST_F(Tokenizer, LastSignOfTheInputIsAToken) {
  DescriptorState state(" )");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_RIGHT_PARENTHESES), 0);
  EXPECT_EQ(state.params.is_eof, 0);
  EXPECT_EQ(support::log_records(), Lines{read_data()});
}

TEST_F(Tokenizer, KeyTypeIsNotTheTokenizersAffair) {
  DescriptorState state("HOST = x ");
  state.params.key_type = LB_PORT;
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.params.key_type, LB_PORT);
}

TEST_F(Tokenizer, NameOfTheFileIsNotRead) {
  FileState state("A=B ");
  state.params.tns_name = reinterpret_cast<char *>(1);
  for (const auto token : {TNS_KEY, TNS_EQUAL_SIGN, TNS_KEY})
    EXPECT_EQ(KZCITnsParse(&state.params, token), 0);
}

TEST_F(Tokenizer, TwoStatesAreIndependent) {
  DescriptorState one("#c1\nA ");
  FileState two("B #c2");
  EXPECT_EQ(KZCITnsParse(&one.params, TNS_KEY), 0);
  EXPECT_EQ(KZCITnsParse(&two.params, TNS_KEY), 0);
  EXPECT_EQ(one.key(), "A");
  EXPECT_EQ(two.key(), "B");
  EXPECT_EQ(KZCITnsParse(&two.params, TNS_KEY), 100);
  EXPECT_EQ(two.params.is_comment, 1);
  EXPECT_EQ(one.params.is_comment, 0);
  EXPECT_EQ(one.params.is_eof, 0);
}

}  // namespace
