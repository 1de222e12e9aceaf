// What becomes of items whose keys only other readers of names files know.
#pragma once

#include <string>
#include <string_view>

#include "scan/foreign_keys.h"

namespace kztns {

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
