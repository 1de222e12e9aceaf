// A built tree as a graph in graphviz's dot language.
#pragma once

#include <string>

#include "kzoci/oci_tnsname.h"

namespace kztns {

// From left to right: service, descriptions, address lists, addresses; connect
// data and system variables are notes. Settings at their default are left out,
// switches and strategies are always there.
std::string tree_dot(const KZCITns &tns);

}  // namespace kztns
