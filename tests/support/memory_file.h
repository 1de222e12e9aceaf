// A names file that lives in memory, is rewritten in place and stands in the
// environment as the names file while it exists.
#pragma once

#include <string>
#include <string_view>

#include "parsing.h"

#if !defined(_WIN32)
#include <sys/mman.h>
#endif

namespace support {

#if defined(_WIN32)

// There it has a path like any other. It stays open: opening takes longer than all the rest.
class MemoryFile {
 public:
  MemoryFile() : path_(folder_.write("names", "")), file_(std::fopen(path_.c_str(), "wb")) {
    environment_.set("KZCI_TNS_FILE", path_);
  }
  ~MemoryFile() { std::fclose(file_); }
  MemoryFile(const MemoryFile &) = delete;
  MemoryFile &operator=(const MemoryFile &) = delete;

  [[nodiscard]] bool write(std::string_view text) {
    std::rewind(file_);
    return _chsize(_fileno(file_), 0) == 0 &&
           std::fwrite(text.data(), 1, text.size(), file_) == text.size() &&
           std::fflush(file_) == 0;
  }

 private:
  TemporaryFolder folder_;
  Environment environment_;
  std::string path_;
  std::FILE *file_;
};

#else

class MemoryFile {
 public:
  MemoryFile() : descriptor_(memfd_create("names", 0)) {
    environment_.set("KZCI_TNS_FILE", "/proc/self/fd/" + std::to_string(descriptor_));
  }
  ~MemoryFile() { close(descriptor_); }
  MemoryFile(const MemoryFile &) = delete;
  MemoryFile &operator=(const MemoryFile &) = delete;

  // False when the system does not store the whole text.
  [[nodiscard]] bool write(std::string_view text) {
    return ftruncate(descriptor_, 0) == 0 &&
           pwrite(descriptor_, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
  }

 private:
  Environment environment_;
  int descriptor_;
};

#endif

}  // namespace support
