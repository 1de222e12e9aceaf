// Why a lookup came to nothing, in one line.
#pragma once

#include <string>

#include "lookup.h"

namespace kztns {

// Entries that the user may have meant: the name in another letter case, or the
// name itself where no lookup comes. Empty, or "; there is an entry ..." for each.
std::string near_misses(const std::string &name, const std::string &path);

// Whether the lookup chose a file and the file can be opened.
bool can_be_read(const Lookup &lookup);

// Tells on standard error why there is nothing to show; returns the ExitStatus
// that goes with it.
int explain_failure(const std::string &identifier, const Lookup &lookup);

// What to call the identifier in a message.
std::string label_of(const std::string &identifier, const Lookup &lookup);

}  // namespace kztns
