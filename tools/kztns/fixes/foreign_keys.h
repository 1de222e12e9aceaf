// The keys that other readers of names files know; foreign_keys.def is their table.
#pragma once

#include <span>
#include <string>
#include <string_view>

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
  std::string_view target;  // the key here; empty for none
  std::string_view there;   // what it does for other readers
  std::string_view here;    // why it is treated so
  bool shared;              // whether other readers that share the file need it
  ForeignTreatment treatment;
};

std::span<const ForeignKey> foreign_keys();

// The row of a key in any case; null for none.
const ForeignKey *foreign_key(std::string_view word);

// Whether items of that key say nothing here.
bool is_dropped(std::string_view word);

// Whether an item of that key tells how a connection is encrypted, or which way it goes: those
// that the table refuses, and unknown keys whose name says so.
bool is_refused(std::string_view word);

// "remove the item: it is tuning only"
std::string remedy_of(const ForeignKey &key, std::string_view why);
inline std::string remedy_of(const ForeignKey &key) { return remedy_of(key, key.here); }

// What a fix does with it, as the documents tell: "removed (safe)"
std::string fix_of(const ForeignKey &key);

}  // namespace kztns
