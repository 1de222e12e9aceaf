// Eight characters at once, as a 64-bit word with the first one in the lowest byte.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace kzoci::tns {

constexpr std::uint64_t in_memory_order(std::uint64_t word) {
  return std::endian::native == std::endian::big ? __builtin_bswap64(word) : word;
}

inline std::uint64_t load_word(const char *from) {
  std::uint64_t word = 0;
  std::memcpy(&word, from, sizeof word);
  return in_memory_order(word);
}

inline void store_word(char *to, std::uint64_t word) {
  word = in_memory_order(word);
  std::memcpy(to, &word, sizeof word);
}

// The first count characters of one word, the others of another.
constexpr std::uint64_t blend(std::uint64_t first, std::uint64_t others, unsigned count) {
  const std::uint64_t after = count < 8 ? ~std::uint64_t{0} << (8 * count) : 0;
  return (first & ~after) | (others & after);
}

// The word with this byte in all eight places.
constexpr std::uint64_t each(std::uint64_t byte) { return byte * 0x0101010101010101u; }

// 1 in each byte that is zero in the word, 0 in every other; no byte's result
// depends on its neighbours.
constexpr std::uint64_t zero_bytes(std::uint64_t word) {
  const std::uint64_t low = each(0x7F);
  return ~(((word & low) + low) | word | low) >> 7;
}

}  // namespace kzoci::tns
