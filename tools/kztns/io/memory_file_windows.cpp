#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "io/memory_file.h"

// A temporary file, which the system keeps in memory as long as it likes: no file is without
// a name there.
namespace kztns {
namespace {

std::string temporary_name() {
  char *const name = _tempnam(nullptr, "kztns");
  const std::string path = name == nullptr ? "" : name;
  std::free(name);
  return path;
}

int make(const std::string &path) {
  return _open(path.c_str(), _O_RDWR | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT,
               _S_IREAD | _S_IWRITE);
}

constexpr std::size_t largest_piece = 1 << 30;

}  // namespace

MemoryFile::MemoryFile() : descriptor_(-1), error_(0), path_(temporary_name()) {
  descriptor_ = make(path_);
  if (descriptor_ < 0) error_ = errno;
}

MemoryFile::~MemoryFile() {
  if (descriptor_ < 0) return;
  _close(descriptor_);
  _unlink(path_.c_str());
}

bool MemoryFile::append(std::string_view bytes) {
  while (error_ == 0 && !bytes.empty()) {
    const auto piece = static_cast<unsigned>(std::min(bytes.size(), largest_piece));
    const int count = _write(descriptor_, bytes.data(), piece);
    if (count < 0)
      error_ = errno;
    else
      bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return error_ == 0;
}

std::string MemoryFile::text() const {
  const std::int64_t size = _filelengthi64(descriptor_);
  if (size < 0 || _lseeki64(descriptor_, 0, SEEK_SET) != 0) return {};
  std::string text(static_cast<std::size_t>(size), '\0');
  std::size_t done = 0;
  while (done < text.size()) {
    const auto piece = static_cast<unsigned>(std::min(text.size() - done, largest_piece));
    const int count = _read(descriptor_, text.data() + done, piece);
    if (count <= 0) break;
    done += static_cast<std::size_t>(count);
  }
  text.resize(done);
  return text;
}

}  // namespace kztns
