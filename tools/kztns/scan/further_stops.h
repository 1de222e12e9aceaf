// What else would end lookups, after what does.
#pragma once

#include <vector>

#include "scan/file_scan.h"
#include "scan/item_words.h"

namespace kztns {

// Goes on where the scan's lookup ends: at the next line, or the next entry that stands
// in the text. Forward only.
std::vector<Stop> find_further_stops(const FileScan &scan);

// Whether the value of a name may begin with an item of that key: a block or, of the reserved
// entry, a setting.
bool may_be_value(std::string_view name, ItemWord key);

}  // namespace kztns
