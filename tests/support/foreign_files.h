// Names files as administrators write them who serve other readers, too: with keys that
// this library does not know, and in some of them with faults.
#pragma once

#include <string>
#include <vector>

#include "random.h"

namespace support {

struct ForeignFile {
  std::string text;
  std::vector<std::string> names;  // that the author meant to be found
};

// A file of up to nine entries; a third of the files have one to three faults.
ForeignFile random_foreign_file(Random &random);

}  // namespace support
