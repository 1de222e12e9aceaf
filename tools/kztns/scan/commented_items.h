// Items of an entry that stand in its comments.
#pragma once

#include <initializer_list>
#include <optional>
#include <string_view>

#include "text/offset.h"
#include "trace/key_words.h"

namespace kztns {

// The "(" of the first item that is commented out in a block, or in the comments directly after it,
// and has one of some keys; any that belongs in the block where none are given. A comment that
// begins another description, or another block of the same kind, ends the search.
std::optional<Offset> commented_item(std::string_view text, Offset open,
                                     std::initializer_list<KZCILBKeyType> keys);

// The "(" of the first item with a known key in a comment; absent where an entry begins before it.
std::optional<Offset> item_in_comment(std::string_view text, Offset comment, Offset end);

// The key of an item, as it is written.
std::string_view key_text(std::string_view text, Offset open);

}  // namespace kztns
