#include "report/tree_walk.h"

#include "kzoci/oci_tnsname/record_fields.h"

namespace kztns {

using kzoci::tns::Key;
using kzoci::tns::ValueKind;

namespace {

std::string_view word_of_value(const Key &key, sb8 value) {
  for (const kzoci::tns::Word &word : key.value.words->words)
    if (word.value == value) return word.text;
  return value == LB_OPTION_NORMAL ? "NORMAL" : "UNKNOWN";
}

}  // namespace

std::string value_text(const Key &key, const void *record) {
  if (key.value.kind == ValueKind::text) return std::string(text_value(key, record));
  const sb8 value = kzoci::tns::number_of(record, key.value.field);
  if (key.value.kind == ValueKind::word) return std::string(word_of_value(key, value));
  return std::to_string(value);
}

std::string_view text_value(const Key &key, const void *record) {
  const auto text = kzoci::tns::text_of(record, key.value.field);
  return {text.data(), text.size()};
}

bool is_default(const Key &key, const void *record) {
  if (key.value.kind == ValueKind::text) return text_value(key, record).empty();
  return kzoci::tns::number_of(record, key.value.field) == key.value.by_default;
}

bool is_switch(const Key &key) { return key.value.words == &kzoci::tns::switch_words; }

}  // namespace kztns
