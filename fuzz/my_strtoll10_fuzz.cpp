// The number conversion, beside a plain one.
//
//   input := text
#include "kzoci/platform/my_strtoll10.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "fuzz/support/check.h"
#include "fuzz/support/input.h"
#include "fuzz/support/target.h"

namespace {

// What a sb8's smallest number is without its sign.
constexpr std::uint64_t largest_negated = std::uint64_t{1} << 63;

struct Conversion {
  sb8 number;
  int error;
  std::size_t used;

  bool operator==(const Conversion &other) const = default;
};

Conversion convert_plainly(std::string_view text) {
  const std::size_t start = std::min(text.find_first_not_of(" \t"), text.size());
  const bool has_sign = start < text.size() && (text[start] == '-' || text[start] == '+');
  const bool negative = has_sign && text[start] == '-';
  const std::size_t first_digit = start + (has_sign ? 1 : 0);
  const std::size_t end = std::min(text.find_first_not_of("0123456789", first_digit), text.size());
  if (end == first_digit) return {0, 33, 0};

  std::uint64_t number = 0;
  bool too_large = false;
  for (const char c : text.substr(first_digit, end - first_digit)) {
    too_large |= __builtin_mul_overflow(number, 10, &number);
    too_large |= __builtin_add_overflow(number, c - '0', &number);
  }
  if (!negative)
    return too_large ? Conversion{-1, 34, end} : Conversion{static_cast<sb8>(number), 0, end};
  if (too_large || number > largest_negated) return {std::numeric_limits<sb8>::min(), 34, end};
  return {static_cast<sb8>(0 - number), -1, end};
}

Conversion convert(const fuzz::HeapText &text) {
  char *end = text.data() + text.size();
  int error = 7;
  const sb8 number = my_strtoll10(text.data(), &end, &error);
  return {number, error, static_cast<std::size_t>(end - text.data())};
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const fuzz::HeapText text(fuzz::Input(data, size).rest());
  const Conversion expected = convert_plainly(text.view());
  const Conversion got = convert(text);
  fuzz::check(got == expected, "%lld, error %d, %zu used; should be %lld, error %d, %zu used",
              static_cast<long long>(got.number), got.error, got.used,
              static_cast<long long>(expected.number), expected.error, expected.used);
  return 0;
}
