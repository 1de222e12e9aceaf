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

std::string_view name_of(Verdict verdict);
constexpr std::size_t verdict_count = 5;

}  // namespace kztns
