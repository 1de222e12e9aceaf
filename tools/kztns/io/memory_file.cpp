#include "io/memory_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace kztns {
namespace {

#ifdef __EMSCRIPTEN__
// In a page all files are in memory, and a descriptor has no path.
unsigned opened = 0;  // so far; each has a path of its own

std::string path_of(int) { return "/tmp/kztns-" + std::to_string(opened); }
int open_in_memory() {
  ++opened;
  return open(path_of(0).c_str(), O_RDWR | O_CREAT | O_EXCL, S_IRUSR | S_IWUSR);
}
void forget(const std::string &path) { unlink(path.c_str()); }
#else
int open_in_memory() { return memfd_create("kztns", MFD_CLOEXEC); }
std::string path_of(int descriptor) { return "/proc/self/fd/" + std::to_string(descriptor); }
void forget(const std::string &) {}  // without a descriptor it is gone
#endif

}  // namespace

MemoryFile::MemoryFile()
    : descriptor_(open_in_memory()),
      error_(descriptor_ < 0 ? errno : 0),
      path_(path_of(descriptor_)) {
  // The path leads nowhere where /proc is not mounted.
  if (error_ == 0 && access(path_.c_str(), R_OK) != 0) error_ = errno;
}

MemoryFile::~MemoryFile() {
  if (descriptor_ < 0) return;
  close(descriptor_);
  forget(path_);
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
