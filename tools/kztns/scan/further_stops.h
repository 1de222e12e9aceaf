// What else would end lookups, after what does.
#pragma once

#include <vector>

#include "scan/file_scan.h"
#include "scan/item_words.h"

namespace kztns {

// Goes on where the scan's lookup ends: at the next line, or the next entry that stands
// in the text. Forward only.
std::vector<Stop> find_further_stops(const FileScan &scan);

}  // namespace kztns
