#include "kzoci/platform/my_strtoll10.h"

#include <cstdint>
#include <limits>

namespace {

constexpr int converted = 0;
constexpr int converted_negative = -1;
constexpr int no_digits = 33;     // the usual number of a domain error
constexpr int out_of_range = 34;  // the usual number of a range error

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t largest_negative = std::uint64_t{1} << 63;

bool is_digit(char c) { return c >= '0' && c <= '9'; }

struct Digits {
  std::uint64_t value = 0;
  bool overflow = false;
};

// Reads digits up to the first other character, also after an overflow.
Digits read_digits(const char *&at, const char *end) {
  Digits digits;
  for (; at != end && is_digit(*at); ++at) {
    const auto digit = static_cast<std::uint64_t>(*at - '0');
    digits.overflow = digits.overflow || digits.value > (largest - digit) / 10;
    digits.value = digits.value * 10 + digit;
  }
  return digits;
}

}  // namespace

sb8 my_strtoll10(const char *text, char **end, int *error) {
  const char *const text_end = *end;
  const char *at = text;
  while (at != text_end && (*at == ' ' || *at == '\t')) ++at;
  const bool negative = at != text_end && *at == '-';
  if (negative || (at != text_end && *at == '+')) ++at;

  const char *const first_digit = at;
  const Digits digits = read_digits(at, text_end);
  if (at == first_digit) {
    *end = const_cast<char *>(text);
    *error = no_digits;
    return 0;
  }
  *end = const_cast<char *>(at);
  if (digits.overflow || (negative && digits.value > largest_negative)) {
    *error = out_of_range;
    return negative ? std::numeric_limits<sb8>::min() : -1;
  }
  *error = negative ? converted_negative : converted;
  return static_cast<sb8>(negative ? 0 - digits.value : digits.value);
}
