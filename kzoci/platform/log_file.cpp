#include "kzoci/platform/log_file.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace kzoci::platform {

namespace {

// Keeps other processes waiting while it exists, where the file system has locks.
class FileLock {
 public:
  explicit FileLock(int descriptor) : descriptor_(descriptor), is_held_(lock_file(descriptor)) {}
  ~FileLock() { unlock_file(descriptor_); }
  FileLock(const FileLock &) = delete;
  FileLock &operator=(const FileLock &) = delete;

  bool is_held() const { return is_held_; }

 private:
  int descriptor_;
  bool is_held_;
};

}  // namespace

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
  return make_absolute(path, length, path_, sizeof path_);
}

void LogFile::close() {
  if (is_open()) close_file(descriptor_);
  descriptor_ = -1;
}

// The file open before is closed only when the other one is open.
bool LogFile::open_at_path() {
  const int opened = open_for_appending(path_);
  if (opened == -1) return false;
  FileState state = {};
  if (!state_of(opened, state)) {
    close_file(opened);
    return false;
  }
  close();
  descriptor_ = opened;
  // A pipe or a device has no size and must not be renamed, nor must a link, which is
  // somebody's own: /dev/stdout is one.
  FileState at_path = {};
  const bool is_link = presence(path_, at_path) == Presence::there && at_path.is_link;
  is_limited_ = size_limit_ > 0 && state.is_regular && !is_link;
  return true;
}

bool LogFile::write(const char *line, std::size_t length) {
  // Far more rotations of other processes than can come between two of our calls.
  constexpr int most_attempts = 1000;
  bool may_open_another = true;
  Outcome outcome = Outcome::moved;
  for (int i = 0; i < most_attempts && outcome == Outcome::moved; ++i) {
    outcome = is_limited_ ? append_or_rotate(line, length, may_open_another) : append(line, length);
    if (outcome == Outcome::moved) may_open_another = open_at_path();
  }
  if (outcome == Outcome::written) return true;
  close();
  return false;
}

// A file that is no longer at its path, where no other can be opened, still takes
// what fits.
LogFile::Outcome LogFile::append_or_rotate(const char *line, std::size_t length,
                                           bool may_open_another) {
  const FileLock lock(descriptor_);
  FileState own = {};
  if (!state_of(descriptor_, own)) return Outcome::failed;
  const bool at_path = is_at_path(own);
  if (!at_path && may_open_another) return Outcome::moved;
  if (has_room(own, length))
    return lock.is_held() ? append_at(own.size, line, length) : append(line, length);
  return at_path && lock.is_held() ? rotate(line, length) : Outcome::failed;
}

bool LogFile::is_at_path(const FileState &own) const {
  FileState there = {};
  return presence(path_, there) == Presence::there && there.identity[1] == own.identity[1] &&
         there.identity[0] == own.identity[0];
}

bool LogFile::has_room(const FileState &own, std::size_t length) const {
  return own.size == 0 || static_cast<sb8>(length) <= size_limit_ - own.size;
}

LogFile::Outcome LogFile::append(const char *line, std::size_t length) const {
  return write_whole(descriptor_, line, length) ? Outcome::written : Outcome::failed;
}

// For whoever has the lock, so that nobody else has written after the end. What a failing
// write leaves of a line is cut off.
LogFile::Outcome LogFile::append_at(sb8 end, const char *line, std::size_t length) const {
  const Outcome outcome = append(line, length);
  if (outcome == Outcome::failed) cut_off(descriptor_, end);
  return outcome;
}

LogFile::Outcome LogFile::rotate(const char *line, std::size_t length) {
  if (count_ > 1) return shift_files() ? Outcome::moved : Outcome::failed;
  return cut_off(descriptor_, 0) ? append_at(0, line, length) : Outcome::failed;
}

// Only files that exist are moved, so that a large count costs nothing. The log
// itself comes last: with it the other processes' turn begins.
bool LogFile::shift_files() {
  ub4 last = 0;
  Presence next = Presence::there;
  FileState ignored = {};
  while (last + 1 < count_ &&
         (next = presence(numbered(older_, last + 1), ignored)) == Presence::there)
    ++last;
  // A file of which nothing is known may be one that must not be replaced.
  if (next == Presence::unknown) return false;
  if (last + 1 == count_) --last;
  for (ub4 number = last + 1; number > 0; --number)
    if (!rename_file(numbered(newer_, number - 1), numbered(older_, number))) return false;
  return true;
}

const char *LogFile::numbered(NumberedPath &buffer, ub4 number) const {
  if (number == 0) return path_;
  std::snprintf(buffer, sizeof buffer, "%s.%" PRIu32, path_, number);
  return buffer;
}

// A lock belongs to the open file description, which parent and child share. With one
// of its own the child waits like any other process.
void LogFile::part_from_parent() {
  if (is_open() && is_limited_) open_at_path();
}

}  // namespace kzoci::platform
