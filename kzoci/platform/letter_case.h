// Comparing without regard to letter case: ASCII's letters, whatever the locale. The
// C library's comparison follows the locale, in some of which "i" is no small "I".
#pragma once

#include <cstddef>

namespace kzoci {

constexpr char capital(char c) {
  return 'a' <= c && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// Whether two texts have the same first characters, as many as length says or up to
// a zero byte in both.
constexpr bool is_same_text(const char *left, const char *right, std::size_t length) {
  for (std::size_t i = 0; i < length; ++i) {
    if (capital(left[i]) != capital(right[i])) return false;
    if (left[i] == '\0') return true;
  }
  return true;
}

}  // namespace kzoci
