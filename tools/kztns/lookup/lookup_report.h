// The report of one lookup: what was found where, or what ended it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lookup/lookup.h"
#include "lookup/near_entries.h"
#include "text/names_text.h"

namespace kztns {

// A place in a file or a descriptor, and what is to be said of it.
struct Remark {
  Position position;
  std::string text;         // with the block path
  std::string remedy = {};  // empty for none
  std::string_view rule = {};
  std::string source = {};  // the line
  std::size_t caret = 0;
};

// Text, remedy and rule.
std::string words_of(const Remark &remark);

struct LookupReport {
  std::size_t passed = 0;         // entries passed over
  std::optional<Position> entry;  // of the name, when a lookup comes to it
  std::optional<Remark> fault;    // why the entry is refused, or what ended the lookup before
  std::vector<Remark> warnings;   // about an entry that is built
  // Further entries of the name, which no lookup finds.
  std::vector<Position> shadowed;
  std::string note;  // that the identifier is no plain name, or a path cut; empty for neither
  std::vector<NearEntry> near;  // entries with names like this one
};

// Of a name in a file's text.
LookupReport report_of_name(const std::string &name, std::string content);

// Of a literal descriptor.
LookupReport report_of_literal(const std::string &descriptor);

}  // namespace kztns
