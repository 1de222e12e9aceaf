// A names file that lives in memory, is rewritten in place and stands in the
// environment as the names file while it exists.
#pragma once

#include <string>
#include <string_view>

#include <sys/mman.h>
#include <unistd.h>

#include "parsing.h"

namespace support {

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

}  // namespace support
