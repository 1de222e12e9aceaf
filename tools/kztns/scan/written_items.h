// The items of a block as they are written, also after a fault in them: told by their
// tokens alone.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "scan/item_words.h"
#include "text/offset.h"

namespace kztns {

struct WrittenItem {
  Offset open;   // its "("
  Span key;      // empty for none
  Offset value;  // after the "=", or after the key where there is none
  Offset end;    // after its ")"
};

// The item whose "(" is at a place; absent when it is not closed.
std::optional<WrittenItem> item_at(std::string_view text, Offset open);

// The items that stand one after the other from a place on.
std::vector<WrittenItem> items_from(std::string_view text, Offset at);

// Which key an item has.
ItemWord key_word(std::string_view text, const WrittenItem &item);

// The one word that is an item's value, quotes included; absent for any other value.
std::optional<Span> word_of(std::string_view text, const WrittenItem &item);

// A word's text without quotes.
std::string unquoted(std::string_view word);

}  // namespace kztns
