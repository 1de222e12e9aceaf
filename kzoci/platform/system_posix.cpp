// Not compiled for Windows, also by those who compile all files of this folder.
#if !defined(_WIN32)

#include <fcntl.h>
#include <pthread.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "kzoci/platform/system.h"

namespace kzoci::platform {

namespace {

pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
void (*run_in_child)() = nullptr;

void after_fork_in_child() {
  run_in_child();
  unlock_logger();
}

// A system call, repeated until no signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

FileState state_of(const struct stat &status) {
  return {status.st_size,
          {status.st_dev, status.st_ino},
          S_ISREG(status.st_mode),
          S_ISLNK(status.st_mode)};
}

}  // namespace

void lock_logger() { pthread_mutex_lock(&mutex); }
void unlock_logger() { pthread_mutex_unlock(&mutex); }

int guard_forks(void (*in_child)()) {
  run_in_child = in_child;
  return pthread_atfork(lock_logger, unlock_logger, after_fork_in_child);
}

Time now() {
  timespec time = {};
  clock_gettime(CLOCK_REALTIME, &time);
  return {time.tv_sec, static_cast<int>(time.tv_nsec / 1000000)};
}

bool write_whole(int descriptor, const char *text, std::size_t length) {
  while (length > 0) {
    const ssize_t written = uninterrupted([=] { return ::write(descriptor, text, length); });
    if (written <= 0) return false;
    text += written;
    length -= static_cast<std::size_t>(written);
  }
  return true;
}

int open_for_appending(const char *path) {
  constexpr mode_t owner_writes_group_reads = 0640;
  const int opened = uninterrupted([=] {
    return ::open(path, O_WRONLY | O_CREAT | O_CLOEXEC | O_APPEND | O_NONBLOCK,
                  owner_writes_group_reads);
  });
  // Only the opening is not to wait.
  if (opened != -1) ::fcntl(opened, F_SETFL, O_APPEND);
  return opened;
}

void close_file(int descriptor) { ::close(descriptor); }

bool state_of(int descriptor, FileState &state) {
  struct stat status = {};
  if (::fstat(descriptor, &status) != 0) return false;
  state = state_of(status);
  return true;
}

Presence presence(const char *path, FileState &state) {
  struct stat status = {};
  if (::lstat(path, &status) != 0) return errno == ENOENT ? Presence::missing : Presence::unknown;
  state = state_of(status);
  return Presence::there;
}

bool cut_off(int descriptor, sb8 size) {
  return uninterrupted([=] { return ::ftruncate(descriptor, size); }) == 0;
}

bool rename_file(const char *from, const char *to) { return std::rename(from, to) == 0; }

bool lock_file(int descriptor) {
  return uninterrupted([=] { return ::flock(descriptor, LOCK_EX); }) == 0;
}

void unlock_file(int descriptor) { ::flock(descriptor, LOCK_UN); }

bool make_absolute(const char *path, std::size_t length, char *buffer, std::size_t size) {
  std::size_t at = 0;
  if (path[0] != '/') {
    if (::getcwd(buffer, size - 1) == nullptr) return false;
    at = std::strlen(buffer);
    buffer[at++] = '/';
  }
  if (length >= size - at) return false;
  std::memcpy(buffer + at, path, length);
  buffer[at + length] = '\0';
  return true;
}

}  // namespace kzoci::platform

#endif
