// The fast ways to move a run of key characters against the plain one, over random
// slices. A program of its own, built by every compiler and at every optimisation
// that users build with.
#include "kzoci/oci_tnsname/key_run.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>

namespace {

constexpr ub4 key_room = 256;

struct Case {
  std::string text;  // what is read
  std::string key;   // what an older key left, and room for the new one
  ub4 length = 0;    // characters of the new one that are there already
};

bool is_ordinary(char c) { return c >= '*' && c != '=' && static_cast<unsigned char>(c) < 0x80; }

// Key characters in all densities, among every other byte value.
Case make_case(std::mt19937_64 &random) {
  Case one;
  const unsigned density = static_cast<unsigned>(1 + random() % 60);
  const std::size_t size = random() % 300;
  for (std::size_t i = 0; i < size; ++i)
    one.text += static_cast<char>(random() % density == 0 ? random() % 256 : '*' + random() % 86);
  for (ub4 i = 0; i < key_room; ++i) one.key += static_cast<char>(random() % 256);
  one.length = static_cast<ub4>(random() % 3 == 0 ? random() % (key_room + 1) : 0);
  return one;
}

[[noreturn]] void fail(const char *name, unsigned seed, const char *what) {
  std::printf("%s, seed %u: %s\n", name, seed, what);
  std::exit(1);
}

template <class Block>
void check(const char *name, const Case &one, unsigned seed) {
  // Exact-size copies, so that an access outside shows under a sanitizer.
  const std::unique_ptr<char[]> text(new char[one.text.size()]);
  const std::unique_ptr<char[]> key(new char[key_room]);
  std::memcpy(text.get(), one.text.data(), one.text.size());
  std::memcpy(key.get(), one.key.data(), key_room);
  const ub4 room = key_room - one.length;
  const auto size = static_cast<ub4>(one.text.size());
  const ub4 moved = kzoci::tns::move_key_run<Block>(key.get() + one.length, room, text.get(), size);
  ub4 run = 0;
  while (run < std::min(room, size) && is_ordinary(one.text[run])) ++run;
  if (moved > run) fail(name, seed, "moved more than ordinary characters");
  if (run - moved >= Block::width) fail(name, seed, "left a block of ordinary characters");
  std::string expected = one.key;
  expected.replace(one.length, moved, one.text, 0, moved);
  if (expected != std::string(key.get(), key_room)) fail(name, seed, "wrong characters in the key");
  if (std::string(text.get(), size) != one.text) fail(name, seed, "changed what it reads");
}

}  // namespace

int main() {
  for (unsigned seed = 0; seed < 50; ++seed) {
    std::mt19937_64 random(seed);
    for (int i = 0; i < 2000; ++i) {
      const Case one = make_case(random);
      check<kzoci::tns::WordBlock>("words", one, seed);
      check<kzoci::tns::KeyBlock>("chosen", one, seed);
    }
  }
  return 0;
}
