#include "text/width.h"

#include <algorithm>

#include "text/utf8.h"

namespace kztns {
namespace {

// Blocks of characters of two columns. Single symbols among narrow ones are left out:
// terminals do not agree on them.
constexpr CharacterRange wide[] = {
    {0x1100, 0x115F},    // initial letters of Hangul
    {0x2E80, 0x303E},    // radicals, ideographic punctuation
    {0x3041, 0xA4CF},    // kana, Bopomofo, ideographs, Yi
    {0xA960, 0xA97C},    // more initial letters of Hangul
    {0xAC00, 0xD7A3},    // syllables of Hangul
    {0xF900, 0xFAFF},    // compatibility ideographs
    {0xFE30, 0xFE6F},    // vertical and small forms
    {0xFF01, 0xFF60},    // full-width forms
    {0xFFE0, 0xFFE6},    // full-width signs
    {0x1F300, 0x1F64F},  // pictures, faces
    {0x1F680, 0x1F6FF},  // vehicles, signs
    {0x1F900, 0x1F9FF},  // more pictures
    {0x20000, 0x3FFFD},  // more ideographs
};

// Marks that stand over, under or around the letter before them.
constexpr CharacterRange combining[] = {
    {0x0300, 0x036F},    // of Latin, Greek and others
    {0x0483, 0x0489},    // of Cyrillic
    {0x0591, 0x05BD},    // of Hebrew
    {0x0610, 0x061A},    // of Arabic
    {0x064B, 0x065F},    // of Arabic
    {0x093C, 0x093C},    // of Devanagari
    {0x0941, 0x0948},    // of Devanagari
    {0x094D, 0x094D},    // of Devanagari
    {0x0E31, 0x0E31},    // of Thai
    {0x0E34, 0x0E3A},    // of Thai
    {0x0E47, 0x0E4E},    // of Thai
    {0x1AB0, 0x1AFF},    // extended
    {0x1DC0, 0x1DFF},    // supplement
    {0x20D0, 0x20F0},    // for symbols
    {0x302A, 0x302D},    // of ideographs
    {0x3099, 0x309A},    // of kana
    {0xFE00, 0xFE0F},    // variants of the letter before
    {0xFE20, 0xFE2F},    // halves
    {0xE0100, 0xE01EF},  // more variants
};

std::size_t columns_of(std::uint32_t code) {
  if (is_in(code, combining)) return 0;
  return is_in(code, wide) ? 2 : 1;
}

}  // namespace

std::size_t width_of(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const std::size_t length = character_length(text);
    width += length == 0 ? 1 : columns_of(code_point(text.substr(0, length)));
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return width;
}

}  // namespace kztns
