#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace kztns {

// A place in a text, counted in bytes from 0.
using Offset = std::uint32_t;

// What stands from one place up to another.
struct Span {
  Offset begin = 0;
  Offset end = 0;

  bool empty() const { return begin >= end; }
};

// Of the line that a place is on: its line feed, or the end of the text.
inline Offset end_of_line(std::string_view text, Offset from) {
  return static_cast<Offset>(std::min(text.find('\n', from), text.size()));
}

}  // namespace kztns
