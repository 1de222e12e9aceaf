// A log file that is rotated at a size.
#pragma once

#include <cstddef>
#include <string>

#include "types.h"

namespace kzoci::platform {

// Writes a text to a file descriptor, however many calls that takes. False when a
// call fails.
bool write_whole(int descriptor, const char *text, std::size_t length);

class LogFile {
 public:
  LogFile() = default;
  ~LogFile() { close(); }
  LogFile(const LogFile &) = delete;
  LogFile &operator=(const LogFile &) = delete;

  // Opens the file for appending, in place of the one open before. A size_limit
  // of 0 or less means no rotation; count is the number of files kept.
  bool open(std::string path, sb8 size_limit, ub4 count);
  void close();
  bool is_open() const { return descriptor_ != -1; }

  // Appends a whole line, after a rotation if it would carry the file over its
  // limit. False when that fails; the file is closed then.
  bool write(const char *line, std::size_t length);

 private:
  bool open_file(int flags);
  bool append(const char *line, std::size_t length);
  bool rotate();
  bool shift_files() const;
  std::string numbered(ub4 number) const;

  int descriptor_ = -1;
  std::string path_;
  sb8 size_limit_ = 0;
  ub4 count_ = 0;
  sb8 size_ = 0;
};

}  // namespace kzoci::platform
