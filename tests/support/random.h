// A seeded source of choices that gives the same sequence on every platform.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace support {

class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() {
    state_ += 0x9E3779B97F4A7C15u;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9u;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
    return mixed ^ (mixed >> 31);
  }

  // A number from 0 to n - 1; n is not 0.
  std::size_t below(std::size_t n) { return static_cast<std::size_t>(next() % n); }

  // A number from low to high, both included.
  std::size_t between(std::size_t low, std::size_t high) { return low + below(high - low + 1); }

  bool one_in(std::size_t n) { return below(n) == 0; }

  template <class Row>
  const auto &pick(const Row &row) {
    return row[below(std::size(row))];
  }

 private:
  std::uint64_t state_;
};

}  // namespace support
