// What stands at a place of a text, also of one that is being written.
#pragma once

#include <string_view>
#include <vector>

#include "scan/item_words.h"
#include "trace/build_trace.h"

namespace kztns::lsp {

enum class PlaceKind {
  none,   // outside of entries, or in a comment
  name,   // of an entry
  item,   // where an item "(KEY = value)" may begin
  key,    // after "(", or in the key
  value,  // after a key's "=", or in the value
};

struct Place {
  PlaceKind kind = PlaceKind::none;
  Span word = {};             // what is there of it; empty for nothing
  std::string_view key = {};  // of a value
  Content around = {};        // what the item stands in
  bool after_word = false;    // where another word of the item ends, so that none is due
};

// The place of a cursor between two characters. With whole_word the word goes on after it.
Place place_at(std::string_view text, Offset at, bool whole_word);

// A key's row of the grammar in a block; null for one that has no place there.
const Key *row_of(std::string_view key, Content around);

}  // namespace kztns::lsp
