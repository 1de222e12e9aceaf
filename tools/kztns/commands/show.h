// kztns show: resolve an identifier and print what it means.
#pragma once

#include <string>

#include "lookup/lookup.h"

namespace kztns {

enum class ShowWhat {
  tree,
  json,    // the tree with every field
  dot,     // the tree as a graph in graphviz's language
  svg,     // the picture that graphviz makes of it
  dblink,  // the link string alone
  session  // what a session is opened with
};

// Returns an ExitStatus. Standard output gets the whole of it or nothing.
int show(const std::string &identifier, ShowWhat what, const LookupOptions &options);

}  // namespace kztns
