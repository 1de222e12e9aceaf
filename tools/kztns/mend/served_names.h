// The names that lookups find in a text, and what they find: to tell whether a changed
// text still gives all of it.
#pragma once

#include <cstdint>
#include <vector>

#include "scan/file_scan.h"

namespace kztns {

// A name with a tree, both as digests, and where it stands.
struct ServedName {
  std::uint64_t name;
  std::uint64_t tree;
  Offset at;
  bool reserved;  // whether it is the entry of settings
};

class ServedNames {
 public:
  // Of an entry that a scan visits.
  void take(const EntryView &view);
  // To be called once, after the last entry.
  void sort();

  const std::vector<ServedName> &names() const { return names_; }
  // The places of the entries that the library does not build.
  const std::vector<Offset> &refused() const { return refused_; }

  // Those that are built and not served, of which there is no entry any more in others.
  std::vector<ServedName> gone_in(const ServedNames &others) const;

  // Whether a name is served, given as a digest.
  bool has(std::uint64_t name) const;

  // Those that are not served, or not with the same tree, by others. The reserved entry may have
  // other settings there.
  std::vector<ServedName> not_in(const ServedNames &others) const;

  // Where the entry that is so counted begins.
  Offset start_of(std::size_t entry) const { return entries_[entry - 1]; }

  // The last of all entries, served or not, that begins at a place or before it, counted
  // from 1; 0 where there is none.
  std::size_t entry_around(Offset at) const;

 private:
  std::vector<ServedName> names_;
  std::vector<ServedName> unserved_;  // that are built
  std::vector<Offset> entries_;
  std::vector<Offset> refused_;
};

ServedNames served_names(const NamesText &text);

std::uint64_t digest_of(std::string_view text);

}  // namespace kztns
