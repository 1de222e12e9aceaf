// The end of the 1024-character buffer: wherever it falls in the input, the
// tokens and the tree are the same, save for keys that reach 256 characters
// there.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <random>
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
using support::operator+;
using namespace std::string_view_literals;

constexpr std::size_t buffer_size = 1024;
constexpr std::size_t key_limit = 256;

class RefillTest : public ::testing::Test {
 protected:
  void SetUp() override { support::reset_platform(); }
  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    EXPECT_EQ(support::live_blocks().size(), 0u);
  }
};

class RefillInADescriptor : public RefillTest {};

template <class State>
class RefillInEachMode : public RefillTest {
 protected:
  static constexpr int mode =
      std::is_same_v<State, FileState> ? TNS_MODE_FILE : TNS_MODE_DESCRIPTION;

  static Lines reads(std::size_t n) {
    return Lines(n, "DEBUG read data mode=" + std::to_string(mode));
  }
};

using States = ::testing::Types<DescriptorState, FileState>;
TYPED_TEST_SUITE(RefillInEachMode, States);

std::string blanks(std::size_t n) { return std::string(n, ' '); }

std::string letters(std::size_t size) {
  std::string text;
  for (std::size_t i = 0; i < size; ++i) text += static_cast<char>('a' + (i + i / 26) % 25);
  return text;
}

// How many refills it takes until the character with this index is at hand.
std::size_t refills_to_see(std::size_t index) { return index / buffer_size + 1; }

Lines got_key(const std::string &key) {
  return {"DEBUG get key size:" + std::to_string(key.size()) + ", key:" + key.c_str()};
}

Lines unexpected(int expected, int found) {
  return {"WARN expect token type is " + std::to_string(expected) + ", but get " +
          std::to_string(found)};
}

const Lines end_in_key = {"DEBUG reach eof", "ERROR fail to call parse key, status:100"};
const Lines end_in_blanks = {"DEBUG reach eof", "WARN fail to call parse blank, status:100"};
const Lines too_long = {"ERROR key size:256 bigger than 256",
                        "ERROR fail to call parse key, status:-1"};

// ----------------------------------------------------------------------
// One token around the end of the buffer
// ----------------------------------------------------------------------

struct TokenRow {
  std::string_view text;
  KZCITnsTokenType type;
  std::string_view key;
};

const std::vector<TokenRow> tokens = {
    {"(", TNS_LEFT_PARENTHESES, ""},
    {")", TNS_RIGHT_PARENTHESES, ""},
    {"=", TNS_EQUAL_SIGN, ""},
    {"K", TNS_KEY, "K"},
    {"HOST", TNS_KEY, "HOST"},
    {"a#b", TNS_KEY, "a#b"},
    {"a\0b"sv, TNS_KEY, "a\0b"sv},
    {"\"\"", TNS_KEY, ""},
    {"\"A B\"", TNS_KEY, "A B"},
    {"A\"(=)\"B", TNS_KEY, "A(=)B"},
    {"\"# \n\t\r)\"", TNS_KEY, "# \n\t\r)"},
    {"a\"b\"\"c\"d", TNS_KEY, "abcd"},
};

// All places from two characters before the end of the buffer to two after.
std::vector<std::size_t> places_around(std::size_t boundary, std::size_t size) {
  std::vector<std::size_t> places;
  for (std::size_t place = boundary - size - 2; place <= boundary + 2; ++place)
    places.push_back(place);
  return places;
}

Lines key_line(const TokenRow &row) {
  return row.type == TNS_KEY ? got_key(bytes(row.key)) : Lines{};
}

TYPED_TEST(RefillInEachMode, EveryTokenBeforeOnAndAfterTheEnd) {
  for (const TokenRow &row : tokens) {
    for (const std::size_t boundary : {1024u, 2048u}) {
      for (const std::size_t place : places_around(boundary, row.text.size())) {
        SCOPED_TRACE(bytes(row.text) + " at " + std::to_string(place));
        support::reset_platform();
        TypeParam state(blanks(place) + bytes(row.text) + ")");
        EXPECT_EQ(KZCITnsParse(&state.params, row.type), 0);
        EXPECT_EQ(state.params.tns_token_type, row.type);
        EXPECT_EQ(state.key(), row.key);
        EXPECT_EQ(KZCITnsParse(&state.params, TNS_RIGHT_PARENTHESES), 0);
        EXPECT_EQ(support::log_records(),
                  this->reads(refills_to_see(place + row.text.size())) + key_line(row));
      }
    }
  }
}

// A token that is not expected stays, even when it had to be fetched first.
TYPED_TEST(RefillInEachMode, UnexpectedTokenBeforeOnAndAfterTheEnd) {
  for (const TokenRow &row : tokens) {
    for (const std::size_t place : places_around(buffer_size, row.text.size())) {
      SCOPED_TRACE(bytes(row.text) + " at " + std::to_string(place));
      support::reset_platform();
      TypeParam state(blanks(place) + bytes(row.text) + ")");
      const std::size_t first = refills_to_see(place);
      const std::size_t all = refills_to_see(place + row.text.size());
      EXPECT_EQ(KZCITnsParse(&state.params, TNS_ERROR_TYPE), -1);
      EXPECT_EQ(state.params.buffer_pos, place % buffer_size);
      EXPECT_EQ(KZCITnsParse(&state.params, row.type), 0);
      EXPECT_EQ(state.key(), row.key);
      EXPECT_EQ(KZCITnsParse(&state.params, TNS_RIGHT_PARENTHESES), 0);
      EXPECT_EQ(support::log_records(), this->reads(first) + unexpected(TNS_ERROR_TYPE, row.type) +
                                            this->reads(all - first) + key_line(row));
    }
  }
}

// The input ends right after the token: a sign is complete, a key is lost.
TYPED_TEST(RefillInEachMode, InputEndsAfterEveryToken) {
  for (const TokenRow &row : tokens) {
    for (const std::size_t place : places_around(buffer_size, row.text.size())) {
      SCOPED_TRACE(bytes(row.text) + " at " + std::to_string(place));
      support::reset_platform();
      const std::size_t total = place + row.text.size();
      TypeParam state(blanks(place) + bytes(row.text));
      const bool is_key = row.type == TNS_KEY;
      EXPECT_EQ(KZCITnsParse(&state.params, row.type), is_key ? 100 : 0);
      if (!is_key) {
        EXPECT_EQ(KZCITnsParse(&state.params, row.type), 100);
      }
      EXPECT_EQ(state.params.tns_key_len, 0u);
      EXPECT_EQ(state.params.is_eof, 1);
      EXPECT_EQ(support::log_records(),
                this->reads(refills_to_see(total - 1) + 1) + (is_key ? end_in_key : end_in_blanks));
    }
  }
}

TYPED_TEST(RefillInEachMode, BlanksOfEveryKindAcrossTheEnd) {
  const std::string kinds = " \t\n\r";
  for (std::size_t total = 1016; total <= 1032; ++total) {
    SCOPED_TRACE(total);
    support::reset_platform();
    std::string text;
    while (text.size() < total) text += kinds[text.size() % 4];
    TypeParam state(text + "=");
    EXPECT_EQ(KZCITnsParse(&state.params, TNS_EQUAL_SIGN), 0);
    EXPECT_EQ(support::log_records(), this->reads(refills_to_see(total)));
  }
}

// ----------------------------------------------------------------------
// Comments around the end of the buffer
// ----------------------------------------------------------------------

struct CommentPlace {
  std::size_t begin;  // Index of the "#".
  std::size_t end;    // Index of the line feed or zero byte.
};

std::vector<CommentPlace> comment_places() {
  std::vector<CommentPlace> places;
  for (std::size_t begin = 1018; begin <= 1026; ++begin)
    for (std::size_t end = begin + 1; end <= 1029; ++end) places.push_back({begin, end});
  for (const std::size_t end : {2047u, 2048u, 2049u, 3072u, 5000u}) {
    places.push_back({0, end});
    places.push_back({1023, end});
    places.push_back({1024, end});
  }
  return places;
}

std::string comment_text(const CommentPlace &place, char last) {
  std::string text = blanks(place.begin) + "#";
  while (text.size() < place.end) text += "(=)\"# x"[text.size() % 7];
  return text + last;
}

TYPED_TEST(RefillInEachMode, CommentUpToALineFeed) {
  for (const CommentPlace &place : comment_places()) {
    SCOPED_TRACE(std::to_string(place.begin) + " to " + std::to_string(place.end));
    support::reset_platform();
    TypeParam state(comment_text(place, '\n') + "(");
    EXPECT_EQ(KZCITnsParse(&state.params, TNS_LEFT_PARENTHESES), 0);
    EXPECT_EQ(state.params.buffer_pos, (place.end + 1) % buffer_size + 1);
    EXPECT_EQ(state.params.is_comment, 0);
    EXPECT_EQ(support::log_records(), this->reads(refills_to_see(place.end + 1)));
  }
}

TYPED_TEST(RefillInEachMode, CommentUpToAZeroByte) {
  for (const CommentPlace &place : comment_places()) {
    SCOPED_TRACE(std::to_string(place.begin) + " to " + std::to_string(place.end));
    support::reset_platform();
    TypeParam state(comment_text(place, '\0') + "(");
    EXPECT_EQ(KZCITnsParse(&state.params, TNS_LEFT_PARENTHESES), -1);
    EXPECT_EQ(state.params.buffer_pos, place.end % buffer_size);
    EXPECT_EQ(state.params.is_comment, 0);
    EXPECT_EQ(support::log_records(),
              this->reads(refills_to_see(place.end)) + unexpected(TNS_LEFT_PARENTHESES, TNS_KEY));
    EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
    EXPECT_EQ(state.key(), bytes("\0"sv));
  }
}

TYPED_TEST(RefillInEachMode, CommentUpToTheEndOfTheInput) {
  for (const CommentPlace &place : comment_places()) {
    SCOPED_TRACE(std::to_string(place.begin) + " to " + std::to_string(place.end));
    support::reset_platform();
    TypeParam state(comment_text(place, 'x'));
    EXPECT_EQ(KZCITnsParse(&state.params, TNS_LEFT_PARENTHESES), 100);
    EXPECT_EQ(state.params.is_comment, 1);
    EXPECT_EQ(support::log_records(), this->reads(refills_to_see(place.end) + 1) + end_in_blanks);
  }
}

// ----------------------------------------------------------------------
// Keys around the limit, at every place against the end of the buffer
// ----------------------------------------------------------------------

const std::vector<std::size_t> sizes_around_the_limit = {255, 256, 257, 300};

// Below the limit a key is whole wherever it stands. A key that reaches the
// limit is cut there, unless its 256th character is the last one in the buffer.
// The place is the index of the key's first character, quotes not counted.
bool fits(std::size_t place, std::size_t size) {
  return size < key_limit || (place + key_limit) % buffer_size != 0;
}

TYPED_TEST(RefillInEachMode, LongKeysAtEveryPlace) {
  for (const std::size_t size : sizes_around_the_limit) {
    for (std::size_t place = 0; place < buffer_size; ++place) {
      SCOPED_TRACE(std::to_string(size) + " characters at " + std::to_string(place));
      support::reset_platform();
      TypeParam state(blanks(place) + letters(size) + ")");
      const std::string key = letters(std::min(size, key_limit));
      const std::size_t seen = size < key_limit ? place + size : place + key_limit - 1;
      EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), fits(place, size) ? 0 : -1);
      EXPECT_EQ(state.key(), fits(place, size) ? key : "");
      EXPECT_EQ(state.params.tns_token_type, TNS_KEY);
      EXPECT_EQ(support::log_records(),
                this->reads(refills_to_see(seen)) + (fits(place, size) ? got_key(key) : too_long));
      if (size > key_limit) {
        EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
        EXPECT_EQ(state.key(), letters(size).substr(key_limit));
      }
      EXPECT_EQ(KZCITnsParse(&state.params, TNS_RIGHT_PARENTHESES), 0);
    }
  }
}

// A quoted key reaches the limit one place later, before its closing
// quote, which is left and opens the next key.
TYPED_TEST(RefillInEachMode, LongQuotedKeysAtEveryPlace) {
  for (const std::size_t size : sizes_around_the_limit) {
    for (std::size_t place = 0; place < buffer_size; ++place) {
      SCOPED_TRACE(std::to_string(size) + " characters at " + std::to_string(place));
      support::reset_platform();
      std::string whole = letters(size);
      whole[1] = ')';
      TypeParam state(blanks(place) + "\"" + whole + "\")\")");
      const std::string key = whole.substr(0, key_limit);
      const bool is_read = fits(place + 1, size);
      const std::size_t seen = size < key_limit ? place + size + 2 : place + key_limit;
      EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), is_read ? 0 : -1);
      EXPECT_EQ(state.key(), is_read ? key : "");
      EXPECT_EQ(support::log_records(),
                this->reads(refills_to_see(seen)) + (is_read ? got_key(key) : too_long));
      if (size >= key_limit) {
        EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
        EXPECT_EQ(state.key(), whole.substr(key_limit) + ")");
      }
      EXPECT_EQ(KZCITnsParse(&state.params, TNS_RIGHT_PARENTHESES), 0);
    }
  }
}

// With the input's end in place of a terminator, a key below the limit is lost
// and one at the limit is too long, for its 256th character is the last.
TYPED_TEST(RefillInEachMode, LongKeysAtTheEndOfTheInput) {
  for (std::size_t place = 700; place < buffer_size; ++place) {
    SCOPED_TRACE(place);
    support::reset_platform();
    TypeParam shorter(blanks(place) + letters(255));
    EXPECT_EQ(KZCITnsParse(&shorter.params, TNS_KEY), 100);
    EXPECT_EQ(support::log_records(), this->reads(refills_to_see(place + 254) + 1) + end_in_key);
    support::reset_platform();
    TypeParam longer(blanks(place) + letters(256));
    EXPECT_EQ(KZCITnsParse(&longer.params, TNS_KEY), -1);
    EXPECT_EQ(support::log_records(), this->reads(refills_to_see(place + 255)) + too_long);
  }
}

// ----------------------------------------------------------------------
// Random inputs against a reader that knows no buffer
// ----------------------------------------------------------------------

// What a call with the right expectation gives at each token of the input.
struct Expected {
  KZCITnsTokenType type;
  sword status;
  std::string key;
};

// Reads the text as one piece. Of the buffer it knows only that it ends at each
// multiple of its size and at the end of the text.
class WholeTextReader {
 public:
  explicit WholeTextReader(std::string_view text) : text_(text) {}

  std::vector<Expected> read() {
    std::vector<Expected> out;
    for (skip(); at_ < text_.size(); skip()) out.push_back(token());
    return out;
  }

 private:
  bool at_one_of(std::string_view set) const { return set.find(text_[at_]) != set.npos; }
  bool buffer_ends() const { return at_ % buffer_size == 0 || at_ == text_.size(); }

  void skip() {
    while (at_ < text_.size() && at_one_of(" \t\n\r#")) {
      if (text_[at_] == '#') at_ = std::min(text_.find_first_of("\n\0"sv, at_), text_.size());
      if (at_ < text_.size() && text_[at_] == '\0') return;
      if (at_ < text_.size()) ++at_;
    }
  }

  Expected token() {
    if (!at_one_of("()=")) return key();
    const char sign = text_[at_++];
    return {sign == '('   ? TNS_LEFT_PARENTHESES
            : sign == ')' ? TNS_RIGHT_PARENTHESES
                          : TNS_EQUAL_SIGN,
            0, ""};
  }

  Expected key() {
    std::string key;
    bool is_quoted = false;
    while (key.size() < key_limit) {
      if (at_ == text_.size()) return {TNS_KEY, 100, ""};
      if (!is_quoted && at_one_of(" \t\n\r()=")) return {TNS_KEY, 0, key};
      const char next = text_[at_++];
      if (next == '"')
        is_quoted = !is_quoted;
      else
        key += next;
    }
    if (buffer_ends()) return {TNS_KEY, -1, ""};
    return {TNS_KEY, 0, key};
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

std::string random_text(std::mt19937 &random) {
  static constexpr std::string_view pieces = "()=()=()= \t\n\r #\"\"\"\0"sv;
  std::uniform_int_distribution<std::size_t> piece(0, pieces.size() + 5);
  std::uniform_int_distribution<std::size_t> run(1, 320);
  std::uniform_int_distribution<std::size_t> total(0, 6000);
  std::string text;
  for (const std::size_t size = total(random); text.size() < size;) {
    const std::size_t pick = piece(random);
    text += pick < pieces.size() ? std::string(1, pieces[pick]) : letters(run(random));
  }
  return text;
}

template <class State>
void expect_tokens(const std::string &text) {
  State state(text);
  for (const Expected &expected : WholeTextReader(text).read()) {
    ASSERT_EQ(KZCITnsParse(&state.params, expected.type), expected.status);
    ASSERT_EQ(state.params.tns_token_type, expected.type);
    if (expected.status == 0 && expected.type == TNS_KEY) {
      ASSERT_EQ(state.key(), expected.key);
    }
  }
  ASSERT_EQ(KZCITnsParse(&state.params, TNS_KEY), 100);
}

TYPED_TEST(RefillInEachMode, RandomInputsLikeOnePiece) {
  std::mt19937 random(10007);
  for (int round = 0; round < 1500; ++round) {
    SCOPED_TRACE(round);
    support::reset_platform();
    expect_tokens<TypeParam>(random_text(random));
  }
}

// ----------------------------------------------------------------------
// Whole descriptors
// ----------------------------------------------------------------------

const Lines descriptor_tokens = {"(",
                                 "DESCRIPTION",
                                 "=",  //
                                 "(",
                                 "KZLB",
                                 "=",
                                 "ON",
                                 ")",  //
                                 "(",
                                 "ADDRESS_LIST",
                                 "=",  //
                                 "(",
                                 "ADDRESS",
                                 "=",
                                 "(",
                                 "HOST",
                                 "=",
                                 "\"my (host)\"",
                                 ")",  //
                                 "(",
                                 "PORT",
                                 "=",
                                 "1521",
                                 ")",
                                 "(",
                                 "PROTOCOL",
                                 "=",
                                 "tcp",
                                 ")",
                                 ")",  //
                                 "(",
                                 "ADDRESS",
                                 "=",
                                 "(",
                                 "WEIGHT",
                                 "=",
                                 "-7",
                                 ")",
                                 ")",
                                 ")",  //
                                 "(",
                                 "CONNECT_DATA",
                                 "=",
                                 "(",
                                 "SID",
                                 "=",
                                 "or\"c\"l",
                                 ")",
                                 ")",  //
                                 ")"};

const std::string descriptor_fields =
    "  description KZLB=1 remove append lists=1\n"
    "    list addresses=2\n"
    "      address HOST=my (host) PORT=1521 PROTOCOL=tcp\n"
    "      address WEIGHT=-7\n"
    "    data SERVICE_NAME=orcl\n"
    "  variables\n";

// The descriptor with a filling before its n-th token.
std::string filled(std::size_t n, const std::string &filling) {
  std::string text;
  for (std::size_t i = 0; i < descriptor_tokens.size(); ++i)
    text += (i == n ? filling : "") + descriptor_tokens[i];
  return n == descriptor_tokens.size() ? text + filling : text;
}

std::size_t descriptor_size() { return filled(0, "").size(); }

struct BuildOutcome {
  sword status;
  boolean find;
  std::string tree;
};

BuildOutcome build_descriptor(const std::string &text) {
  KZCITns tns;
  EXPECT_EQ(KZCITnsInit(&tns), 0);
  BuildOutcome outcome{0, 7, ""};
  outcome.status = KZCITnsBuildDes(&tns, reinterpret_cast<const OraText *>(text.c_str()),
                                   static_cast<ub4>(text.size()), &outcome.find);
  outcome.tree = support::full_tree(tns);
  EXPECT_EQ(KZCITnsClear(&tns), 0);
  return outcome;
}

std::size_t reads_in_the_log() {
  const Lines log = support::log_records();
  return static_cast<std::size_t>(std::count(log.begin(), log.end(), "DEBUG read data mode=2"));
}

// All slices are read, and once more to find that nothing follows.
void expect_built(const std::string &text) {
  support::reset_platform();
  const BuildOutcome outcome = build_descriptor(text);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.find, 1);
  EXPECT_EQ(outcome.tree, "services=1\n service DESCRIPTION descriptions=1\n" + descriptor_fields);
  EXPECT_EQ(reads_in_the_log(), refills_to_see(text.size() - 1) + 1);
  EXPECT_EQ(support::live_blocks().size(), 0u);
}

// A comment needs a blank before it, since a "#" after a key belongs to it.
std::vector<std::string> fillings(std::size_t size) {
  return {blanks(size), std::string(size, '\n'), " #" + std::string(size - 3, '(') + "\n"};
}

TEST_F(RefillInADescriptor, SizesAroundTheBuffer) {
  for (const std::size_t total : {1023u, 1024u, 1025u, 2047u, 2048u, 2049u, 2500u}) {
    for (std::size_t n = 0; n <= descriptor_tokens.size(); ++n) {
      for (const std::string &filling : fillings(total - descriptor_size())) {
        SCOPED_TRACE(std::to_string(total) + " characters, filled before token " +
                     std::to_string(n));
        const std::string text = filled(n, filling);
        ASSERT_EQ(text.size(), total);
        expect_built(text);
      }
    }
  }
}

TEST_F(RefillInADescriptor, EveryCharacterOnTheEndOfTheBuffer) {
  for (std::size_t gap = buffer_size - descriptor_size() - 2; gap <= buffer_size + 2; ++gap) {
    SCOPED_TRACE(gap);
    expect_built(filled(0, blanks(gap)));
  }
}

TEST_F(RefillInADescriptor, EveryCharacterOnTheEndOfTheBufferOfAFile) {
  for (std::size_t gap = buffer_size - descriptor_size() - 2; gap <= buffer_size + 2; ++gap) {
    SCOPED_TRACE(gap);
    support::reset_platform();
    KZCITns tns;
    EXPECT_EQ(KZCITnsInit(&tns), 0);
    FileState state(filled(0, blanks(gap)) + "\nnext = ");
    std::memcpy(state.params.tns_key, "svc", 3);
    state.params.tns_key_len = 3;
    EXPECT_EQ(KZCITnsServiceBuild(&tns, &state.params), 0);
    EXPECT_EQ(support::full_tree(tns),
              "services=1\n service svc descriptions=1\n" + descriptor_fields);
    EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
    EXPECT_EQ(state.key(), "next");
    EXPECT_EQ(KZCITnsClear(&tns), 0);
    EXPECT_EQ(support::live_blocks().size(), 0u);
  }
}

// The refill shows between the tokens that it parts, and nowhere else.
TEST_F(RefillInADescriptor, FullLogWithTheEndInsideAValue) {
  const std::string text = "(DESCRIPTION=" + blanks(1004) + "(KZLB=ON))";
  ASSERT_EQ(text[1023], 'O');
  EXPECT_EQ(build_descriptor(text).status, 0);
  const Lines log = support::log_without_pointers();
  const Lines build = {
      "DEBUG call KZCITnsBuildDes with params [tns:PTR, " + text + "]",
      "DEBUG read data mode=2",
      "DEBUG get key size:11, key:DESCRIPTION",
      "DEBUG succ to find key, key is:1",
      "DEBUG bulid_tns_service get key_type 1",
      "DEBUG call KZCIDescriptionBuild with params [tns_service:PTR], [parse_params:PTR]",
      "DEBUG get key size:4, key:KZLB",
      "DEBUG succ to find key, key is:2",
      "DEBUG bulid_description get key_type 2",
      "DEBUG read data mode=2",
      "DEBUG get key size:2, key:ON",
      "WARN expect token type is 1, but get 2",
      "WARN fail to call KZCITnsParse, status:-1",
      "DEBUG success to build description, address count:0",
      "DEBUG read data mode=2",
      "DEBUG reach eof",
      "DEBUG success to build tns_service, description count:1",
      "DEBUG succ to call KZCITnsServiceBuild, service number:1"};
  ASSERT_GE(log.size(), build.size());
  EXPECT_EQ(Lines(log.begin(), log.begin() + static_cast<std::ptrdiff_t>(build.size())), build);
}

// ----------------------------------------------------------------------
// Long values of a descriptor, at every place
// ----------------------------------------------------------------------

const Lines address_fails = {
    "ERROR something error in build address, status:-1", "ERROR fail to call KZCIAddressBuild",
    "ERROR something error in build description", "ERROR fail to build description, status:-1",
    "ERROR something error in build tns service, status:-1"};

const Lines block_ends = unexpected(TNS_LEFT_PARENTHESES, TNS_RIGHT_PARENTHESES) +
                         Lines{"WARN fail to call KZCITnsParse, status:-1"};

// What a bare address with a host of this size at this place logs.
Lines host_warnings(std::size_t place, std::size_t size) {
  if (!fits(place, size))
    return too_long +
           Lines{"WARN fail to call KZCITnsParse, status:-1", "ERROR fail to parse string value"} +
           address_fails;
  if (size > key_limit)
    return unexpected(TNS_RIGHT_PARENTHESES, TNS_KEY) +
           Lines{"WARN fail to call KZCITnsParse, status:-1"} + address_fails;
  return block_ends + block_ends;
}

// A host of 256 characters is the longest; what is cut off a longer one stands
// where the closing parenthesis is expected.
TEST_F(RefillInADescriptor, LongHostsAtEveryPlace) {
  for (const std::size_t size : sizes_around_the_limit) {
    for (std::size_t gap = 0; gap < buffer_size; ++gap) {
      SCOPED_TRACE(std::to_string(size) + " characters, gap " + std::to_string(gap));
      support::reset_platform();
      const std::string front = "(DESCRIPTION=(ADDRESS=(HOST=" + blanks(gap);
      const BuildOutcome outcome = build_descriptor(front + letters(size) + ")))");
      const bool is_built = size <= key_limit && fits(front.size(), size);
      EXPECT_EQ(outcome.status, is_built ? 0 : -1);
      EXPECT_EQ(outcome.find, is_built ? 1 : 0);
      EXPECT_EQ(outcome.tree.find("HOST=" + letters(size) + "\n") != std::string::npos, is_built);
      EXPECT_EQ(support::warnings_and_errors(), host_warnings(front.size(), size));
      EXPECT_EQ(support::live_blocks().size(), 0u);
    }
  }
}

}  // namespace
