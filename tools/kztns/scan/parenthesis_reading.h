// What the search for parentheses that are missing or too many knows of an entry while it
// reads its tokens in several ways at once, and what tells a good way from a bad one.
#pragma once

#include <tuple>

#include "scan/parenthesis_search.h"

namespace kztns::parenthesis_reading {

// What a change and what each oddity of the result costs. Any change is worth more than
// a fault of another kind, so that such faults do not pass for several of parentheses;
// keys weigh more than the indentation, which people do not always care for.
namespace cost {
inline constexpr int change = 1000;
inline constexpr int nested = 600;     // "(" after a value, after "(" or after a key
inline constexpr int misplaced = 300;  // a key in a block where it does not belong
inline constexpr int odd_block = 150;  // a known key in an unknown block
inline constexpr int unknown = 20;
inline constexpr int repeated = 120;       // a key twice in a block that may have it once
inline constexpr int second_address = 60;  // of a description itself, as other readers allow it
inline constexpr int wrong_value = 300;    // a value for a block, or a block for a value
inline constexpr int empty = 250;          // parentheses with nothing in them
inline constexpr int missing_word = 150;   // no "=" or no value
inline constexpr int stray_word = 300;     // between items
inline constexpr int goes_on = 150;        // more after a value
inline constexpr int line = 40;            // an item not further in than its block
inline constexpr int sibling = 30;         // items of a block not below each other
inline constexpr int closing = 30;         // a line's ")" not below what it closes
inline constexpr int hanging = 15;  // a block of lines whose ")" begins none where others do,
                                    // or the other way round
}  // namespace cost

enum class Phase : unsigned char {
  items,   // in a block: "(" or ")" is due
  opened,  // a key is due
  keyed,   // "=" is due
  valued,  // after "=": a value or "(" is due
  done     // after a value: ")" is due
};

inline constexpr std::size_t none = static_cast<std::size_t>(-1);
inline constexpr std::uint32_t no_column = static_cast<std::uint32_t>(-1);

// An item that is not closed yet; the lowest one is the entry.
struct Opened {
  std::size_t around = none;  // index of the one around it
  std::size_t open = none;    // token
  Content content;
  std::uint64_t keys = 0;                  // of its items
  std::uint32_t child_column = no_column;  // of its items that begin a line
};

struct Change {
  std::size_t before = none;  // index of the change before
  ParenthesisEdit edit;
  std::size_t token;
  Opened top;
};

// One way to read the tokens so far.
struct Reading {
  Opened top;
  Phase phase = Phase::valued;
  int cost = 0;
  int changes = 0;
  std::size_t last_change = none;
  std::size_t last_changed = 0;  // its token
  std::size_t changed = 0;       // the sum of the changes' tokens

  auto key() const {
    return std::make_tuple(top.open, top.around, phase, top.keys, top.child_column,
                           static_cast<int>(top.content.kind), top.content.inner);
  }
};

// At the same cost the later changes are the better ones: what precedes them may stay.
inline bool is_better(const Reading &left, const Reading &right) {
  if (left.cost != right.cost) return left.cost < right.cost;
  if (left.last_changed != right.last_changed) return left.last_changed > right.last_changed;
  return left.changed > right.changed;
}

}  // namespace kztns::parenthesis_reading
