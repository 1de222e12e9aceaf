// The log and the memory that the module gets from this command: records go to
// the current listener, and blocks that a failed build leaves
// allocated can be released. What begins in a thread ends in it.
#pragma once

#include <cstdarg>
#include <cstdint>

#include "kzoci/platform/log.h"

namespace kztns {

class LogListener {
 public:
  // Called for every record. The arguments are those of the printf format.
  virtual void record(log_level level, const char *format, std::va_list arguments) = 0;

 protected:
  ~LogListener() = default;
};

// Directs the log of its thread to a listener for the time of its life, then back to the one
// before. Without a listener records go nowhere.
class Listening {
 public:
  explicit Listening(LogListener &listener);
  ~Listening();
  Listening(const Listening &) = delete;
  Listening &operator=(const Listening &) = delete;

 private:
  LogListener *before_;
};

// A block of memory's place in the list of its thread's blocks; comes before it. Null at
// the ends.
struct alignas(16) AllocationLink {
  AllocationLink *newer;
  AllocationLink *older;
};

// Releases at its end every block that was allocated in its thread during its life and is
// still there. Scopes end in the reverse order of their beginning.
class AllocationScope {
 public:
  AllocationScope();
  ~AllocationScope();
  AllocationScope(const AllocationScope &) = delete;
  AllocationScope &operator=(const AllocationScope &) = delete;

  // Throws std::bad_alloc when memory was not to be had since the beginning, for the module or for
  // who listens to it.
  void require_memory() const;

 private:
  AllocationLink mark_;
  std::uint64_t refused_before_;
};

}  // namespace kztns
