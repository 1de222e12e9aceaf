// Characters of UTF-8.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace kztns {

// Whether a byte continues a character.
inline bool is_continuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Bytes of the character that begins a text that is not empty; 0 when none does.
std::size_t character_length(std::string_view text);

// The code point of a character.
std::uint32_t code_point(std::string_view character);

bool is_utf8(std::string_view text);

// Of a piece that is cut out of a text, the bytes at its beginning, or at its end, that
// are left of a character.
std::size_t cut_begin(std::string_view text);
std::size_t cut_end(std::string_view text);

// Both ends belong to it.
struct CharacterRange {
  std::uint32_t first;
  std::uint32_t last;
};

template <std::size_t count>
bool is_in(std::uint32_t code, const CharacterRange (&ranges)[count]) {
  return std::any_of(std::begin(ranges), std::end(ranges), [&](const CharacterRange &range) {
    return code >= range.first && code <= range.last;
  });
}

}  // namespace kztns
