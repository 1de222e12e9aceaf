#include "text/spelling.h"

#include <algorithm>
#include <array>

namespace kztns {
namespace {

// Longer words are near no key word.
constexpr std::size_t longest = 24;

using Row = std::array<std::size_t, longest + 1>;

// One row of the table of distances of the words' beginnings.
Row next_row(std::string_view left, std::string_view right, std::size_t i, const Row &before,
             const Row &two_before) {
  Row row = {};
  row[0] = i + 1;
  for (std::size_t j = 0; j < right.size(); ++j) {
    const std::size_t other = lower_case(left[i]) == lower_case(right[j]) ? 0 : 1;
    row[j + 1] = std::min({before[j + 1] + 1, row[j] + 1, before[j] + other});
    const bool swapped = i > 0 && j > 0 && lower_case(left[i]) == lower_case(right[j - 1]) &&
                         lower_case(left[i - 1]) == lower_case(right[j]);
    if (swapped) row[j + 1] = std::min(row[j + 1], two_before[j - 1] + 1);
  }
  return row;
}

// How many slips are forgiven.
std::size_t slips(std::string_view word) { return word.size() <= 4 ? 1 : 2; }

}  // namespace

std::size_t edit_distance(std::string_view left, std::string_view right, std::size_t limit) {
  const std::size_t shorter = std::min(left.size(), right.size());
  const std::size_t longer = std::max(left.size(), right.size());
  if (longer > longest || longer - shorter > limit) return limit + 1;
  Row before = {};
  Row two_before = {};
  for (std::size_t j = 0; j <= right.size(); ++j) before[j] = j;
  for (std::size_t i = 0; i < left.size(); ++i) {
    const Row row = next_row(left, right, i, before, two_before);
    two_before = before;
    before = row;
  }
  return std::min(before[right.size()], limit + 1);
}

bool equal_but_for_case(std::string_view left, std::string_view right) {
  return left.size() == right.size() &&
         std::equal(left.begin(), left.end(), right.begin(),
                    [](char a, char b) { return lower_case(a) == lower_case(b); });
}

bool is_one_of(std::string_view word, std::initializer_list<std::string_view> words) {
  return std::any_of(words.begin(), words.end(),
                     [&](std::string_view other) { return equal_but_for_case(word, other); });
}

std::string_view in_foreign_quotes(std::string_view text) {
  constexpr std::string_view pairs[][2] = {
      {"'", "'"}, {"\u2018", "\u2019"}, {"\u201C", "\u201D"}, {"\u201E", "\u201C"}};
  for (const auto &[open, close] : pairs)
    if (text.size() > open.size() + close.size() && text.starts_with(open) && text.ends_with(close))
      return text.substr(open.size(), text.size() - open.size() - close.size());
  return {};
}

std::string_view longer_or_shorter_word(std::string_view word,
                                        const std::vector<std::string_view> &words) {
  constexpr std::size_t shortest = 4;
  std::string_view found;
  for (const std::string_view other : words) {
    const std::size_t common = std::min(word.size(), other.size());
    const std::string_view rest = (word.size() > common ? word : other).substr(common);
    // Another part of a name makes another name: KZLB_FOO is no KZLB.
    if (common >= shortest && rest.find('_') == rest.npos &&
        (found.empty() || other.size() < found.size()) &&
        equal_but_for_case(word.substr(0, common), other.substr(0, common)))
      found = other;
  }
  return found;
}

std::string_view near_word(std::string_view word, const std::vector<std::string_view> &words) {
  std::size_t best = slips(word) + 1;
  std::string_view found;
  for (const std::string_view other : words) {
    const std::size_t distance = edit_distance(word, other, best);
    if (distance >= best) continue;
    best = distance;
    found = other;
  }
  return found;
}

}  // namespace kztns
