// Entries as administrators write them, with the places of their parentheses.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "random.h"

namespace support {

// An item "(KEY = value)" of a text.
struct WrittenItem {
  std::size_t open;   // its "("
  std::size_t key;    // its key
  std::size_t close;  // its ")"
};

struct WrittenText {
  std::string text;
  std::vector<WrittenItem> items;
};

// Items that only other readers know make the library refuse the entry.
enum class ForeignItems { none, some };

// One entry, with its name: one to four addresses, with or without address lists, one or
// two descriptions, sub-blocks, quoted values, comments; on one line or on several with
// one of the usual ways to indent them.
WrittenText random_written_entry(Random &random, const std::string &name, ForeignItems foreign);

}  // namespace support
