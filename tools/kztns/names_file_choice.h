// Which names file lookups read.
#pragma once

#include <optional>
#include <string>

namespace kztns {

struct FileChoice {
  std::string variable;  // the one that chose it, or would have for a file that is given
  std::string value;     // its value
  std::string path;
};

// The file that is given; otherwise the one that the environment chooses, as the
// library does; absent when no variable names one. The file itself is not touched.
std::optional<FileChoice> choose_file(const std::optional<std::string> &given);

}  // namespace kztns
