// Lines as one text, so that a difference shows line by line.
#pragma once

#include <string>
#include <vector>

namespace support {

inline std::string joined(const std::vector<std::string> &lines) {
  std::string text;
  for (const std::string &line : lines) text += line + "\n";
  return text;
}

}  // namespace support
