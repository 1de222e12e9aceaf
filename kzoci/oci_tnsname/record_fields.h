// Reads and writes the field of a record that a row of the grammar names.
#pragma once

#include <cstddef>
#include <cstring>
#include <ctime>
#include <span>
#include <utility>

#include "grammar.h"

namespace kzoci::tns {

inline void *field_of(void *record, const Field &field) {
  return static_cast<char *>(record) + field.at;
}
inline const void *field_of(const void *record, const Field &field) {
  return static_cast<const char *>(record) + field.at;
}

// Stores a number in a field of a record, in the field's type; of a key that is not kept,
// nothing.
inline void store_number(void *record, const Field &field, sb8 number) {
  const auto store = [&](auto as_stored) {
    std::memcpy(field_of(record, field), &as_stored, sizeof as_stored);
  };
  switch (field.storage) {
    case Storage::seconds:
      return store(static_cast<std::time_t>(number));
    case Storage::count:
      return store(static_cast<ub4>(number));
    case Storage::option:
      return store(static_cast<int>(number));
    case Storage::number:
      return store(number);
    case Storage::nowhere:
    case Storage::text:
      return;
  }
}

template <class Stored>
sb8 stored_number(const void *record, const Field &field) {
  Stored stored;
  std::memcpy(&stored, field_of(record, field), sizeof stored);
  return static_cast<sb8>(stored);
}

// The number that a field of a record holds; 0 for a field without one.
inline sb8 number_of(const void *record, const Field &field) {
  switch (field.storage) {
    case Storage::seconds:
      return stored_number<std::time_t>(record, field);
    case Storage::count:
      return stored_number<ub4>(record, field);
    case Storage::option:
      return stored_number<int>(record, field);
    case Storage::number:
      return stored_number<sb8>(record, field);
    case Storage::nowhere:
    case Storage::text:
      break;
  }
  return 0;
}

// The characters of a text field, never more than its array holds.
inline std::span<const char> text_of(const void *record, const Field &field) {
  ub4 length = 0;
  std::memcpy(&length, static_cast<const char *>(record) + field.length_at, sizeof length);
  return {static_cast<const char *>(field_of(record, field)),
          length < field.capacity ? length : field.capacity};
}

// Stores the default of a row's key if the row belongs to one of the blocks.
template <std::size_t row, Block... blocks>
void set_default(void *record) {
  constexpr Value value = grammar[row].value;
  if constexpr (((grammar[row].block == blocks) || ...) && value.by_default != 0)
    store_number(record, value.field, value.by_default);
}

template <Block... blocks, std::size_t... row>
void set_defaults_of_rows(void *record, std::index_sequence<row...>) {
  (set_default<row, blocks...>(record), ...);
}

// Stores the defaults of the keys of some blocks that share a record of zeros.
template <Block... blocks>
void set_defaults(void *record) {
  set_defaults_of_rows<blocks...>(record, std::make_index_sequence<rows_of_grammar>{});
}

}  // namespace kzoci::tns
