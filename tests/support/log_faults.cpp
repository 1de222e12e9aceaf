#include "log_faults.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>

namespace log_faults {

namespace {

struct State {
  bool is_in_force = false;
  Plan plan = {Call::malloc};
  std::size_t calls = 0;
  std::size_t struck = 0;
};

State state;

// Whether this call is to fail; errno says then what with.
bool strikes(Call call) {
  if (!state.is_in_force || call != state.plan.call) return false;
  const std::size_t number = ++state.calls;
  if (number < state.plan.first || number - state.plan.first >= state.plan.times) return false;
  ++state.struck;
  const bool is_short = state.plan.after_a_byte && state.struck == 1;
  errno = is_short ? 0 : state.plan.error;
  return true;
}

}  // namespace

Faults::Faults(const Plan &plan) { state = {true, plan}; }
Faults::~Faults() { state.is_in_force = false; }
std::size_t Faults::struck() const { return state.struck; }

std::string name_of(Call call) {
  constexpr const char *names[] = {
      "malloc", "getcwd", "open",      "fstat", "stat",
      "flock",  "rename", "ftruncate", "write", "write (standard error)"};
  return names[static_cast<std::size_t>(call)];
}

}  // namespace log_faults

using log_faults::Call;
using log_faults::strikes;

// Defines the stand-in of a function. The C library has more than one function of
// some, by the size of file offsets and of times; real ones are missing where they
// all have 64 bits.
#define STAND_IN(result, function, failure, call, parameters, arguments) \
  extern "C" __attribute__((weak)) result __real_##function parameters;  \
  extern "C" result __wrap_##function parameters;                        \
  extern "C" result __wrap_##function parameters {                       \
    return strikes(call) ? failure : __real_##function arguments;        \
  }

// The number of the device comes first in all that stat fills in.
#define STAT_STAND_IN(function)                                                        \
  extern "C" __attribute__((weak)) int __real_##function(const char *path, char *out); \
  extern "C" int __wrap_##function(const char *path, char *out);                       \
  extern "C" int __wrap_##function(const char *path, char *out) {                      \
    const bool struck = strikes(Call::stat);                                           \
    if (struck && errno != 0) return -1;                                               \
    const int status = __real_##function(path, out);                                   \
    if (struck) out[0] = static_cast<char>(out[0] ^ 1);                                \
    return status;                                                                     \
  }

STAND_IN(void *, malloc, nullptr, Call::malloc, (std::size_t size), (size))
STAND_IN(char *, getcwd, nullptr, Call::getcwd, (char *room, std::size_t size), (room, size))
STAND_IN(int, flock, -1, Call::flock, (int descriptor, int operation), (descriptor, operation))
STAND_IN(int, rename, -1, Call::rename, (const char *from, const char *to), (from, to))
STAT_STAND_IN(stat)
STAT_STAND_IN(stat64)
STAT_STAND_IN(__stat64_time64)
STAT_STAND_IN(lstat)
STAT_STAND_IN(lstat64)
STAT_STAND_IN(__lstat64_time64)
STAND_IN(int, fstat, -1, Call::fstat, (int descriptor, void *out), (descriptor, out))
STAND_IN(int, fstat64, -1, Call::fstat, (int descriptor, void *out), (descriptor, out))
STAND_IN(int, __fstat64_time64, -1, Call::fstat, (int descriptor, void *out), (descriptor, out))
STAND_IN(int, ftruncate, -1, Call::ftruncate, (int descriptor, long size), (descriptor, size))
STAND_IN(int, ftruncate64, -1, Call::ftruncate, (int descriptor, long long size),
         (descriptor, size))
// The logger always gives a mode.
STAND_IN(int, open, -1, Call::open, (const char *path, int flags, mode_t mode), (path, flags, mode))
STAND_IN(int, open64, -1, Call::open, (const char *path, int flags, mode_t mode),
         (path, flags, mode))

extern "C" ssize_t __real_write(int descriptor, const void *from, std::size_t size);
extern "C" ssize_t __wrap_write(int descriptor, const void *from, std::size_t size);
extern "C" ssize_t __wrap_write(int descriptor, const void *from, std::size_t size) {
  if (!strikes(descriptor == STDERR_FILENO ? Call::write_to_standard_error : Call::write))
    return __real_write(descriptor, from, size);
  return errno == 0 ? __real_write(descriptor, from, std::min<std::size_t>(size, 1)) : -1;
}
