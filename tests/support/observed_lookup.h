// What the module does with an identifier, in the terms of the second reader.
#pragma once

#include <cstddef>
#include <string>

#include "model_reader.h"

namespace support {

// Which function takes the identifier.
enum class Taken { as_identifier, as_literal };

enum class LogKept { no, yes };

struct ObservedLookup {
  model::Prediction built;
  model::Lines log;  // of the lookup alone, if it is kept
  sword cleared = 0;
  std::size_t bad_releases = 0;
};

// Builds into an empty container and releases it. The n-th allocation fails; 0 for none.
// Takes over the recording platform, where the lost blocks are left.
ObservedLookup observe_lookup(const std::string &identifier, Taken taken,
                              std::size_t failing_allocation, LogKept log_kept);

// Lines in which pointers are replaced, as they are in the log that is observed.
model::Lines comparable(model::Lines lines);

}  // namespace support
