// All faults of an entry: after each one the entry is mended in a copy, or the item at
// fault is left out of it, and the copy is built again.
#pragma once

#include <string>
#include <vector>

#include "rules/diagnosis.h"
#include "rules/findings.h"
#include "scan/file_scan.h"

namespace kztns {

class EntryFaults {
 public:
  EntryFaults(const NamesText &text, Findings &findings) : text_(text), findings_(findings) {}

  // Reports the faults and warnings of an entry that has a fault. consequence is
  // appended to the first one's text. Returns the first one.
  Diagnosis report(const EntryView &view, const std::string &consequence);

 private:
  Offset end_of_entry(Offset body);

  const NamesText &text_;
  Findings &findings_;
  std::vector<Offset> names_;  // of all entries; made when it is needed
};

}  // namespace kztns
