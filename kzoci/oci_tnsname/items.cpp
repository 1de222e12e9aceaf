#include "items.h"

#include <cstring>

#include "kzoci/platform/letter_case.h"
#include "record_fields.h"

namespace kzoci::tns {

sword begin_item(KZCITnsParseParams *params, const Message<int> &key_met) {
  sword status = expect(params, TNS_LEFT_PARENTHESES);
  if (status == success) status = expect(params, TNS_KEY);
  if (status == success) status = identify_key(params);
  if (status == success) status = expect(params, TNS_EQUAL_SIGN);
  if (status == success) KZ_LOG(key_met, params->key_type);
  return status;
}

namespace {

sword read_number(const Value &value, KZCITnsParseParams *params, void *record) {
  return read_integer(params, [&](sb8 number) { store_number(record, value.field, number); });
}

sword read_text(const Value &value, KZCITnsParseParams *params, void *record) {
  const sword status = expect(params, TNS_KEY);
  const ub4 length = params->tns_key_len;
  if (status != success || length > value.limit) {
    KZ_LOG(message::text_refused);
    return status;
  }
  char *const characters = static_cast<char *>(field_of(record, value.field));
  std::memcpy(static_cast<char *>(record) + value.field.length_at, &length, sizeof length);
  if (value.copy == TextCopy::string)
    std::strncpy(characters, params->tns_key, length);
  else
    std::memcpy(characters, params->tns_key, length);
  return success;
}

sword read_word(const Value &value, KZCITnsParseParams *params, void *record) {
  const sword status = expect(params, TNS_KEY);
  const ub4 length = key_length(params);
  for (const Word &word : value.words->words) {
    if (!is_same_text(params->tns_key, word.text, length)) continue;
    store_number(record, value.field, word.value);
    return status;
  }
  KZ_LOG(value.words->refused, static_cast<int>(length), params->tns_key);
  return failure;
}

}  // namespace

sword read_value(const Key &key, KZCITnsParseParams *params, void *record) {
  switch (key.value.kind) {
    case ValueKind::integer:
      return read_number(key.value, params, record);
    case ValueKind::word:
      return read_word(key.value, params, record);
    default:
      return read_text(key.value, params, record);
  }
}

sword read_by_grammar(Block block, const Message<> &key_refused, KZCITnsParseParams *params,
                      void *record) {
  const Key *const key = key_of(block, params->key_type);
  // A block is read by its builder.
  if (key != nullptr && key->value.kind != ValueKind::block)
    return read_value(*key, params, record);
  KZ_LOG(key_refused);
  return failure;
}

}  // namespace kzoci::tns
