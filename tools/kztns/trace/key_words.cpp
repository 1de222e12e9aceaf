#include "trace/key_words.h"

#include <algorithm>
#include <set>

#include "kzoci/oci_tnsname/reserved_entry.h"
#include "text/spelling.h"

namespace kztns {
namespace {

using kzoci::tns::grammar;

std::string_view name_of(Block block) {
  if (block == Block::system_variables) return kzoci::tns::reserved_name;
  if (block == Block::entry) return "an entry itself";
  return opening_key(block);
}

}  // namespace

std::string_view opening_key(Block block) {
  for (const Key &key : grammar)
    if (key.value.kind == ValueKind::block && key.value.opens == block) return key.word;
  return {};
}

std::string places_of(KZCILBKeyType type) {
  std::set<Block> places;
  for (const Key &key : grammar)
    if (key.type == type) places.insert(key.block);
  std::vector<std::string_view> names;
  names.reserve(places.size());
  for (const Block block : places) names.push_back(name_of(block));
  return one_of(names);
}

std::vector<std::string_view> choices(const Key &key) {
  std::vector<std::string_view> words;
  if (key.value.kind == ValueKind::word)
    for (const kzoci::tns::Word &word : key.value.words->words) words.emplace_back(word.text);
  return words;
}

std::string_view word_read_as(const Key &key, std::string_view value) {
  for (const std::string_view word : choices(key))
    if (value.size() <= word.size() && equal_but_for_case(value, word.substr(0, value.size())))
      return word;
  return {};
}

std::string one_of(const std::vector<std::string_view> &words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? " or " : ", ";
    text += words[i];
  }
  return text;
}

const Key *key_named(Block block, std::string_view word) {
  for (const Key &key : grammar)
    if (key.block == block && equal_but_for_case(word, key.word)) return &key;
  return nullptr;
}

std::string_view near_key(std::string_view written, Block block) {
  std::string word(written);
  std::replace(word.begin(), word.end(), '-', '_');
  std::vector<std::string_view> here;
  std::vector<std::string_view> elsewhere;
  for (const Key &key : grammar) (key.block == block ? here : elsewhere).emplace_back(key.word);
  std::string_view found = near_word(word, here);
  if (found.empty()) found = longer_or_shorter_word(word, here);
  if (const Key *const key = key_named(block, "KZLB_" + word)) found = key->word;
  return found.empty() ? near_word(word, elsewhere) : found;
}

}  // namespace kztns
