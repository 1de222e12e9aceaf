// The key words for people: where each belongs. What the module accepts is not
// decided here.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kzoci/oci_tnsname.h"

namespace kztns {

// Where a key may stand.
enum class Block {
  entry,     // an ordinary entry: blocks of DESCRIPTION
  settings,  // an entry that is read as system variables
  description,
  address_list,
  address,
  connect_data,
  blacklist,
  remove_strategy,
  append_strategy
};

// The key word that opens a block; empty for an entry.
std::string_view word_of(Block block);

struct KeyWord {
  std::string_view word;
  KZCILBKeyType type;
  std::vector<Block> places;
};

const std::vector<KeyWord> &key_words();

// The word of a type, null for one that has none.
const KeyWord *key_word(KZCILBKeyType type);

// "ADDRESS_LIST or DESCRIPTION": the places of a key.
std::string places_of(KZCILBKeyType type);

// The words that a word value may be, "ON" and "OFF" for example; empty for
// other keys.
std::vector<std::string_view> words_for(KZCILBKeyType type, Block in);

// "a, b or c"
std::string one_of(const std::vector<std::string_view> &words);

// The longest text that a text key takes; 0 for other keys.
std::size_t longest_text(KZCILBKeyType type, Block in);

bool is_integer(KZCILBKeyType type);

// The key word that a misspelt one stands for; those of the block come first.
// Empty when none is near.
std::string_view near_key(std::string_view word, Block block);

}  // namespace kztns
