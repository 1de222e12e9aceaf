#include "scan/item_words.h"

#include "text/spelling.h"

namespace kztns {

namespace {

using kzoci::tns::grammar;

Content content_of_key(const Key &key) {
  if (key.value.kind == ValueKind::block) return content_of(key.value.opens);
  return {Content::value};
}

// What items of the key hold wherever they stand.
Content content_anywhere(ItemWord word) {
  if (word.foreign != nullptr && word.foreign->treatment == ForeignTreatment::unwrap)
    return {Content::description_list};
  for (const Key &key : grammar)
    if (word.type != LB_ERROR_KEY && key.type == word.type) return content_of_key(key);
  return {Content::foreign};
}

Placement in_block(ItemWord word, Block block) {
  if (!word) return {{Content::foreign}, Fit::unknown};
  if (word.foreign != nullptr)
    return {content_anywhere(word), word.foreign->home == block ? Fit::good : Fit::bad};
  if (const Key *const key = kzoci::tns::key_of(block, word.type))
    return {content_of_key(*key), Fit::good};
  return {content_anywhere(word), Fit::bad};
}

Placement in_description_list(ItemWord word) {
  if (!word) return {{Content::foreign}, Fit::unknown};
  return {content_anywhere(word), word.type == LB_DESCRIPTION ? Fit::good : Fit::bad};
}

}  // namespace

ItemWord item_word(std::string_view key) {
  for (const Key &row : grammar)
    if (equal_but_for_case(row.word, key)) return {row.type, nullptr};
  const ForeignKey *const foreign = foreign_key(key);
  if (foreign == nullptr || !foreign->home) return {};
  return {LB_ERROR_KEY, foreign};
}

bool opens_block(ItemWord word) {
  const Content::Kind kind = content_anywhere(word).kind;
  return kind == Content::block || kind == Content::description_list;
}

Placement placement_of(ItemWord word, Content around) {
  switch (around.kind) {
    case Content::block:
      return in_block(word, around.inner);
    case Content::description_list:
      return in_description_list(word);
    case Content::foreign:
      return {content_anywhere(word), word.type == LB_ERROR_KEY ? Fit::good : Fit::odd};
    default:  // items in a value are wrong, whatever they are
      return {content_anywhere(word), Fit::good};
  }
}

bool is_setting(ItemWord word) {
  return placement_of(word, content_of(Block::system_variables)).fit == Fit::good;
}

}  // namespace kztns
