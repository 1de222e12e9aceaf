// Entries that a lookup of another name may have meant.
#pragma once

#include <string>
#include <vector>

#include "scan/file_scan.h"

namespace kztns {

struct NearEntry {
  std::string name;
  Position position;
  std::string clause;  // there is an entry "Sales" at 3:1, which differs only in case
};

// At most some; those that come closest first. The entry that a lookup of the
// name finds is one of them only where it is asked for, those that it shadows never.
std::vector<NearEntry> near_entries(const NamesText &text, const FileScan &scan,
                                    std::string_view name, bool with_itself = false);

}  // namespace kztns
