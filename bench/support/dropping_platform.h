// The platform that the measured module runs on: every log record is dropped at
// once, memory is malloc's. The calls that some code makes can be recorded.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace bench {

struct PlatformCalls {
  std::vector<std::string> log_formats;
  std::vector<std::size_t> allocations;  // sizes, in the order of the calls
};

// Does the work once and returns the calls that it made. One thread only.
PlatformCalls calls_of(const std::function<void()> &work);

// Arguments that a format takes; a precision given as "*" is one of its own.
std::size_t argument_count(const std::string &format);

}  // namespace bench
