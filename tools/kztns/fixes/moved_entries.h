// Fixes that move or copy whole entries.
#pragma once

#include <string_view>
#include <unordered_map>

#include "fixes/mending.h"
#include "scan/file_scan.h"
#include "scan/left_over.h"

namespace kztns {

// The entry that ends every lookup is moved after those that follow it, up to one that
// lookups could not pass over; its comment goes with it, and so do others of its kind between
// them. The rest stays in order.
Fix move_reserved(const FileScan &scan);

// An entry after which lookups go astray is moved to the end of the file. No fix where
// that would be in the way of another one.
Fix move_to_end(const FileScan &scan, const Entry &entry);

// An entry that stands in another one is moved after that.
Fix move_out(const NamesText &text, const InsertedEntry &inserted);

// Lists of names, "A, B = (...)".
class NameLists {
 public:
  explicit NameLists(const FileScan &scan) : scan_(scan) {}

  // The list that begins at a place becomes an entry for each name. A name that has an
  // entry further on keeps that one: that is what other readers use. What is no list of names, or
  // has no block, becomes a comment.
  Mending split(Offset at);

 private:
  Offset last_of(std::string_view name);

  const FileScan &scan_;
  std::unordered_map<std::string_view, Offset> last_;  // entries; made when it is needed
};

}  // namespace kztns
