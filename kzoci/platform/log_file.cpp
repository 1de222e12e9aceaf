#include "kzoci/platform/log_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace kzoci::platform {

bool write_whole(int descriptor, const char *text, std::size_t length) {
  while (length > 0) {
    const ssize_t written = ::write(descriptor, text, length);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    text += written;
    length -= static_cast<std::size_t>(written);
  }
  return true;
}

bool LogFile::open(std::string path, sb8 size_limit, ub4 count) {
  close();
  path_ = std::move(path);
  size_limit_ = size_limit;
  count_ = count;
  return open_file(O_APPEND);
}

void LogFile::close() {
  if (is_open()) ::close(descriptor_);
  descriptor_ = -1;
}

bool LogFile::open_file(int flags) {
  constexpr mode_t owner_writes_group_reads = 0640;
  descriptor_ =
      ::open(path_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, owner_writes_group_reads);
  struct stat state = {};
  if (!is_open() || ::fstat(descriptor_, &state) != 0) {
    close();
    return false;
  }
  size_ = state.st_size;
  return true;
}

bool LogFile::write(const char *line, std::size_t length) {
  const bool over_limit =
      size_limit_ > 0 && size_ > 0 && static_cast<sb8>(length) > size_limit_ - size_;
  if ((!over_limit || rotate()) && append(line, length)) return true;
  close();
  return false;
}

bool LogFile::append(const char *line, std::size_t length) {
  size_ += static_cast<sb8>(length);
  return write_whole(descriptor_, line, length);
}

bool LogFile::rotate() {
  if (count_ > 1 && !shift_files()) return false;
  close();
  return open_file(O_APPEND | O_TRUNC);
}

// Only files that exist are moved, so that a large count costs nothing.
bool LogFile::shift_files() const {
  ub4 last = 0;
  while (last + 1 < count_ && ::access(numbered(last + 1).c_str(), F_OK) == 0) ++last;
  if (last + 1 == count_) --last;
  for (ub4 number = last + 1; number > 0; --number)
    if (std::rename(numbered(number - 1).c_str(), numbered(number).c_str()) != 0) return false;
  return true;
}

std::string LogFile::numbered(ub4 number) const {
  return number == 0 ? path_ : path_ + "." + std::to_string(number);
}

}  // namespace kzoci::platform
