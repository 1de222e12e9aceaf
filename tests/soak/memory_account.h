// The allocator of the soak, which knows what each thread has allocated.
#pragma once

#include <cstddef>
#include <vector>

#include "support/model_tree.h"

namespace soak {

// What the calling thread has allocated and not released, sorted.
model::Blocks live_blocks();

// Gives back what the calling thread has not released, as a program never could;
// gives the number of bytes.
std::size_t release_live_blocks();

// Sums over all threads since the program began.
struct MemoryTotals {
  long long allocated = 0;     // blocks
  long long released = 0;      // blocks, by the module
  long long bad_releases = 0;  // of what the thread had not allocated
};
MemoryTotals memory_totals();

}  // namespace soak
