#include "kzoci/platform/log_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace kzoci::platform {

namespace {

// A system call, repeated until no signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

// Keeps other processes waiting while it exists, where the file system has locks.
class FileLock {
 public:
  explicit FileLock(int descriptor)
      : descriptor_(descriptor),
        is_held_(uninterrupted([descriptor] { return ::flock(descriptor, LOCK_EX); }) == 0) {}
  ~FileLock() { ::flock(descriptor_, LOCK_UN); }
  FileLock(const FileLock &) = delete;
  FileLock &operator=(const FileLock &) = delete;

  bool is_held() const { return is_held_; }

 private:
  int descriptor_;
  bool is_held_;
};

enum class Presence { there, missing, unknown };

Presence presence(const char *path) {
  struct stat ignored = {};
  if (::stat(path, &ignored) == 0) return Presence::there;
  return errno == ENOENT ? Presence::missing : Presence::unknown;
}

bool is_link(const char *path) {
  struct stat there = {};
  return ::lstat(path, &there) == 0 && S_ISLNK(there.st_mode);
}

}  // namespace

bool write_whole(int descriptor, const char *text, std::size_t length) {
  while (length > 0) {
    const ssize_t written = uninterrupted([=] { return ::write(descriptor, text, length); });
    if (written <= 0) return false;
    text += written;
    length -= static_cast<std::size_t>(written);
  }
  return true;
}

bool LogFile::open(const char *path, std::size_t path_length, sb8 size_limit, ub4 count) {
  close();
  size_limit_ = size_limit;
  count_ = count;
  return set_path(path, path_length) && open_at_path();
}

// The path is checked with every line, so it must mean the same file after the
// program has changed its working directory.
bool LogFile::set_path(const char *path, std::size_t length) {
  if (std::memchr(path, '\0', length) != nullptr) return false;
  std::size_t at = 0;
  if (path[0] != '/') {
    if (::getcwd(path_, sizeof path_ - 1) == nullptr) return false;
    at = std::strlen(path_);
    path_[at++] = '/';
  }
  if (length >= sizeof path_ - at) return false;
  std::memcpy(path_ + at, path, length);
  path_[at + length] = '\0';
  return true;
}

void LogFile::close() {
  if (is_open()) ::close(descriptor_);
  descriptor_ = -1;
}

// The file open before is closed only when the other one is open.
bool LogFile::open_at_path() {
  constexpr mode_t owner_writes_group_reads = 0640;
  // Without waiting: a pipe that nobody reads is refused.
  const int opened = uninterrupted([this] {
    return ::open(path_, O_WRONLY | O_CREAT | O_CLOEXEC | O_APPEND | O_NONBLOCK,
                  owner_writes_group_reads);
  });
  if (opened == -1) return false;
  struct stat state = {};
  if (::fstat(opened, &state) != 0) {
    ::close(opened);
    return false;
  }
  ::fcntl(opened, F_SETFL, O_APPEND);
  close();
  descriptor_ = opened;
  // A pipe or a device has no size and must not be renamed, nor must a link, which is
  // somebody's own: /dev/stdout is one.
  is_limited_ = size_limit_ > 0 && S_ISREG(state.st_mode) && !is_link(path_);
  return true;
}

bool LogFile::write(const char *line, std::size_t length) {
  // Far more rotations of other processes than can come between two of our calls.
  constexpr int most_turns = 1000;
  bool may_open_another = true;
  Turn turn = Turn::moved;
  for (int i = 0; i < most_turns && turn == Turn::moved; ++i) {
    turn = is_limited_ ? take_turn(line, length, may_open_another) : append(line, length);
    if (turn == Turn::moved) may_open_another = open_at_path();
  }
  if (turn == Turn::written) return true;
  close();
  return false;
}

// A file that is no longer at its path, where no other can be opened, still takes
// what fits.
LogFile::Turn LogFile::take_turn(const char *line, std::size_t length, bool may_open_another) {
  const FileLock lock(descriptor_);
  struct stat own = {};
  if (::fstat(descriptor_, &own) != 0) return Turn::failed;
  const bool at_path = is_at_path(own);
  if (!at_path && may_open_another) return Turn::moved;
  if (has_room(own, length))
    return lock.is_held() ? append_at(own.st_size, line, length) : append(line, length);
  return at_path && lock.is_held() ? rotate(line, length) : Turn::failed;
}

bool LogFile::is_at_path(const struct stat &own) const {
  struct stat there = {};
  return ::lstat(path_, &there) == 0 && there.st_ino == own.st_ino && there.st_dev == own.st_dev;
}

bool LogFile::has_room(const struct stat &own, std::size_t length) const {
  return own.st_size == 0 || static_cast<sb8>(length) <= size_limit_ - own.st_size;
}

LogFile::Turn LogFile::append(const char *line, std::size_t length) const {
  return write_whole(descriptor_, line, length) ? Turn::written : Turn::failed;
}

// For whoever has the lock, so that nobody else has written after the end. What a failing
// write leaves of a line is cut off.
LogFile::Turn LogFile::append_at(off_t end, const char *line, std::size_t length) const {
  const Turn turn = append(line, length);
  if (turn == Turn::failed) uninterrupted([=, this] { return ::ftruncate(descriptor_, end); });
  return turn;
}

LogFile::Turn LogFile::rotate(const char *line, std::size_t length) {
  if (count_ > 1) return shift_files() ? Turn::moved : Turn::failed;
  const int status = uninterrupted([this] { return ::ftruncate(descriptor_, 0); });
  return status == 0 ? append_at(0, line, length) : Turn::failed;
}

// Only files that exist are moved, so that a large count costs nothing. The log
// itself comes last: with it the other processes' turn begins.
bool LogFile::shift_files() {
  ub4 last = 0;
  Presence next = Presence::there;
  while (last + 1 < count_ && (next = presence(numbered(older_, last + 1))) == Presence::there)
    ++last;
  // A file of which nothing is known may be one that must not be replaced.
  if (next == Presence::unknown) return false;
  if (last + 1 == count_) --last;
  for (ub4 number = last + 1; number > 0; --number)
    if (std::rename(numbered(newer_, number - 1), numbered(older_, number)) != 0) return false;
  return true;
}

const char *LogFile::numbered(NumberedPath &room, ub4 number) const {
  if (number == 0) return path_;
  std::snprintf(room, sizeof room, "%s.%" PRIu32, path_, number);
  return room;
}

// A lock belongs to the open file description, which parent and child share. With one
// of its own the child waits like any other process.
void LogFile::part_from_parent() {
  if (is_open() && is_limited_) open_at_path();
}

}  // namespace kzoci::platform
