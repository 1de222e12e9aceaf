// What a service holds, as one number: every field of all its public records.
#pragma once

#include <cstdint>
#include <string_view>

#include "kzoci/oci_tnsname.h"

namespace kztns {

// FNV-1a, of bytes and numbers.
class Digest {
 public:
  void add(std::string_view bytes) {
    for (const char c : bytes) hash_ = (hash_ ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    add(bytes.size());
  }
  void add(std::uint64_t number) { hash_ = ((hash_ >> 29) ^ hash_ ^ number) * 0x100000001B3; }
  std::uint64_t value() const { return hash_; }

 private:
  std::uint64_t hash_ = 0xCBF29CE484222325;
};

// Equal for two services whose trees are equal.
std::uint64_t tree_digest(KZCITnsService &service);

}  // namespace kztns
