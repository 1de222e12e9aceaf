// Which blocks a build allocates, and which of them stay where, when it goes well
// and when memory or input end half-way.
//
// Every block inside an entry or a descriptor has a record. When the reading
// ends, the last token consumed decides over all records that are still open:
// behind a ")" each joins its parent, behind anything else each is released
// alone, and what had joined it is lost. An allocation that fails ends the
// reading behind a "=".
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "fault_corpus.h"
#include "recording_platform.h"

namespace support {

struct Harm {
  std::size_t input_end = std::string::npos;  // The file's length, when it is cut off.
  std::size_t allocation = 0;                 // The one that fails; 0 for none.
};

struct Prediction {
  Outcome outcome;
  std::size_t allocations = 0;   // Asked for.
  std::vector<Block> kept = {};  // Below the new service, and the service.
  std::vector<Block> lost = {};  // Allocated and out of reach.
};

Prediction predict(const Sample &sample, const Harm &harm = {});

}  // namespace support
