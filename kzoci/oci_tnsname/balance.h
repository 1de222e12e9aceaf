// Finding where a parenthesis is closed, many characters at a time: most of the cost of
// a lookup. Comments and quotes are not recognised here: every parenthesis counts.
#pragma once

#include <bit>
#include <cstdint>

#include "kzoci/platform/types.h"
#include "word_of_memory.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kzoci::tns {

// The functions that take a range return the character after the ")" that takes the depth,
// which is above 0, to 0; null when the range ends first, and depth is then the depth at its
// end.

inline const char *close_bytewise(const char *at, const char *end, sb8 &depth) {
  for (; at != end; ++at) {
    if (*at == '(') ++depth;
    if (*at == ')' && --depth == 0) return at + 1;
  }
  return nullptr;
}

// Eight characters as a 64-bit word, the first one in the lowest byte.
//
// "(" and ")" differ in their lowest bit only, so that one comparison finds both.
// With 1 in the byte of each ")", multiplying by 0x0101... leaves in each byte the
// number of ")" up to it: sums of at most 8, which never carry into the next
// byte. The same for "(". The depth after byte i is depth + opened[i] - closed[i],
// so it is 0 first where closed[i] == depth + opened[i] first, which can only be
// when the word has at least depth ")".
inline const char *close_by_words(const char *at, const char *end, sb8 &depth) {
  for (; end - at >= 8; at += 8) {
    const std::uint64_t word = load_word(at);
    const std::uint64_t found = zero_bytes((word ^ each('(')) & each(0xFE));
    const std::uint64_t closed = (found & word) * each(1);
    const std::uint64_t opened = (found & ~word) * each(1);
    const auto closed_in_all = static_cast<sb8>(closed >> 56);
    if (depth <= closed_in_all) {
      const std::uint64_t ends =
          zero_bytes(closed ^ (opened + each(static_cast<std::uint64_t>(depth))));
      if (ends != 0) return at + std::countr_zero(ends) / 8 + 1;
    }
    depth += static_cast<sb8>(opened >> 56) - closed_in_all;
  }
  return close_bytewise(at, end, depth);
}

#if defined(__SSE2__)
// Where the parentheses of a block are, a bit for each of its characters.
struct Places {
  std::uint64_t opened;
  std::uint64_t closed;
};

inline std::uint64_t without_first(std::uint64_t places) { return places & (places - 1); }

// The end among these places, which have at least depth ")"; null when it is after them.
// Usually it is the depth-th ")". A "(" in front of that takes one ")" more: closed - 1 has all
// bits below the lowest one of closed.
inline const char *close_by_places(const char *at, Places places, sb8 depth) {
  for (; depth > 1; --depth) places.closed = without_first(places.closed);
  while (places.closed != 0) {
    if ((places.opened & (places.closed - 1)) == 0) return at + std::countr_zero(places.closed) + 1;
    places.opened = without_first(places.opened);
    places.closed = without_first(places.closed);
  }
  return nullptr;
}

// Sixteen characters.
struct Sixteen {
  __m128i characters;

  explicit Sixteen(const char *at)
      : characters(_mm_loadu_si128(reinterpret_cast<const __m128i *>(at))) {}

  std::uint64_t places_of(char c) const {
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(characters, _mm_set1_epi8(c))));
  }

  // The byte 0x40 for each "(", 0x41 for each ")", 0 for all others.
  __m128i weights() const {
    const __m128i but_lowest_bit = _mm_set1_epi8(static_cast<char>(0xFE));
    const __m128i found =
        _mm_cmpeq_epi8(_mm_and_si128(characters, but_lowest_bit), _mm_set1_epi8('('));
    return _mm_and_si128(found, _mm_add_epi8(characters, _mm_set1_epi8(0x40 - '(')));
  }
};

// Forty-eight characters at a time. The sum of their weights, of which a byte holds three,
// is 64 times the number of parentheses plus the number of ")". As above, the end can only
// be here when there are at least depth ")"; only then it is looked for.
inline const char *close_by_vectors(const char *at, const char *end, sb8 &depth) {
  constexpr int width = 48;
  for (auto left = end - at; left >= width; left -= width, at += width) {
    const Sixteen parts[] = {Sixteen(at), Sixteen(at + 16), Sixteen(at + 32)};
    const __m128i weights =
        _mm_add_epi8(_mm_add_epi8(parts[0].weights(), parts[1].weights()), parts[2].weights());
    const __m128i sums = _mm_sad_epu8(weights, _mm_setzero_si128());
    const auto sum = static_cast<unsigned>(
        _mm_cvtsi128_si32(_mm_add_epi32(sums, _mm_unpackhi_epi64(sums, sums))));
    const sb8 closed = sum % 64;
    if (depth <= closed) {
      const auto places_of = [&](char c) {
        return parts[0].places_of(c) | parts[1].places_of(c) << 16 | parts[2].places_of(c) << 32;
      };
      const char *const after_close = close_by_places(at, {places_of('('), places_of(')')}, depth);
      if (after_close != nullptr) return after_close;
    }
    depth += static_cast<sb8>(sum / 64) - 2 * closed;
  }
  return close_by_words(at, end, depth);
}
#endif

inline const char *find_close(const char *at, const char *end, sb8 &depth) {
#if defined(__SSE2__)
  return close_by_vectors(at, end, depth);
#else
  return close_by_words(at, end, depth);
#endif
}

}  // namespace kzoci::tns
