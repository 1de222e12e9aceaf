// The entries that no lookup reaches, by what keeps lookups from them.
#pragma once

#include <string>
#include <vector>

#include "scan/file_scan.h"

namespace kztns {

// Entries that are lost through one cause.
class Lost {
 public:
  void add(const Entry &entry);

  std::size_t count() const { return count_; }
  const Entry *first() const { return named_.empty() ? nullptr : named_.front(); }

  // "A, B, C and 63 more", from an entry on.
  std::string names(const FileScan &scan, std::size_t from = 0) const;

  // "the 66 entries after it are lost: A, B, C and 63 more"
  std::string sentence(const FileScan &scan) const;

 private:
  std::vector<const Entry *> named_;  // the first ones
  std::size_t count_ = 0;
};

// Entries that lookups pass over as part of another one.
struct Swallowed {
  const Entry *by;
  Lost entries;
};

class LostEntries {
 public:
  explicit LostEntries(const FileScan &scan);

  // After what ends every lookup; the names of a list that does are not among them.
  const Lost &after_stop() const { return after_stop_; }
  const std::vector<Swallowed> &swallowed() const { return swallowed_; }

 private:
  Lost after_stop_;
  std::vector<Swallowed> swallowed_;
};

// The names of the list that begins at a place.
Lost names_of_list(const FileScan &scan, Offset at);

}  // namespace kztns
