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

inline std::string_view text_in(const void *record, const Field &field) {
  const char *const base = static_cast<const char *>(record);
  ub4 length = 0;
  std::memcpy(&length, base + field.length_at, sizeof length);
  return {base + field.at, length};
}

// Appends " WORD=value" for each value that is not its default.
template <class NumberOf, class TextOf>
void append_values(std::string &out, Place place, NumberOf number_of, TextOf text_of) {
  const std::span<const Key> rows = keys_of(place);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Key &key = rows[i];
    if (key.field.size == 0 || value_place(key) != i) continue;
    const bool is_text = key.takes == Takes::text;
    const sb8 number = is_text ? 0 : number_of(key);
    const std::string_view text = is_text ? text_of(key) : std::string_view();
    if (number == key.by_default && text.empty()) continue;
    out.append(1, ' ').append(key.word).append(1, '=');
    if (is_text)
      out += text;
    else
      out += std::to_string(number);
  }
}

// The same for what a record of the place holds.
inline void append_values(std::string &out, Place place, const void *record) {
  append_values(
      out, place, [record](const Key &key) { return number_in(record, key.field); },
      [record](const Key &key) { return text_in(record, key.field); });
}

// Values that belong to no record; the defaults at first.
class Values {
 public:
  explicit Values(Place place) : place_(place), values_(keys_of(place).size()) {
    for (std::size_t i = 0; i < values_.size(); ++i)
      values_[i].number = keys_of(place)[i].by_default;
  }

  sb8 &number(const Key &key) { return values_[value_place(key)].number; }
  std::string &text(const Key &key) { return values_[value_place(key)].text; }

  void append_to(std::string &out) const {
    append_values(
        out, place_, [this](const Key &key) { return values_[value_place(key)].number; },
        [this](const Key &key) { return std::string_view(values_[value_place(key)].text); });
  }

 private:
  struct Value {
    sb8 number = 0;
    std::string text = {};
  };

  Place place_;
  std::vector<Value> values_;
};

}  // namespace support
