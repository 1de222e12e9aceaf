// A built tree as a terminal takes it.
#pragma once

#include <optional>
#include <string>

#include "lookup/lookup.h"

namespace kztns {

// What KZCITnsDisplay prints, with the values escaped. Leaves the tree with blanks
// in place of the line feeds in its texts. Absent when there is no descriptor or no
// memory for it.
std::optional<std::string> visible_tree(Tree &tree);

}  // namespace kztns
