#include "io/memory_file.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace kztns {

MemoryFile::MemoryFile()
    : descriptor_(memfd_create("kztns", MFD_CLOEXEC)),
      error_(descriptor_ < 0 ? errno : 0),
      path_("/proc/self/fd/" + std::to_string(descriptor_)) {
  // The path leads nowhere where /proc is not mounted.
  if (error_ == 0 && access(path_.c_str(), R_OK) != 0) error_ = errno;
}

MemoryFile::~MemoryFile() {
  if (descriptor_ >= 0) close(descriptor_);
}

bool MemoryFile::append(std::string_view bytes) {
  while (error_ == 0 && !bytes.empty()) {
    const ssize_t count = write(descriptor_, bytes.data(), bytes.size());
    if (count >= 0)
      bytes.remove_prefix(static_cast<std::size_t>(count));
    else if (errno != EINTR)
      error_ = errno;
  }
  return error_ == 0;
}

std::string MemoryFile::text() const {
  struct stat status = {};
  if (fstat(descriptor_, &status) != 0) return {};
  std::string text(static_cast<std::size_t>(status.st_size), '\0');
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t count =
        pread(descriptor_, text.data() + done, text.size() - done, static_cast<off_t>(done));
    if (count <= 0 && !(count < 0 && errno == EINTR)) break;
    if (count > 0) done += static_cast<std::size_t>(count);
  }
  text.resize(done);
  return text;
}

}  // namespace kztns
