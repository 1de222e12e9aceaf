// The number conversion: what is read, what comes out, where it stops.
#include "kzoci/platform/my_strtoll10.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_literals;

constexpr int converted = 0;
constexpr int negative = -1;
constexpr int no_digit = 33;
constexpr int out_of_range = 34;

constexpr sb8 largest = std::numeric_limits<sb8>::max();
constexpr sb8 smallest = std::numeric_limits<sb8>::min();

// No conversion gives this indicator, so that one left untouched shows.
constexpr int not_written = 77;

struct Conversion {
  sb8 result;
  int error;
  std::ptrdiff_t used;

  bool operator==(const Conversion &other) const {
    return result == other.result && error == other.error && used == other.used;
  }
};

void PrintTo(const Conversion &conversion, std::ostream *out) {
  *out << "{result " << conversion.result << ", error " << conversion.error << ", used "
       << conversion.used << "}";
}

constexpr Conversion nothing = {0, no_digit, 0};

// Converts a copy that ends where its heap block ends, so that a read after
// the range shows under the address sanitizer.
Conversion convert(std::string_view text) {
  const std::unique_ptr<char[]> copy(new char[text.size()]);
  if (!text.empty()) std::memcpy(copy.get(), text.data(), text.size());
  char *end = copy.get() + text.size();
  Conversion conversion{0, not_written, 0};
  conversion.result = my_strtoll10(copy.get(), &end, &conversion.error);
  conversion.used = end - copy.get();
  return conversion;
}

struct Row {
  std::string text;
  sb8 result;
  int error;
};

std::string shown(const std::string &text) {
  std::string out = "input of " + std::to_string(text.size()) + " characters: '";
  for (const char c : text.substr(0, 80)) {
    if (c >= ' ' && c <= '~')
      out += c;
    else
      out += "\\" + std::to_string(static_cast<unsigned char>(c));
  }
  return out + "'";
}

// A text of which every character is used, and all that follows it is not.
void expect_number(const std::string &text, sb8 result, int error) {
  const auto length = static_cast<std::ptrdiff_t>(text.size());
  for (const std::string &rest : {""s, " "s, "x1"s, ".5"s, "-"s, "\0001"s}) {
    SCOPED_TRACE(shown(text + rest));
    EXPECT_EQ(convert(text + rest), (Conversion{result, error, length}));
  }
}

void expect_no_number(const std::string &text) {
  SCOPED_TRACE(shown(text));
  EXPECT_EQ(convert(text), nothing);
}

// Numbers around every limit, without a sign.
const Row without_sign[] = {
    {"0", 0, converted},
    {"1", 1, converted},
    {"9", 9, converted},
    {"10", 10, converted},
    {"4294967295", 4294967295, converted},
    {"4294967296", 4294967296, converted},
    {"999999999", 999999999, converted},
    {"1000000000", 1000000000, converted},
    {"999999999999999999", 999999999999999999, converted},
    {"1000000000000000000", 1000000000000000000, converted},
    {"9223372036854775806", largest - 1, converted},
    {"9223372036854775807", largest, converted},
    {"9223372036854775808", smallest, converted},
    {"9223372036854775809", smallest + 1, converted},
    {"9999999999999999999", -8446744073709551617, converted},
    {"10000000000000000000", -8446744073709551616, converted},
    {"10000000000000000001", -8446744073709551615, converted},
    {"18446744073709551609", -7, converted},
    {"18446744073709551610", -6, converted},
    {"18446744073709551614", -2, converted},
    {"18446744073709551615", -1, converted},
    {"18446744073709551616", -1, out_of_range},
    {"18446744073709551617", -1, out_of_range},
    {"18446744073709551619", -1, out_of_range},
    {"18446744073709551620", -1, out_of_range},
    {"18446744073709552000", -1, out_of_range},
    // Cut to 64 bits, this one is larger than its first 19 digits.
    {"30000000000000000000", -1, out_of_range},
    {"36893488147419103232", -1, out_of_range},
    {"99999999999999999999", -1, out_of_range},
    {"100000000000000000000", -1, out_of_range},
    {"184467440737095516150", -1, out_of_range},
    {"184467440737095516160", -1, out_of_range},
    {"340282366920938463463374607431768211456", -1, out_of_range},
};

// The same after a "-".
const Row with_minus[] = {
    {"0", 0, negative},
    {"1", -1, negative},
    {"9", -9, negative},
    {"10", -10, negative},
    {"4294967295", -4294967295, negative},
    {"4294967296", -4294967296, negative},
    {"999999999999999999", -999999999999999999, negative},
    {"1000000000000000000", -1000000000000000000, negative},
    {"9223372036854775806", smallest + 2, negative},
    {"9223372036854775807", smallest + 1, negative},
    {"9223372036854775808", smallest, negative},
    {"9223372036854775809", smallest, out_of_range},
    {"9223372036854775810", smallest, out_of_range},
    {"10000000000000000000", smallest, out_of_range},
    {"18446744073709551615", smallest, out_of_range},
    {"18446744073709551616", smallest, out_of_range},
    {"18446744073709551617", smallest, out_of_range},
    {"30000000000000000000", smallest, out_of_range},
    {"100000000000000000000", smallest, out_of_range},
    {"340282366920938463463374607431768211456", smallest, out_of_range},
};

TEST(MyStrtoll10, LimitsWithoutASign) {
  for (const Row &row : without_sign) expect_number(row.text, row.result, row.error);
}

TEST(MyStrtoll10, LimitsAfterAPlus) {
  for (const Row &row : without_sign) expect_number("+" + row.text, row.result, row.error);
}

TEST(MyStrtoll10, LimitsAfterAMinus) {
  for (const Row &row : with_minus) expect_number("-" + row.text, row.result, row.error);
}

TEST(MyStrtoll10, LeadingZerosDoNotCount) {
  for (const std::size_t count : {1u, 18u, 19u, 20u, 21u, 30u, 10000u}) {
    const std::string zeros(count, '0');
    for (const Row &row : without_sign) {
      expect_number(zeros + row.text, row.result, row.error);
      expect_number("+" + zeros + row.text, row.result, row.error);
    }
    for (const Row &row : with_minus) expect_number("-" + zeros + row.text, row.result, row.error);
  }
}

TEST(MyStrtoll10, ZerosAlone) {
  for (const std::size_t count : {1u, 2u, 9u, 10u, 19u, 20u, 21u, 30u, 100000u}) {
    const std::string zeros(count, '0');
    expect_number(zeros, 0, converted);
    expect_number("+" + zeros, 0, converted);
    expect_number("-" + zeros, 0, negative);
  }
}

// Implementations that take digits in groups err where a group is full.
TEST(MyStrtoll10, AroundEveryPowerOfTen) {
  std::uint64_t power = 1;
  for (int digits = 1; digits <= 20; ++digits, power *= 10) {
    for (const std::uint64_t number : {power - 1, power, power + 1}) {
      expect_number(std::to_string(number), static_cast<sb8>(number), converted);
      if (number <= std::uint64_t{1} << 63)
        expect_number("-" + std::to_string(number), static_cast<sb8>(0 - number), negative);
    }
  }
}

TEST(MyStrtoll10, AroundEveryPowerOfTwo) {
  for (int bit = 0; bit < 64; ++bit) {
    const std::uint64_t power = std::uint64_t{1} << bit;
    for (const std::uint64_t number : {power - 1, power, power + 1})
      expect_number(std::to_string(number), static_cast<sb8>(number), converted);
  }
}

TEST(MyStrtoll10, SpacesAndTabsStandBeforeTheSign) {
  for (const std::string &blanks : {" "s, "\t"s, "  "s, "\t \t"s, std::string(1000, ' ')}) {
    expect_number(blanks + "42", 42, converted);
    expect_number(blanks + "+42", 42, converted);
    expect_number(blanks + "-42", -42, negative);
    expect_number(blanks + "18446744073709551616", -1, out_of_range);
    expect_number(blanks + "-9223372036854775809", smallest, out_of_range);
  }
}

TEST(MyStrtoll10, EmptyRange) { expect_no_number(""); }

TEST(MyStrtoll10, EmptyRangeInFrontOfDigits) {
  char text[] = "123";
  char *end = text;
  int error = not_written;
  EXPECT_EQ(my_strtoll10(text, &end, &error), 0);
  EXPECT_EQ(error, no_digit);
  EXPECT_EQ(end, text);
}

TEST(MyStrtoll10, WithoutADigitEverythingIsGivenBack) {
  const std::string texts[] = {
      " ",
      "\t",
      " \t ",
      "-",
      "+",
      " -",
      "\t+",
      "--",
      "++",
      "+-",
      "-+",
      "--1",
      "++1",
      "+-1",
      "-+1",
      "- 1",
      "+ 1",
      "-\t1",
      "a",
      "a1",
      "-a",
      "+a1",
      " a",
      ".5",
      "-.5",
      ",1",
      "(1)",
      "\"1\"",
      "KZ_MODE",
      "-/",
      "/",
      ":",
      "+:",
      "*",
      "\xB2",
      "\xA0"
      "1",
  };
  for (const std::string &text : texts) expect_no_number(text);
  expect_no_number(std::string(100000, ' '));
}

// Only spaces and tabs are skipped: other white space is no part of a number.
TEST(MyStrtoll10, OtherWhiteSpaceIsNotSkipped) {
  for (const std::string &text : {"\n1"s, "\r1"s, "\v1"s, "\f1"s, " \n1"s, "-\n1"s, "\0001"s})
    expect_no_number(text);
}

TEST(MyStrtoll10, StopsAtTheFirstOtherCharacter) {
  for (int c = 0; c < 256; ++c) {
    if (c >= '0' && c <= '9') continue;
    const std::string rest = {static_cast<char>(c), '7'};
    SCOPED_TRACE("character " + std::to_string(c));
    EXPECT_EQ(convert("12" + rest), (Conversion{12, converted, 2}));
    EXPECT_EQ(convert("-12" + rest), (Conversion{-12, negative, 3}));
    EXPECT_EQ(convert(" +12" + rest), (Conversion{12, converted, 4}));
  }
}

TEST(MyStrtoll10, OtherNotationsAreCutShort) {
  EXPECT_EQ(convert("0x10"), (Conversion{0, converted, 1}));
  EXPECT_EQ(convert("1.5"), (Conversion{1, converted, 1}));
  EXPECT_EQ(convert("1e3"), (Conversion{1, converted, 1}));
  EXPECT_EQ(convert("1,000"), (Conversion{1, converted, 1}));
  EXPECT_EQ(convert("-0x10"), (Conversion{0, negative, 2}));
  EXPECT_EQ(convert("010"), (Conversion{10, converted, 3}));
}

TEST(MyStrtoll10, DigitsAfterTheRangeAreNotRead) {
  char text[] = "  -18446744073709551616";
  for (std::size_t length = 0; length < sizeof text; ++length) {
    SCOPED_TRACE(length);
    char *end = text + length;
    int error = not_written;
    const sb8 result = my_strtoll10(text, &end, &error);
    EXPECT_EQ((Conversion{result, error, end - text}), convert({text, length}));
  }
  char *end = text + 6;
  int error = not_written;
  EXPECT_EQ(my_strtoll10(text, &end, &error), -184);
  EXPECT_EQ(error, negative);
  EXPECT_EQ(end, text + 6);
}

TEST(MyStrtoll10, OverflowUsesAllDigits) {
  for (const std::size_t count : {20u, 21u, 39u, 40u, 100u, 1000000u}) {
    const std::string digits(count, '9');
    expect_number(digits, -1, out_of_range);
    expect_number("+" + digits, -1, out_of_range);
    expect_number("-" + digits, smallest, out_of_range);
    expect_number(" \t" + digits, -1, out_of_range);
  }
}

// Every digit after an overflow leaves it an overflow, zeros too.
TEST(MyStrtoll10, OverflowIsNotForgotten) {
  const std::string over = "18446744073709551616";
  for (std::size_t count = 1; count <= 200; ++count) {
    expect_number(over + std::string(count, '0'), -1, out_of_range);
    expect_number("-" + over + std::string(count, '0'), smallest, out_of_range);
  }
}

TEST(MyStrtoll10, TextIsLeftAlone) {
  char text[] = " -12x";
  char *end = text + 5;
  int error = not_written;
  my_strtoll10(text, &end, &error);
  EXPECT_STREQ(text, " -12x");
  EXPECT_EQ(end, text + 4);
}

// The conversion once more, by comparing digit strings instead of computing.
Conversion model(const std::string &text) {
  std::size_t at = 0;
  while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
  const bool minus = at < text.size() && text[at] == '-';
  if (minus || (at < text.size() && text[at] == '+')) ++at;
  std::size_t stop = at;
  while (stop < text.size() && text[stop] >= '0' && text[stop] <= '9') ++stop;
  if (stop == at) return nothing;
  while (at + 1 < stop && text[at] == '0') ++at;
  const std::string digits = text.substr(at, stop - at);
  const std::string limit = minus ? "9223372036854775808" : "18446744073709551615";
  const auto used = static_cast<std::ptrdiff_t>(stop);
  if (digits.size() > limit.size() || (digits.size() == limit.size() && digits > limit))
    return {minus ? smallest : -1, out_of_range, used};
  const std::uint64_t number = std::stoull(digits);
  return {static_cast<sb8>(minus ? 0 - number : number), minus ? negative : converted, used};
}

TEST(MyStrtoll10, EveryShortText) {
  const std::string alphabet = " \t-+079a\0"s;
  std::vector<std::string> texts = {""};
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::string text = texts[i];
    ASSERT_EQ(convert(text), model(text)) << shown(text);
    if (text.size() == 4) continue;
    for (const char c : alphabet) texts.push_back(text + c);
  }
  EXPECT_EQ(texts.size(), 1u + 9 + 81 + 729 + 6561);
}

// A number near one of the limits, or any other, with blanks, sign and rest.
std::string random_text(std::mt19937_64 &random) {
  static const std::string before[] = {"", "", " ", "\t ", "-", "-", "+", " -", "\t+"};
  static const std::string starts[] = {"",
                                       "",
                                       "0",
                                       "000",
                                       "1",
                                       "9223372036854775",
                                       "184467440737095",
                                       "1844674407370955161",
                                       "922337203685477580"};
  static const std::string after[] = {"", "", " ", "x", "-1"};
  std::string text = before[random() % 9] + starts[random() % 9];
  for (std::uint64_t count = random() % 24; count > 0; --count)
    text += static_cast<char>('0' + random() % 10);
  return text + after[random() % 5];
}

TEST(MyStrtoll10, RandomNumbers) {
  constexpr std::uint64_t seed = 20;
  std::mt19937_64 random(seed);
  for (int i = 0; i < 100000; ++i) {
    const std::string text = random_text(random);
    ASSERT_EQ(convert(text), model(text)) << shown(text) << ", seed " << seed << ", row " << i;
  }
}

}  // namespace
