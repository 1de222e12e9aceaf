#pragma once

#include <cstdint>

namespace kztns {

// A place in a text, counted in bytes from 0.
using Offset = std::uint32_t;

}  // namespace kztns
