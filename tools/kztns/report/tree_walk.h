// What the printers of a built tree share: its records, and the fields that the grammar
// gives them.
#pragma once

#include <string>
#include <string_view>

#include "kzoci/oci_tnsname.h"
#include "kzoci/oci_tnsname/grammar.h"

namespace kztns {

// Calls visit(record, number) for the records of a ring in their order, counting
// from 1.
template <typename Record, typename Visit>
void for_each_record(Record *first, ub4 count, Record *(*next)(Record *), Visit visit) {
  Record *record = first;
  for (ub4 number = 1; number <= count; ++number) {
    visit(*record, number);
    record = next(record);
  }
}

// Calls visit(key) for the keys of a block that have a field of their own, in the grammar's
// order.
template <typename Visit>
void for_each_field(kzoci::tns::Block block, Visit visit) {
  for (const kzoci::tns::Key &key : kzoci::tns::grammar)
    if (key.block == block && key.name != nullptr) visit(key);
}

// The value of a key's field in a record, as a names file would give it: a text as it is,
// a number in digits, a word's value as the word. For the value that is reached only by
// leaving the word out: "NORMAL".
std::string value_text(const kzoci::tns::Key &key, const void *record);

// The text of a key that takes one.
std::string_view text_value(const kzoci::tns::Key &key, const void *record);

// Whether a field holds what it holds when the names file gives nothing.
bool is_default(const kzoci::tns::Key &key, const void *record);

// Whether a key takes ON and OFF.
bool is_switch(const kzoci::tns::Key &key);

}  // namespace kztns
