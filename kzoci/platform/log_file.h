// A log file that is rotated at a size, and that several processes may share.
//
// Each line is appended under a lock on the file itself, for which every process
// waits. A rotation ends with the renaming of the file, and a process that gets the
// lock of a renamed file opens the new one. So there is one rotation at a time,
// without a lock file beside the log.
#pragma once

#include <cstddef>

#include "default_logger.h"
#include "system.h"
#include "types.h"

namespace kzoci::platform {

// Has no destructor: the logger's file serves until the process has ended.
class LogFile {
 public:
  constexpr LogFile() = default;
  LogFile(const LogFile &) = delete;
  LogFile &operator=(const LogFile &) = delete;

  // Opens the file for appending, in place of the one open before. The path has
  // from 1 to KZOCI_LOG_PATH_MAX characters. A size_limit of 0 or less means no
  // rotation; count is the number of files kept.
  bool open(const char *path, std::size_t path_length, sb8 size_limit, ub4 count);
  void close();
  bool is_open() const { return descriptor_ != -1; }

  // Appends a whole line, after a rotation if it would carry the file over its
  // limit. False when that fails; the file is closed then.
  bool write(const char *line, std::size_t length);

  // To be called in the child after a fork.
  void part_from_parent();

 private:
  enum class Outcome { written, moved, failed };

  // ".4294967295"
  static constexpr std::size_t longest_suffix = 11;
  using Path = char[KZOCI_LOG_PATH_MAX + 1];
  using NumberedPath = char[sizeof(Path) + longest_suffix];

  bool set_path(const char *path, std::size_t length);
  bool open_at_path();
  Outcome append_or_rotate(const char *line, std::size_t length, bool may_open_another);
  Outcome rotate(const char *line, std::size_t length);
  Outcome append(const char *line, std::size_t length) const;
  Outcome append_at(sb8 end, const char *line, std::size_t length) const;
  bool is_at_path(const FileState &own) const;
  bool has_room(const FileState &own, std::size_t length) const;
  bool shift_files();
  const char *numbered(NumberedPath &buffer, ub4 number) const;

  int descriptor_ = -1;
  bool is_limited_ = false;
  sb8 size_limit_ = 0;
  ub4 count_ = 0;
  Path path_ = {};
  // Members, since a record may be logged on a small stack.
  NumberedPath older_ = {};
  NumberedPath newer_ = {};
};

}  // namespace kzoci::platform
