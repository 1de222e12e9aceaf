// Setting a record to zero.
//
// By the library's memset: where compilers know a size, or its bound, they put a string
// instruction in its place, which takes longer to begin than most records take. Few bytes
// are a few stores.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace kzoci::tns {

// In pieces, since the library takes that instruction, too, for thousands of bytes.
[[gnu::noinline]] inline void set_much_to_zero(void *memory, std::size_t size) {
  constexpr std::size_t largest_piece = 1024;
  for (char *at = static_cast<char *>(memory); size > 0;) {
    std::size_t piece = std::min(size, largest_piece);
    asm("" : "+r"(piece));  // hides the bound from the compiler
    std::memset(at, 0, piece);
    at += piece;
    size -= piece;
  }
}

inline void set_to_zero(void *memory, std::size_t size) {
  constexpr std::size_t few_bytes = 64;
  if (size <= few_bytes)
    std::memset(memory, 0, size);
  else
    set_much_to_zero(memory, size);
}

}  // namespace kzoci::tns
