// The keys of the grammar as messages speak of them: where a key belongs, what it may be,
// what a misspelt one may mean.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kzoci/oci_tnsname/grammar.h"

namespace kztns {

using kzoci::tns::Block;
using kzoci::tns::Key;
using kzoci::tns::Storage;
using kzoci::tns::ValueKind;

// The key that opens a block; empty for an entry.
std::string_view opening_key(Block block);

// "DESCRIPTION or ADDRESS_LIST": the blocks of a key.
std::string places_of(KZCILBKeyType type);

// The words that the value of a key may be, "ON" and "OFF" for example; none for a key
// that takes no word.
std::vector<std::string_view> choices(const Key &key);

// The one of them that a value is read as, which may be abbreviated; empty for none.
std::string_view word_read_as(const Key &key, std::string_view value);

// "a, b or c"
std::string one_of(const std::vector<std::string_view> &words);

// The row of a word in a block; null when it is no key there.
const Key *key_named(Block block, std::string_view word);

// The key that a misspelt one means; those of the block come first. Empty when none
// is near.
std::string_view near_key(std::string_view word, Block block);

}  // namespace kztns
