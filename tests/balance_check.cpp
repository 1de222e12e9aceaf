// The fast searches for a closing parenthesis against the plain one, over every
// arrangement of a few parentheses and over random slices. A program of its own, built by every
// compiler and at every optimisation that users build with: what it checks has been miscompiled
// before.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>

#include "kzoci/oci_tnsname/balance.h"

namespace {

using Search = const char *(*)(const char *, const char *, sb8 &);

struct Case {
  std::string text;
  sb8 depth;
};

struct Answer {
  std::ptrdiff_t closing;  // -1: not in the text
  sb8 depth;
};

// Over an exact-size copy, so that a read outside shows under a sanitizer.
Answer ask(Search search, const Case &one) {
  const std::unique_ptr<char[]> copy(new char[one.text.size()]);
  std::memcpy(copy.get(), one.text.data(), one.text.size());
  sb8 depth = one.depth;
  const char *const closing = search(copy.get(), copy.get() + one.text.size(), depth);
  return {closing == nullptr ? -1 : closing - copy.get(), depth};
}

// Parentheses in all densities, among every other byte value.
Case make_case(std::mt19937_64 &random) {
  Case one;
  const unsigned density = static_cast<unsigned>(random() % 5);
  const std::size_t length = random() % 200;
  for (std::size_t i = 0; i < length; ++i) {
    const bool parenthesis = random() % 4 < density;
    one.text += parenthesis ? (random() % 2 == 0 ? '(' : ')') : static_cast<char>(random() % 256);
  }
  constexpr sb8 depths[] = {1, 2, 3, 4, 8, 9, 31, 32, 33, 127, 128, 200, 255, 256, 1000, 1LL << 40};
  one.depth =
      random() % 4 == 0 ? depths[random() % std::size(depths)] : static_cast<sb8>(1 + random() % 6);
  return one;
}

void compare(const char *name, Search search, const Case &one, unsigned seed) {
  const Answer expected = ask(kzoci::tns::close_bytewise, one);
  const Answer answer = ask(search, one);
  // After a closing parenthesis the depth no longer means anything.
  const bool same_depth = expected.closing != -1 || answer.depth == expected.depth;
  if (answer.closing == expected.closing && same_depth) return;
  std::printf("%s, seed %u: closing %td for %td, depth %lld for %lld\n", name, seed, answer.closing,
              expected.closing, static_cast<long long>(answer.depth),
              static_cast<long long>(expected.depth));
  std::exit(1);
}

void compare_all(const Case &one, unsigned seed) {
  compare("words", kzoci::tns::close_by_words, one, seed);
#if defined(__SSE2__)
  compare("vectors", kzoci::tns::close_by_vectors, one, seed);
#endif
  compare("chosen", kzoci::tns::find_close, one, seed);
}

// Every arrangement of "(", ")" and other characters in eight places of a longer text,
// which lie within one vector of a block or in two.
void compare_arrangements() {
  constexpr std::size_t places = 8;
  for (const std::size_t first : {0u, 4u, 12u, 28u, 40u, 44u})
    for (unsigned arrangement = 0; arrangement < 6561; ++arrangement) {
      Case one = {std::string(60, 'x'), 1};
      for (unsigned i = 0, rest = arrangement; i < places; ++i, rest /= 3)
        one.text[first + i] = "x()"[rest % 3];
      for (one.depth = 1; one.depth <= 5; ++one.depth) compare_all(one, arrangement);
    }
}

}  // namespace

int main() {
  compare_arrangements();
  for (unsigned seed = 0; seed < 50; ++seed) {
    std::mt19937_64 random(seed);
    for (int i = 0; i < 2000; ++i) {
      compare_all(make_case(random), seed);
    }
  }
  return 0;
}
