// Items without parentheses of their own, "KEY = a, KEY = b".
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "rules/fix.h"
#include "text/offset.h"

namespace kztns {

struct BareItem {
  Span span;         // from its key to the end of its value
  Offset separated;  // after the "," or ";" that follow it; the end of span for none
  bool dropped;      // whether it says nothing here
};

// Those that follow each other from a place on; may_be_key says which keys they may have. Empty
// where something else comes before the next parenthesis.
std::vector<BareItem> bare_items(std::string_view text, Offset at,
                                 const std::function<bool(std::string_view)> &may_be_key);

// Puts the parentheses between them, and removes those that say nothing; the first one stays. Empty
// for a single item, and where a comment would be lost.
std::vector<Edit> separated(std::string_view text, const std::vector<BareItem> &items);

}  // namespace kztns
