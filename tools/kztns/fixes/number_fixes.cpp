#include "fixes/number_fixes.h"

#include <chrono>
#include <string>

#include "text/characters.h"
#include "text/spelling.h"

namespace kztns {
namespace {

using std::chrono::milliseconds;

// Zero for a word that is no unit of time.
milliseconds unit_named(std::string_view word) {
  if (is_one_of(word, {"ms", "msec"})) return milliseconds(1);
  if (is_one_of(word, {"s", "sec", "secs", "second", "seconds"})) return std::chrono::seconds(1);
  if (is_one_of(word, {"m", "min"})) return std::chrono::minutes(1);
  if (is_one_of(word, {"h"})) return std::chrono::hours(1);
  return {};
}

// The unit of a key's number; zero where it is that of the connection layer, which nobody knows
// here.
milliseconds unit_of(const Key &key) {
  return key.type == LB_SLOWSQL_FLUSH_SECOND ? std::chrono::seconds(1) : milliseconds();
}

// A number of one unit as one of another; empty where that is no whole number.
std::string converted(std::string_view digits, milliseconds from, milliseconds to) {
  constexpr std::size_t most_digits = 9;  // longer ones might not fit
  if (to == milliseconds() || digits.size() > most_digits) return {};
  const milliseconds time = std::stol(std::string(digits)) * from;
  return time % to == milliseconds() ? std::to_string(time / to) : "";
}

// The digits that a value begins with, and a sign before them; empty where it begins otherwise.
std::string_view number_before_unit(std::string_view value) {
  const std::size_t sign = value.starts_with('-') || value.starts_with('+') ? 1 : 0;
  std::size_t end = sign;
  while (end < value.size() && is_digit(value[end])) ++end;
  return end > sign ? value.substr(0, end) : std::string_view();
}

}  // namespace

bool has_unit(std::string_view value) {
  const std::string_view digits = number_before_unit(value);
  return !digits.empty() && unit_named(trimmed(value.substr(digits.size()))) != milliseconds();
}

Fix fix_of_number(const Key &key, std::string_view text, Span span) {
  const std::string_view value = trimmed(text);
  const std::string digits(number_before_unit(value));
  if (digits.empty()) return {};
  const std::string_view unit = trimmed(value.substr(digits.size()));
  if (unit.empty() && value.size() < text.size()) return safe_fix({{span.begin, span.end, digits}});
  std::string number = converted(digits, unit_named(unit), unit_of(key));
  if (unit_named(unit) == milliseconds() || number.empty()) return {};
  return unsafe_fix({{span.begin, span.end, std::move(number)}});
}

}  // namespace kztns
