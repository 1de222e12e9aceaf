// An entry as it is checked: what the walk shows of it, and where its own text ends.
#pragma once

#include <optional>

#include "rules/parentheses.h"
#include "scan/file_scan.h"

namespace kztns {

class CheckedEntry : public EntryView {
 public:
  CheckedEntry(const EntryView &view, EntryRanges &ranges) : EntryView(view), ranges_(ranges) {}

  // Found when it is asked for: most entries have no fault.
  const EntryRange &range() const {
    if (!range_) range_ = ranges_.range_of(entry.body);
    return *range_;
  }

 private:
  EntryRanges &ranges_;
  mutable std::optional<EntryRange> range_;
};

}  // namespace kztns
