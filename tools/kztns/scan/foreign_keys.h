// The keys that other readers of names files know; foreign_keys.def is their table.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "trace/key_words.h"

namespace kztns {

// What a fix makes of an item with such a key.
enum class ForeignTreatment {
  drop,           // removes it, safe: nothing is lost here
  lose,           // removes it, unsafe: something is given up
  rename,         // another word of the same meaning, safe
  rename_unsafe,  // a key of a similar meaning
  rename_switch,  // the same for a switch, whose words differ, too
  drop_address,   // removes the address where another one is left, unsafe
  unwrap,         // keeps the blocks in it
  drop_off,       // removes a switch that is off, safe; nothing where it is on
  refuse          // nothing: it would not be what was written
};

struct ForeignKey {
  std::string_view word;
  std::optional<Block> home;  // the block in which they expect it, where it is one of the grammar's
  ForeignTreatment treatment;
  std::string_view target;  // the key here; empty for none
  std::string_view there;   // what it does for other readers
  std::string_view here;    // why it is treated so
  bool shared;              // whether other readers that share the file need it
};

std::span<const ForeignKey> foreign_keys();

// The row of a key in any case; null for none.
const ForeignKey *foreign_key(std::string_view word);

}  // namespace kztns
