// Names files and descriptors that between them reach every step of the readers
// and builders, each with what comes of it.
#pragma once

#include <string>
#include <vector>

#include "parsing.h"

namespace support {

enum class Source {
  file,         // A name, looked up in a names file.
  literal,      // A descriptor, given to the lookup.
  literal_only  // A descriptor that the lookup would not take for one.
};

struct Sample {
  std::string name;
  Source source;
  std::string identifier;  // The name sought, in a file.
  std::string text;        // The file, or the descriptor.
  Outcome outcome;
};

std::vector<Sample> fault_corpus();

}  // namespace support
