// Reads and writes the field of a record that a row of the grammar names.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <span>
#include <utility>

#include "grammar.h"

namespace kzoci::tns {

// A number that is stored without a field would be written over the record's first one.
static_assert(std::all_of(std::begin(grammar), std::end(grammar),
                          [](const Key &key) {
                            const bool is_number = key.value.kind == ValueKind::integer ||
                                                   key.value.kind == ValueKind::word;
                            const bool has_field = key.value.field.storage != Storage::nowhere &&
                                                   key.value.field.storage != Storage::text;
                            return !is_number || has_field || key.type == LB_RETRY_DELAY;
                          }),
              "a number needs a field, or a builder that passes over it");

inline void *field_of(void *record, const Field &field) {
  return static_cast<char *>(record) + field.at;
}
inline const void *field_of(const void *record, const Field &field) {
  return static_cast<const char *>(record) + field.at;
}

// Stores a number in a field of a record, in the field's type.
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
    default:
      return store(number);
  }
}

template <class Stored>
sb8 stored_number(const void *record, const Field &field) {
  Stored stored;
  std::memcpy(&stored, field_of(record, field), sizeof stored);
  return static_cast<sb8>(stored);
}

// The number that a field of a record holds.
inline sb8 number_of(const void *record, const Field &field) {
  switch (field.storage) {
    case Storage::seconds:
      return stored_number<std::time_t>(record, field);
    case Storage::count:
      return stored_number<ub4>(record, field);
    case Storage::option:
      return stored_number<int>(record, field);
    default:
      return stored_number<sb8>(record, field);
  }
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
