// Lookups of names in a text that is about to be written.
#pragma once

#include <string>
#include <vector>

#include "mend/served_names.h"

namespace kztns {

// Whether lookups, as a program makes them, find the names that a text serves with their
// trees, those first that it did not serve before. A lookup reads the text up to its entry:
// where that is too much for all names, lookups are made of some that are evenly spread over
// the text.
bool all_are_found(const std::string &text, const std::vector<ServedName> &new_names,
                   const std::vector<ServedName> &names);

}  // namespace kztns
