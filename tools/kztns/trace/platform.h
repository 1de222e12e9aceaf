// The log and the memory that the module gets from this command: records go to
// whoever listens at the moment, and blocks that a failed build leaves
// allocated can be released. For one thread.
#pragma once

#include <cstdarg>

#include "kzoci/platform/log.h"

namespace kztns {

class LogListener {
 public:
  // Called for every record. The arguments are those of the printf format.
  virtual void record(log_level level, const char *format, std::va_list arguments) = 0;

 protected:
  ~LogListener() = default;
};

// Directs the log to a listener for the time of its life, then back to the one
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

// A block of memory's place in the list of all blocks; comes before it.
struct alignas(16) AllocationLink {
  AllocationLink *newer;
  AllocationLink *older;
};

// Releases at its end every block that was allocated during its life and is
// still there. Scopes end in the reverse order of their beginning.
class AllocationScope {
 public:
  AllocationScope();
  ~AllocationScope();
  AllocationScope(const AllocationScope &) = delete;
  AllocationScope &operator=(const AllocationScope &) = delete;

 private:
  AllocationLink mark_;
};

}  // namespace kztns
