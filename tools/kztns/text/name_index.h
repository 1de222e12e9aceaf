// Finds the first entry of a name among millions, in little memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace kztns {

// Indices of entries by their names; entries are compared and hashed by the owner.
class NameIndex {
 public:
  static constexpr std::uint32_t none = UINT32_MAX;

  // The index that an equal name was given before; otherwise none, and the name
  // gets this index. is_equal(i) tells whether the name of index i is equal.
  template <class IsEqual>
  std::uint32_t find_or_add(std::size_t hash, std::uint32_t index, IsEqual is_equal) {
    if (count_ * 2 >= slots_.size()) grow();
    for (std::size_t at = hash & mask();; at = (at + 1) & mask()) {
      Slot &slot = slots_[at];
      if (slot.index == none) {
        slot = {index, static_cast<std::uint32_t>(hash)};
        ++count_;
        return none;
      }
      if (slot.hash == static_cast<std::uint32_t>(hash) && is_equal(slot.index)) return slot.index;
    }
  }

 private:
  struct Slot {
    std::uint32_t index = none;
    std::uint32_t hash = 0;
  };

  std::size_t mask() const { return slots_.size() - 1; }

  void grow() {
    std::vector<Slot> before(slots_.empty() ? 64 : slots_.size() * 2);
    before.swap(slots_);
    for (const Slot &slot : before) {
      if (slot.index == none) continue;
      std::size_t at = slot.hash & mask();
      while (slots_[at].index != none) at = (at + 1) & mask();
      slots_[at] = slot;
    }
  }

  std::vector<Slot> slots_;
  std::size_t count_ = 0;
};

// What a lookup compares of a name: its length, and its bytes up to a zero byte.
inline std::string_view compared_part(std::string_view name) {
  return name.substr(0, name.find('\0'));
}

inline std::size_t name_hash(std::string_view name) {
  const std::uint64_t hash = std::hash<std::string_view>{}(compared_part(name));
  return static_cast<std::size_t>(hash ^ (hash >> 32)) + name.size();
}

inline bool same_name(std::string_view left, std::string_view right) {
  return left.size() == right.size() && compared_part(left) == compared_part(right);
}

}  // namespace kztns
