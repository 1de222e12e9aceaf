// The block protocol that every builder obeys, and the rules for values.
//
//   block := item { item }
//   item  := "(" KEY "=" value ")"
//
// A builder starts after its block's "=" and leaves the ")" that closes the block to
// its caller. It ends when the next token is not "(", normally at that ")", or at the
// first fault. Which of these ended it does not matter: the block is good when the last
// token consumed is a ")".
#pragma once

#include <algorithm>

#include "grammar.h"
#include "kzoci/oci_tnsname.h"
#include "kzoci/platform/my_strtoll10.h"
#include "log.h"
#include "status.h"
#include "tokenizer.h"

namespace kzoci::tns {

// Identifies the key word that was read last; a text that is none is a failure.
// Failures are logged.
inline sword identify_key(KZCITnsParseParams *params) {
  const sword status = reported(KZCITnsGetKeyType(params), message::key_type_failed);
  if (status != success || params->key_type != LB_ERROR_KEY) return status;
  KZ_LOG(message::unknown_key);
  return failure;
}

// Consumes "(" KEY "=" and logs the key's type.
sword begin_item(KZCITnsParseParams *params, const Message<int> &key_met);

inline bool block_closed(const KZCITnsParseParams *params) {
  return params->tns_token_type == TNS_RIGHT_PARENTHESES;
}

// Characters of the last key, never more than its array holds.
inline ub4 key_length(const KZCITnsParseParams *params) {
  return std::min(params->tns_key_len, static_cast<ub4>(sizeof params->tns_key));
}

// When the value of an item cannot be read, the functions below log so and go on with
// the text that the parse state then holds, usually the key word itself. They return
// the status of the read, unless that text is refused as well.

// Integer value: the whole text must be a number, which may be negative. The number is
// given to store(number) before that is checked, so that a refused one is stored as well.
template <class Store>
sword read_integer(KZCITnsParseParams *params, Store store) {
  // What my_strtoll10 reports for an accepted number, and for a negative one.
  constexpr int converted = 0;
  constexpr int converted_negative = -1;

  const sword status = expect(params, TNS_KEY);
  const ub4 length = key_length(params);
  char *const text_end = params->tns_key + length;
  char *end = text_end;
  int error = converted;
  store(my_strtoll10(params->tns_key, &end, &error));
  if ((error == converted || error == converted_negative) && end == text_end) return status;
  KZ_LOG(message::bad_integer, static_cast<int>(length), params->tns_key);
  return failure;
}

// Reads the value of a key that is no block into a record of the key's block. A text of
// more characters than the key's limit is dropped, which does not fail the item; the
// field then keeps its contents. A word may be abbreviated and in any letter case: the
// first word that begins with it is taken, for an empty one the first of all.
sword read_value(const Key &key, KZCITnsParseParams *params, void *record);

// Reads the value of the last key by the grammar's row for the block; a key that has no
// row there is refused.
sword read_by_grammar(Block block, const Message<> &key_refused, KZCITnsParseParams *params,
                      void *record);

inline void log_not_built(Place place, const Message<> &not_built, sword) {
  log_record(place, not_built);
}
inline void log_not_built(Place place, const Message<sword> &not_built, sword status) {
  log_record(place, not_built, status);
}

// Reads a block's items until one fails or there are no more; read_item_value() reads
// the value of the item whose key is in params->key_type. Logs with the place of its
// caller.
template <class NotBuilt, class ReadItemValue>
sword read_block(KZCITnsParseParams *params, const Message<int> &key_met, const NotBuilt &not_built,
                 ReadItemValue read_item_value, const char *file = __builtin_FILE(),
                 int line = __builtin_LINE()) {
  sword status = success;
  while (status == success) {
    status = begin_item(params, key_met);
    if (status == success) status = read_item_value();
    if (status == success) status = expect(params, TNS_RIGHT_PARENTHESES);
  }
  if (block_closed(params)) return success;
  log_not_built({file, line}, not_built, status);
  return failure;
}

}  // namespace kzoci::tns
