// Lookups of names in a text that is about to be written.
#pragma once

#include <string>
#include <vector>

#include "rules/served_names.h"

namespace kztns {

// Whether lookups, as a program makes them, find some names of a text with their trees. A
// lookup reads the text up to its entry, so of very many names only the first ones are
// looked up.
bool all_are_found(const std::string &text, const std::vector<ServedName> &names);

}  // namespace kztns
