// Where an item belongs, as far as its key tells: the grammar's keys, and those that only
// other readers of such files know. To tell what a broken entry was meant to be.
#pragma once

#include <string_view>

#include "scan/foreign_keys.h"
#include "trace/key_words.h"

namespace kztns {

// What is in an item's parentheses after its "=".
struct Content {
  enum Kind : unsigned char {
    block,             // items that the grammar knows
    value,             // a word, a text or a number
    description_list,  // descriptions, as other readers know them
    foreign            // of an unknown key: anything
  };
  Kind kind = foreign;
  Block inner = Block::entry;  // of a block

  bool operator==(const Content &) const = default;
};

inline Content content_of(Block block) { return {Content::block, block}; }

// A key, however it is written in capitals and small letters. Of other readers' keys those whose
// block is known.
struct ItemWord {
  KZCILBKeyType type = LB_ERROR_KEY;
  const ForeignKey *foreign = nullptr;

  explicit operator bool() const { return type != LB_ERROR_KEY || foreign != nullptr; }
};

ItemWord item_word(std::string_view key);

// Whether items of that key hold other items.
bool opens_block(ItemWord word);

// Whether a key is one of the reserved entry's.
bool is_setting(ItemWord word);

// How well an item fits into what it stands in.
enum class Fit : unsigned char {
  good,
  unknown,  // nothing is known about the key
  odd,      // a known key in an unknown block
  bad       // the key belongs elsewhere
};

struct Placement {
  Content content;  // of the item
  Fit fit;
};

Placement placement_of(ItemWord word, Content around);

}  // namespace kztns
