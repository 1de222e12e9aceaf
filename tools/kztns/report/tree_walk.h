// What the renderers of a built tree share: the walk, the defaults, the words.
#pragma once

#include <string_view>

#include "kzoci/oci_tnsname.h"

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

// A record as its Init leaves it.
template <typename Record>
Record defaults_of(sword (*init)(Record *)) {
  Record record;
  init(&record);
  return record;
}

// A text field and its length field.
inline std::string_view text_of(const char *text, ub4 length) { return {text, length}; }

// The word that selects a strategy in a names file; "NORMAL" for the one that is
// reached only by leaving the word out.
std::string_view strategy_word(KZCILBOption strategy);

}  // namespace kztns
