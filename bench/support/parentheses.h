// Counting the parentheses of a text: the least that passing over entries needs, and
// so a limit to measure a lookup against.
#pragma once

#include <cstddef>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace bench {

struct Parentheses {
  std::size_t opening = 0;
  std::size_t closing = 0;

  Parentheses &operator+=(const Parentheses &more) {
    opening += more.opening;
    closing += more.closing;
    return *this;
  }
};

inline Parentheses count_parentheses_one_by_one(std::string_view text) {
  Parentheses count;
  for (const char c : text) {
    count.opening += c == '(';
    count.closing += c == ')';
  }
  return count;
}

#if defined(__SSE2__)

// Sixteen characters at a time. A comparison gives -1 for each match, so the
// bytes of a counter go up by subtracting it; before one can overflow, after 255
// rounds, they are added up.
inline Parentheses count_parentheses(std::string_view text) {
  constexpr std::size_t width = sizeof(__m128i);
  const __m128i opening = _mm_set1_epi8('(');
  const __m128i closing = _mm_set1_epi8(')');
  const auto sum = [](__m128i bytes) {
    const __m128i sums = _mm_sad_epu8(bytes, _mm_setzero_si128());
    return static_cast<std::size_t>(_mm_cvtsi128_si32(sums)) +
           static_cast<std::size_t>(_mm_extract_epi16(sums, 4));
  };
  Parentheses count;
  while (text.size() >= width) {
    __m128i opened = _mm_setzero_si128();
    __m128i closed = _mm_setzero_si128();
    std::size_t rounds = text.size() / width;
    if (rounds > 255) rounds = 255;
    for (std::size_t i = 0; i < rounds; ++i) {
      const __m128i piece =
          _mm_loadu_si128(reinterpret_cast<const __m128i *>(text.data() + i * width));
      opened = _mm_sub_epi8(opened, _mm_cmpeq_epi8(piece, opening));
      closed = _mm_sub_epi8(closed, _mm_cmpeq_epi8(piece, closing));
    }
    count += {sum(opened), sum(closed)};
    text.remove_prefix(rounds * width);
  }
  return count += count_parentheses_one_by_one(text);
}

#else

inline Parentheses count_parentheses(std::string_view text) {
  return count_parentheses_one_by_one(text);
}

#endif

}  // namespace bench
