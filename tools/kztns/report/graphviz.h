// Graphviz's dot command.
#pragma once

#include <string>

namespace kztns {

// Prints the SVG picture of a graph in the dot language, or prints on standard
// error why there is none. Returns an ExitStatus. Standard output gets the whole
// picture or nothing.
int print_svg(const std::string &graph);

}  // namespace kztns
