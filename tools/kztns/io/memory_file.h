// A file that is nowhere but in memory, for programs that need one by its path.
#pragma once

#include <string>
#include <string_view>

namespace kztns {

class MemoryFile {
 public:
  MemoryFile();
  ~MemoryFile();
  MemoryFile(const MemoryFile &) = delete;
  MemoryFile &operator=(const MemoryFile &) = delete;

  int descriptor() const { return descriptor_; }

  // Opens at the beginning, as often as wanted, in this process.
  const std::string &path() const { return path_; }

  // Appends all of it unless something failed; returns whether nothing did.
  bool append(std::string_view bytes);

  // What failed first, making the file or appending: an errno value; 0 for nothing.
  int error() const { return error_; }

  std::string text() const;

 private:
  int descriptor_;
  int error_;
  std::string path_;
};

}  // namespace kztns
