// The function that each target defines and that the fuzzer and the replay call.
#pragma once

#include <cstddef>
#include <cstdint>

// Runs the target on one input, an exact-size block of the heap. Ends the process
// when something does not hold. Returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);
