// The block protocol that every builder obeys, and the rules for values.
//
//   block := item { item }
//   item  := "(" KEY "=" value ")"
//
// A builder is entered behind its block's "=" and leaves the ")" that closes
// the block to its caller. It ends when the next token is not "(", normally at
// that ")", or at the first fault. What ended it does not matter to the outcome:
// the block is good when the last token consumed is a ")".
#pragma once

#include <algorithm>
#include <cstddef>

#include "kzoci/oci_tnsname.h"
#include "letter_case.h"
#include "log.h"
#include "status.h"
#include "tokenizer.h"

namespace kzoci::tns {

// Finds the key word that the key just read stands for; no key word is a
// failure. Failures are logged.
sword identify_key(KZCITnsParseParams *params);

// Consumes "(" KEY "=" and logs the key's type.
sword begin_item(KZCITnsParseParams *params, const char *key_type_format);

inline bool block_closed(const KZCITnsParseParams *params) {
  return params->tns_token_type == TNS_RIGHT_PARENTHESES;
}

// Reads items until one fails; handle_value() reads the value of the item whose
// key is in params->key_type. Returns the status that ended the block.
template <class HandleValue>
sword read_items(KZCITnsParseParams *params, const char *key_type_format,
                 HandleValue handle_value) {
  sword status = success;
  while (status == success) {
    status = begin_item(params, key_type_format);
    if (status == success) status = handle_value();
    if (status == success) status = expect(params, TNS_RIGHT_PARENTHESES);
  }
  return status;
}

// Refuses a key word that has no place in a block.
inline sword refuse_key(const char *message) {
  KZ_LOG_ERROR("%s", message);
  return failure;
}

// Characters of the last key, never more than its array holds.
inline ub4 key_length(const KZCITnsParseParams *params) {
  return std::min(params->tns_key_len, static_cast<ub4>(sizeof params->tns_key));
}

// When the value of an item cannot be read, the rules below say so and go on
// with the text that the parse state then holds, the key word itself as a rule.
// The status of the read is what they return at last, unless the text is
// refused as well.

// Integer value: the whole text must be a number; a negative one will do. The
// number is stored even when it is refused.
sword read_integer(KZCITnsParseParams *params, sb8 *number);

enum class TextCopy {
  bytes,  // byte for byte
  string  // up to the first zero byte, zeros behind it
};

// Text value: a text of more than limit characters is dropped, which does not
// fail the item; the field keeps its contents then.
sword read_text(KZCITnsParseParams *params, char *field, ub4 *length, ub4 limit, TextCopy copy);

constexpr ub4 max_text = 256;  // limit of most text fields

template <class Value>
struct Word {
  const char *text;
  Value value;
};

constexpr Word<boolean> switch_words[] = {{"ON", 1}, {"OFF", 0}};
constexpr char wrong_switch[] = "parse LB_KZLB get wrong key:%.*s";

// Word value: one of the words, or any leading part of one, in any letter case;
// the first that fits. An empty value fits the first word.
template <class Value, std::size_t n>
sword read_word(KZCITnsParseParams *params, const Word<Value> (&words)[n],
                const char *wrong_word_format, Value *value) {
  const sword status = expect(params, TNS_KEY);
  const ub4 length = key_length(params);
  for (const Word<Value> &word : words) {
    if (!is_same_text(params->tns_key, word.text, length)) continue;
    *value = word.value;
    return status;
  }
  KZ_LOG_ERROR(wrong_word_format, static_cast<int>(length), params->tns_key);
  return failure;
}

}  // namespace kzoci::tns
