#include "model_numbers.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string>

namespace model {
namespace {

// Whether these digits stand for more than the limit, both without leading zeros.
bool above(const std::string &digits, const std::string &limit) {
  return digits.size() != limit.size() ? digits.size() > limit.size() : digits > limit;
}

std::string without_leading_zeros(std::string_view digits) {
  const std::size_t first = digits.find_first_not_of('0');
  return std::string(digits.substr(std::min(first, digits.size())));
}

}  // namespace

Number number_of(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
  const bool negative = at < text.size() && text[at] == '-';
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
  const std::size_t first = at;
  while (at < text.size() && text[at] >= '0' && text[at] <= '9') ++at;
  if (at == first) return {0, false};
  const std::string digits = without_leading_zeros(text.substr(first, at - first));
  if (above(digits, negative ? "9223372036854775808" : "18446744073709551615"))
    return {negative ? std::numeric_limits<sb8>::min() : -1, false};
  const unsigned long long magnitude = std::strtoull(digits.c_str(), nullptr, 10);
  return {static_cast<sb8>(negative ? 0 - magnitude : magnitude), at == text.size()};
}

}  // namespace model
