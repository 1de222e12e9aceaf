// The number conversion, beside a plain one with a wider type.
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

__extension__ using wide = __int128;

constexpr wide largest_unsigned = std::numeric_limits<std::uint64_t>::max();
constexpr wide smallest = std::numeric_limits<sb8>::min();

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

  wide number = 0;
  for (const char c : text.substr(first_digit, end - first_digit))
    number = std::min(number * 10 + (c - '0'), largest_unsigned + 1);
  if (negative) number = -number;
  if (number > largest_unsigned) return {-1, 34, end};
  if (number < smallest) return {std::numeric_limits<sb8>::min(), 34, end};
  return {static_cast<sb8>(number), negative ? -1 : 0, end};
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
