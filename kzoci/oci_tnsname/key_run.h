// Moving a run of ordinary key characters, many at a time: most of the cost of reading
// a token.
//
// A block writes its whole width at once: first the characters that are certainly
// ordinary, from '*' to 0x7F except "=", then what the target held there before, since
// a shorter key leaves the end of the one before it.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "kzoci/platform/types.h"
#include "word_of_memory.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kzoci::tns {

// Looking at seven bits, bit 7 of a byte of from_star is set from '*' on, that of
// other_than_equal for any byte but "=".
struct WordBlock {
  static constexpr ub4 width = 8;

  static ub4 ordinary(const char *from) {
    const std::uint64_t word = load_word(from);
    const std::uint64_t from_star = (word & each(0x7F)) + each(0x80 - '*');
    const std::uint64_t other_than_equal = ((word ^ each('=')) & each(0x7F)) + each(0x7F);
    const std::uint64_t ordinary_bytes = from_star & other_than_equal & ~word & each(0x80);
    return static_cast<ub4>(std::countr_zero(ordinary_bytes ^ each(0x80))) / 8;
  }

  static void move(char *to, const char *from, ub4 count) {
    store_word(to, blend(load_word(from), load_word(to), count));
  }
};

#if defined(__SSE2__)
// Compared as signed numbers, bytes above 0x7F are below '*'.
struct VectorBlock {
  static constexpr ub4 width = 16;

  static ub4 ordinary(const char *from) {
    const __m128i characters = load(from);
    const __m128i from_star = _mm_cmpgt_epi8(characters, _mm_set1_epi8('*' - 1));
    const __m128i equal = _mm_cmpeq_epi8(characters, _mm_set1_epi8('='));
    const int others = _mm_movemask_epi8(_mm_andnot_si128(equal, from_star)) ^ 0xFFFF;
    return static_cast<ub4>(std::countr_zero(static_cast<unsigned>(others) | 0x10000));
  }

  static void move(char *to, const char *from, ub4 count) {
    const __m128i taken = load(ones_and_zeros + width - count);
    const __m128i moved =
        _mm_or_si128(_mm_and_si128(taken, load(from)), _mm_andnot_si128(taken, load(to)));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(to), moved);
  }

 private:
  // All bits set in the first half: what is loaded from a place in it selects as many
  // characters as are left of that half.
  static constexpr char ones_and_zeros[2 * width + 1] =
      "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF";

  static __m128i load(const char *from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
  }
};
using KeyBlock = VectorBlock;
#else
using KeyBlock = WordBlock;
#endif

// Moves characters from `from` to `to` up to the first that is not ordinary, as long
// as both sides have room for a block; returns how many. Ordinary characters may be
// left after them.
template <class Block>
ub4 move_key_run(char *to, ub4 to_room, const char *from, ub4 from_room) {
  ub4 moved = 0;
  for (ub4 count = Block::width; count == Block::width; moved += count) {
    if (moved + Block::width > std::min(to_room, from_room)) break;
    count = Block::ordinary(from + moved);
    Block::move(to + moved, from + moved, count);
  }
  return moved;
}

}  // namespace kzoci::tns
