// What a lookup makes of an entry.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kztns {

enum class Verdict : std::uint8_t {
  ok,
  refused,      // found, but cannot be built
  unreachable,  // no lookup comes so far
  shadowed,     // an earlier entry has its name
  reserved      // built as system variables
};

constexpr std::size_t verdict_count = static_cast<std::size_t>(Verdict::reserved) + 1;

std::string_view name_of(Verdict verdict);
// What it means, in the words that editors and the page show.
std::string_view meaning_of(Verdict verdict);

}  // namespace kztns
