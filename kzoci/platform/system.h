// What the default logger asks of the operating system, in system_posix.cpp and in
// system_windows.cpp. A call of the system that a signal interrupts is repeated.
#pragma once

#include <cstddef>
#include <cstdint>

#include "types.h"

namespace kzoci::platform {

// The one lock of the logger, for the threads of this process.
void lock_logger();
void unlock_logger();

// Has the logger's lock held around each fork, and calls a function in the child before it is
// given back: a child has only the thread that forked, so a lock that another one held would
// stay locked there for ever. Returns 0, or an error number when there is no memory for that.
// On Windows it does nothing.
int guard_forks(void (*in_child)());

// Coordinated universal time.
struct Time {
  sb8 seconds;  // since the beginning of 1970
  int milliseconds;
};
Time now();

// Files are known by descriptors; -1 is none.

// The descriptor of standard error.
constexpr int standard_error = 2;

// Writes a text, in one call unless the system takes less. False when a call fails.
bool write_whole(int descriptor, const char *text, std::size_t length);

// Opens a file for appending, and makes it where it is missing; a program that this one
// starts does not get it. Does not wait: a pipe that nobody reads is refused.
int open_for_appending(const char *path);
void close_file(int descriptor);

// What the logger needs to know about a file. Two are the same file when they have the same
// identity.
struct FileState {
  sb8 size;
  std::uint64_t identity[2];
  bool is_regular;  // no pipe, no device and no link
  bool is_link;
};
bool state_of(int descriptor, FileState &state);

// Whether there is a file, of which state then tells: of a symbolic link itself.
enum class Presence { there, missing, unknown };
Presence presence(const char *path, FileState &state);

// Ends a file after so many bytes.
bool cut_off(int descriptor, sb8 size);

// Gives a file another name, in place of the file that has it.
bool rename_file(const char *from, const char *to);

// Keeps other processes waiting, where the file system has locks.
bool lock_file(int descriptor);
void unlock_file(int descriptor);

// Makes a path absolute and writes it, terminated, to buffer. The path, which need not be
// terminated, has no zero byte. False when buffer is too small.
bool make_absolute(const char *path, std::size_t length, char *buffer, std::size_t size);

}  // namespace kzoci::platform
