// The values that the keys of one place give a record, by name.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "keys.h"

namespace support {

inline sb8 number_in(const void *record, const Field &field) {
  const char *const at = static_cast<const char *>(record) + field.at;
  const auto load = [at](auto number) {
    std::memcpy(&number, at, sizeof number);
    return static_cast<sb8>(number);
  };
  if (field.size == sizeof(sb8)) return load(sb8{});
  return field.is_signed ? load(sb4{}) : load(ub4{});
}

inline std::string text_in(const void *record, const Field &field) {
  const char *const base = static_cast<const char *>(record);
  ub4 length = 0;
  std::memcpy(&length, base + field.length_at, sizeof length);
  return {base + field.at, length};
}

class Values {
 public:
  // The defaults.
  explicit Values(Place place) : keys_(keys_of(place)), values_(keys_.size()) {
    for (std::size_t i = 0; i < keys_.size(); ++i) values_[i].number = keys_[i].by_default;
  }

  // What a record of the place holds.
  Values(Place place, const void *record) : Values(place) {
    for (std::size_t i = 0; i < keys_.size(); ++i) {
      const Key &key = keys_[i];
      if (key.field.size == 0) continue;
      if (key.takes == Takes::text)
        values_[i].text = text_in(record, key.field);
      else
        values_[i].number = number_in(record, key.field);
    }
  }

  sb8 &number(const Key &key) { return values_[first_of(key)].number; }
  std::string &text(const Key &key) { return values_[first_of(key)].text; }

  // " WORD=value" for each value that is not its default.
  void append_to(std::string &out) const {
    for (std::size_t i = 0; i < keys_.size(); ++i) {
      const Key &key = keys_[i];
      const auto &[number, text] = values_[i];
      if (key.field.size == 0 || first_of(key) != i) continue;
      if (number == key.by_default && text.empty()) continue;
      out.append(1, ' ').append(key.word).append(1, '=');
      out += key.takes == Takes::text ? text : std::to_string(number);
    }
  }

 private:
  struct Value {
    sb8 number = 0;
    std::string text = {};
  };

  // Words that mean the same share the value of the first one.
  std::size_t first_of(const Key &key) const {
    std::size_t i = 0;
    while (&keys_[i] != &key && (keys_[i].field.size == 0 || keys_[i].field.at != key.field.at))
      ++i;
    return i;
  }

  std::span<const Key> keys_;
  std::vector<Value> values_;
};

}  // namespace support
