// Which names file lookups read.
#pragma once

#include <optional>
#include <string>

namespace kztns {

struct FileChoice {
  std::string variable;             // the one that chose it; empty when none is set
  std::optional<std::string> file;  // absent when no variable names one
};

// What the environment chooses, found by a lookup.
FileChoice choose_file();

}  // namespace kztns
