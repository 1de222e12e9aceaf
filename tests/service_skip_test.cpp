// Passing over an entry of the names file: the reserved name, and the count of
// parentheses.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/parsing.h"

namespace {

using support::bytes;
using support::DescriptorState;
using support::FileState;
using support::Lines;
using support::operator+;
using namespace std::string_view_literals;

constexpr std::string_view reserved_name = "KZCISYSTEMVARIABLES";
constexpr std::size_t buffer_size = 1024;

class ServiceSkip : public ::testing::Test {
 protected:
  void SetUp() override { support::reset_platform(); }
  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    EXPECT_EQ(support::memory_events(), Lines{}) << "the skip allocates nothing";
  }
};

const std::string reach_eof = "DEBUG reach eof";

std::string read_data(int mode = TNS_MODE_DESCRIPTION) {
  return "DEBUG read data mode=" + std::to_string(mode);
}

Lines reads(std::size_t n) { return Lines(n, read_data()); }

// What the skip says when its first parenthesis is not there.
Lines token_found(int found) {
  return {"WARN expect token type is 1, but get " + std::to_string(found),
          "WARN fail to call KZCITnsParse, status:-1"};
}

void set_key(KZCITnsParseParams &params, std::string_view key) {
  std::memcpy(params.tns_key, key.data(), key.size());
  params.tns_key_len = static_cast<ub4>(key.size());
}

// How many characters of the descriptor are consumed.
std::size_t consumed(const KZCITnsParseParams &params) {
  return static_cast<std::size_t>(params.description_offset) - params.buffer_len +
         params.buffer_pos;
}

// A body that is passed over from its first character to its last, with the
// next entry after it.
void expect_skipped(std::string_view body) {
  SCOPED_TRACE(body);
  support::reset_platform();
  DescriptorState state(bytes(body) + " next=(X)");
  set_key(state.params, "sales");
  EXPECT_EQ(KZCITnsServiceSkip(&state.params), 0);
  EXPECT_EQ(consumed(state.params), body.size());
  EXPECT_EQ(state.params.is_eof, 0);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), "next");
}

void expect_cut_off(std::string_view body) {
  SCOPED_TRACE(body);
  support::reset_platform();
  DescriptorState state(body);
  set_key(state.params, "sales");
  EXPECT_EQ(KZCITnsServiceSkip(&state.params), 100);
  EXPECT_EQ(state.params.is_eof, 1);
  EXPECT_EQ(support::log_records(), (Lines{read_data(), read_data(), reach_eof}));
}

// ----------------------------------------------------------------------
// The reserved name
// ----------------------------------------------------------------------

// True when the key is passed over like any other entry.
bool is_skipped(std::string_view key) {
  support::reset_platform();
  DescriptorState state("(x) ");
  std::memset(state.params.tns_key, 'Z', sizeof state.params.tns_key);
  set_key(state.params, key);
  EXPECT_EQ(KZCITnsServiceSkip(&state.params), 0);
  const bool reads_nothing = state.params.description_offset == 0;
  EXPECT_EQ(state.params.is_eof, reads_nothing ? 1 : 0);
  EXPECT_EQ(consumed(state.params), reads_nothing ? 0u : 3u);
  EXPECT_EQ(support::log_records(), reads_nothing ? Lines{} : reads(1));
  EXPECT_EQ(state.key(), key);
  return !reads_nothing;
}

TEST_F(ServiceSkip, EveryLeadingPartOfTheReservedNameEndsTheScan) {
  for (std::size_t size = 0; size <= reserved_name.size(); ++size) {
    const std::string_view key = reserved_name.substr(0, size);
    SCOPED_TRACE(key);
    EXPECT_FALSE(is_skipped(key));
  }
}

TEST_F(ServiceSkip, ReservedNameConsumesNothingOfWhatIsAtHand) {
  DescriptorState state(" (LOG_SIZE=1)");
  EXPECT_EQ(KZCITnsCheckBuffer(&state.params), 0);
  set_key(state.params, reserved_name);
  state.params.tns_token_type = TNS_EQUAL_SIGN;
  support::reset_platform();
  EXPECT_EQ(KZCITnsServiceSkip(&state.params), 0);
  EXPECT_EQ(state.params.is_eof, 1);
  EXPECT_EQ(state.params.buffer_pos, 0u);
  EXPECT_EQ(state.params.buffer_len, 13u);
  EXPECT_EQ(state.params.tns_token_type, TNS_EQUAL_SIGN);
  EXPECT_EQ(support::log_records(), Lines{});
}

TEST_F(ServiceSkip, ReservedNameIsTestedBeforeTheBody) {
  for (const std::string_view text : {""sv, "x"sv, "="sv, ")"sv, "(((("sv}) {
    SCOPED_TRACE(text);
    support::reset_platform();
    DescriptorState state(text);
    set_key(state.params, "KZCI");
    EXPECT_EQ(KZCITnsServiceSkip(&state.params), 0);
    EXPECT_EQ(state.params.is_eof, 1);
    EXPECT_EQ(support::log_records(), Lines{});
  }
}

// One character other than in the reserved name, at each place of each of its
// leading parts.
TEST_F(ServiceSkip, OneOtherCharacterMakesAnOrdinaryName) {
  for (std::size_t size = 1; size <= reserved_name.size(); ++size) {
    for (std::size_t place = 0; place < size; ++place) {
      for (const char other : {'?', '\0', static_cast<char>(reserved_name[place] | 0x20)}) {
        std::string key(reserved_name.substr(0, size));
        key[place] = other;
        SCOPED_TRACE(key);
        EXPECT_TRUE(is_skipped(key));
      }
    }
  }
}

TEST_F(ServiceSkip, LetterCaseMatters) {
  for (const std::string_view key : {"kzcisystemvariables"sv, "KzciSystemVariables"sv, "k"sv,
                                     "kzci"sv, "KZCISYSTEMVARIABLEs"sv, "kZCISYSTEMVARIABLES"sv}) {
    SCOPED_TRACE(key);
    EXPECT_TRUE(is_skipped(key));
  }
}

TEST_F(ServiceSkip, OtherNamesAreOrdinary) {
  for (const std::string_view key :
       {"sales"sv, "ZCI"sv, "KZCI_"sv, "KZCISYS TEM"sv, "KZCISYSTEMVARIABLE_"sv, " KZCI"sv,
        "SYSTEMVARIABLES"sv, "KKZCISYSTEMVARIABLES"sv}) {
    SCOPED_TRACE(key);
    EXPECT_TRUE(is_skipped(key));
  }
}

TEST_F(ServiceSkip, TwentyCharactersAreNeverTheReservedName) {
  for (int byte = 1; byte < 256; ++byte) {
    SCOPED_TRACE(byte);
    EXPECT_TRUE(is_skipped(bytes(reserved_name) + static_cast<char>(byte)));
  }
}

TEST_F(ServiceSkip, LongerNamesAreOrdinary) {
  for (const std::size_t size : {21u, 25u, 100u, 255u, 256u}) {
    SCOPED_TRACE(size);
    std::string key(reserved_name);
    key.resize(size, 'X');
    EXPECT_TRUE(is_skipped(key));
  }
}

// The twentieth byte is compared with the zero byte after the reserved name,
// whatever stands after it.
TEST_F(ServiceSkip, ZeroByteAfterTheReservedNameIsEqual) {
  for (const std::string_view after : {"\0"sv, "\0X"sv, "\0\0\0\0"sv, "\0anything at all"sv}) {
    SCOPED_TRACE(after.size());
    EXPECT_FALSE(is_skipped(bytes(reserved_name) + bytes(after)));
  }
}

// A zero byte is no end of a name: the bytes are compared up to the length.
TEST_F(ServiceSkip, ZeroByteInsideANameIsComparedLikeAnyOther) {
  for (const std::string_view key :
       {"\0"sv, "KZ\0"sv, "KZCI\0"sv, "KZ\0I"sv, "\0KZCI"sv, "KZCISYSTEMVARIABLE\0"sv,
        "KZCISYSTEMVARIABLE\0S"sv, "KZCI\0SYSTEMVARIABLES"sv}) {
    SCOPED_TRACE(key.size());
    EXPECT_TRUE(is_skipped(key));
  }
}

// Only as many characters count as the length says; what an earlier key has
// left does not.
TEST_F(ServiceSkip, WhatStandsAfterTheNameDoesNotMatter) {
  DescriptorState state("(x)");
  std::memcpy(state.params.tns_key, "KZCISALES", 9);
  state.params.tns_key_len = 4;
  EXPECT_EQ(KZCITnsServiceSkip(&state.params), 0);
  EXPECT_EQ(state.params.is_eof, 1);
}

TEST_F(ServiceSkip, EmptyQuotesAreTheReservedNameToo) {
  DescriptorState state("\"\" = (x) ");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_EQUAL_SIGN), 0);
  EXPECT_EQ(KZCITnsServiceSkip(&state.params), 0);
  EXPECT_EQ(state.params.is_eof, 1);
  EXPECT_EQ(consumed(state.params), 4u);
}

// ----------------------------------------------------------------------
// The body
// ----------------------------------------------------------------------

TEST_F(ServiceSkip, NullRecord) {
  EXPECT_EQ(KZCITnsServiceSkip(nullptr), -2);
  EXPECT_EQ(support::log_without_pointers(), Lines{"ERROR invalid handle, parse_params:NULL"});
}

TEST_F(ServiceSkip, StopsAfterTheMatchingParenthesis) {
  for (const std::string_view body :
       {"()"sv, "(a)"sv, "((A=1)(B=2))"sv, "( (A=1) (B=2) )"sv, "((((()))))"sv, "(()()(()()))"sv,
        "(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))\n  (CONNECT_DATA=(SID=s)))"sv, "(\0(\0)\0)"sv})
    expect_skipped(body);
}

TEST_F(ServiceSkip, BlanksAndCommentsMayStandInFront) {
  for (const std::string_view body :
       {"  (a)"sv, "\n\t (a)"sv, " # comment ((((\n (a)"sv, "#)\n#(\n(a)"sv})
    expect_skipped(body);
}

// The count is raw inside the body: comments and quotes are not known there.
TEST_F(ServiceSkip, ParenthesesInCommentsAndQuotesCount) {
  for (const std::string_view body :
       {"(a #)"sv, "(a \")"sv, "(\"(\" )\n)"sv, "(#(\n))"sv, "(a=\"(\"\")\")"sv})
    expect_skipped(body);
}

TEST_F(ServiceSkip, OtherCharactersArePassedOver) {
  std::string body = "(";
  for (int byte = 0; byte < 256; ++byte)
    if (byte != '(' && byte != ')') body += static_cast<char>(byte);
  expect_skipped(body + ")");
}

TEST_F(ServiceSkip, OnlyTheFirstBlockOfAnEntryIsPassedOver) {
  DescriptorState state("(a)(b)");
  set_key(state.params, "sales");
  EXPECT_EQ(KZCITnsServiceSkip(&state.params), 0);
  EXPECT_EQ(consumed(state.params), 3u);
  EXPECT_EQ(support::log_records(), Lines{read_data()});
}

// Of the body only its first parenthesis is a token.
TEST_F(ServiceSkip, LastTokenIsTheOpeningParenthesis) {
  DescriptorState state("((A=1)(B=2)) next");
  set_key(state.params, "sales");
  EXPECT_EQ(KZCITnsServiceSkip(&state.params), 0);
  EXPECT_EQ(state.params.tns_token_type, TNS_LEFT_PARENTHESES);
  EXPECT_EQ(state.key(), "sales");
  EXPECT_EQ(state.params.is_comment, 0);
}

TEST_F(ServiceSkip, TheNameMayBeInLowerCase) {
  DescriptorState state("kzcisystemvariables = ((A)(B)) next ");
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_EQUAL_SIGN), 0);
  EXPECT_EQ(KZCITnsServiceSkip(&state.params), 0);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(state.key(), "next");
  EXPECT_EQ(support::log_records(),
            (Lines{read_data(), "DEBUG get key size:19, key:kzcisystemvariables",
                   "DEBUG get key size:4, key:next"}));
}

TEST_F(ServiceSkip, BodyThatDoesNotBeginWithAParenthesis) {
  const std::vector<std::pair<std::string_view, int>> rows = {{"x(a)", TNS_KEY},
                                                              {")", TNS_RIGHT_PARENTHESES},
                                                              {" =(a)", TNS_EQUAL_SIGN},
                                                              {"\"(\"", TNS_KEY},
                                                              {"#(\n)", TNS_RIGHT_PARENTHESES}};
  for (const auto &[text, found] : rows) {
    SCOPED_TRACE(text);
    support::reset_platform();
    DescriptorState state(text);
    set_key(state.params, "sales");
    EXPECT_EQ(KZCITnsServiceSkip(&state.params), -1);
    EXPECT_EQ(state.params.is_eof, 0);
    EXPECT_EQ(support::log_records(), reads(1) + token_found(found));
  }
}

TEST_F(ServiceSkip, InputEndsInFrontOfTheBody) {
  const Lines end = {reach_eof, "WARN fail to call parse blank, status:100",
                     "WARN fail to call KZCITnsParse, status:100"};
  for (const std::string_view text : {""sv, "  \n"sv, "#(a)"sv}) {
    SCOPED_TRACE(text);
    support::reset_platform();
    DescriptorState state(text);
    set_key(state.params, "sales");
    EXPECT_EQ(KZCITnsServiceSkip(&state.params), 100);
    EXPECT_EQ(state.params.is_eof, 1);
    EXPECT_EQ(support::log_records(), reads(text.empty() ? 1 : 2) + end);
  }
}

TEST_F(ServiceSkip, InputEndsInsideTheBody) {
  for (const std::string_view body : {"("sv, "(a"sv, "((a)"sv, "(a #(\n)\n"sv, "(\"(\"\n)\n"sv})
    expect_cut_off(body);
}

TEST_F(ServiceSkip, NothingIsReadAfterTheClosingParenthesis) {
  DescriptorState state("(a)");
  set_key(state.params, "sales");
  EXPECT_EQ(KZCITnsServiceSkip(&state.params), 0);
  EXPECT_EQ(state.params.buffer_pos, 3u);
  EXPECT_EQ(state.params.is_eof, 0);
  EXPECT_EQ(support::log_records(), Lines{read_data()});
}

TEST_F(ServiceSkip, SeveralEntriesOneAfterTheOther) {
  FileState state("one=(1)\ntwo = ((2)(2))\n#c\nthree=\n(3)");
  const std::vector<std::string> names = {"one", "two", "three"};
  for (const std::string &name : names) {
    EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
    EXPECT_EQ(state.key(), name);
    EXPECT_EQ(KZCITnsParse(&state.params, TNS_EQUAL_SIGN), 0);
    EXPECT_EQ(KZCITnsServiceSkip(&state.params), 0);
  }
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 100);
  EXPECT_EQ(support::log_records(),
            (Lines{read_data(1), "DEBUG get key size:3, key:one", "DEBUG get key size:3, key:two",
                   "DEBUG get key size:5, key:three", read_data(1), reach_eof,
                   "WARN fail to call parse blank, status:100"}));
}

// ----------------------------------------------------------------------
// Against a loop over the bytes
// ----------------------------------------------------------------------

// The place after the parenthesis that matches the first one, if there is one.
std::optional<std::size_t> matching_end(std::string_view text) {
  int depth = 0;
  for (std::size_t i = text.find('('); i < text.size(); ++i) {
    if (text[i] == '(') ++depth;
    if (text[i] == ')') --depth;
    if (depth == 0) return i + 1;
  }
  return std::nullopt;
}

// How many refills have been made once this many characters are consumed, none
// of them looked ahead.
std::size_t refills_for(std::size_t characters) {
  return (characters + buffer_size - 1) / buffer_size;
}

// The text begins with blanks and a parenthesis.
void expect_like_the_loop(const std::string &text) {
  support::reset_platform();
  const std::optional<std::size_t> end = matching_end(text);
  DescriptorState state(text);
  set_key(state.params, "sales");
  const sword status = KZCITnsServiceSkip(&state.params);
  EXPECT_EQ(status, end ? 0 : 100);
  if (end) {
    EXPECT_EQ(consumed(state.params), *end);
    EXPECT_EQ(state.params.is_eof, 0);
    EXPECT_EQ(support::log_records(), reads(refills_for(*end)));
  } else {
    EXPECT_EQ(state.params.is_eof, 1);
    EXPECT_EQ(support::log_records(), reads(refills_for(text.size()) + 1) + Lines{reach_eof});
  }
}

// A body with this many levels inside each other, and something in each.
std::string nested(int depth) {
  std::string text;
  for (int i = 0; i < depth; ++i) text += "(a=";
  for (int i = 0; i < depth; ++i) text += "b)";
  return text;
}

TEST_F(ServiceSkip, EveryAlignmentAgainstTheEndOfTheBuffer) {
  for (std::size_t gap = 0; gap <= 2 * buffer_size + 2; ++gap) {
    SCOPED_TRACE(gap);
    expect_like_the_loop(std::string(gap, ' ') + "((x)(#)(\"\")) next");
  }
}

TEST_F(ServiceSkip, EveryLengthOfABodyAroundTheEndOfTheBuffer) {
  for (std::size_t size = 1000; size <= 1050; ++size) {
    SCOPED_TRACE(size);
    expect_like_the_loop("(" + std::string(size, 'x') + ")");
    expect_like_the_loop("(" + std::string(size, 'x') + ") next");
    expect_like_the_loop("(" + std::string(size, '(') + std::string(size, ')') + ")");
    expect_like_the_loop("(" + std::string(size, 'x'));
  }
}

TEST_F(ServiceSkip, DepthsUpToSeveralBuffers) {
  for (const int depth : {1, 2, 10, 203, 204, 205, 206, 341, 342, 1000, 3000, 100000}) {
    SCOPED_TRACE(depth);
    expect_like_the_loop(nested(depth));
    expect_like_the_loop(nested(depth) + ")))");
    expect_like_the_loop("(" + nested(depth));
  }
}

// A slice of characters that mean something elsewhere, with few enough
// parentheses of either kind that some slices close and some do not.
std::string random_slice(std::mt19937 &random, std::size_t size) {
  static constexpr std::string_view characters = "()()()#\"=\n \t\r\0aZ_9'\\\xFF"sv;
  std::uniform_int_distribution<std::size_t> pick(0, characters.size() - 1);
  std::string text;
  while (text.size() < size) text += characters[pick(random)];
  return text;
}

TEST_F(ServiceSkip, RandomSlicesAtEveryAlignment) {
  std::mt19937 random(20011);
  std::uniform_int_distribution<std::size_t> size(0, 64);
  for (std::size_t gap = 0; gap < buffer_size; ++gap) {
    const std::string text =
        std::string(gap, '\n') + "(" + random_slice(random, size(random)) + "))";
    SCOPED_TRACE(text.substr(gap));
    expect_like_the_loop(text);
  }
}

TEST_F(ServiceSkip, RandomSlicesOfSeveralBuffers) {
  std::mt19937 random(40013);
  std::uniform_int_distribution<std::size_t> size(0, 5000);
  std::uniform_int_distribution<std::size_t> depth(1, 80);
  for (int round = 0; round < 500; ++round) {
    SCOPED_TRACE(round);
    const std::size_t levels = depth(random);
    expect_like_the_loop(std::string(levels, '(') + random_slice(random, size(random)) +
                         std::string(levels / 2, ')'));
  }
}

TEST_F(ServiceSkip, FileIsSkippedLikeADescriptor) {
  std::mt19937 random(60017);
  std::uniform_int_distribution<std::size_t> size(900, 1200);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    support::reset_platform();
    const std::string text =
        "(" + std::string(size(random), 'x') + "(" + random_slice(random, 20) + ")) end ";
    DescriptorState memory(text);
    FileState file(text);
    set_key(memory.params, "sales");
    set_key(file.params, "sales");
    EXPECT_EQ(KZCITnsServiceSkip(&file.params), KZCITnsServiceSkip(&memory.params));
    EXPECT_EQ(file.params.buffer_pos, memory.params.buffer_pos);
    EXPECT_EQ(file.params.buffer_len, memory.params.buffer_len);
    EXPECT_EQ(file.params.is_eof, memory.params.is_eof);
  }
}

}  // namespace
