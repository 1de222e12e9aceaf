// What goes into the log and what is found in its files. Records are counted where the
// module hands them to the logger, lines where the logger has written them: in the files
// that are left at the end, and in each file at the moment at which a rotation replaces it.
#pragma once

#include <cstdint>
#include <string>

#include "kzoci/platform/types.h"

namespace soak {

// Lines without their times, in no order: equal sums mean that the same lines are there.
struct Lines {
  long long count = 0;
  std::uint64_t checksum = 0;

  bool operator==(const Lines &) const = default;
};

struct LogAccount {
  Lines handed_over;  // to the logger, at or above its threshold
  Lines dropped;      // with the files that rotation replaced
  Lines left;         // in the files at the end
  long long rotations = 0;
  long long bytes_dropped = 0;
  long long files_too_large = 0;  // above the limit with more than one record
  long long broken_ends = 0;      // files that do not end with a line feed
};

// The rotated files of the log, from WARN on. To be called before any thread starts.
void choose_log(const std::string &path, sb8 file_size, ub4 file_count);

// Opens the log, also when it is open and written to. False when the logger refuses.
bool open_log();

// Closes the log and reads what is left of it.
LogAccount close_log();

}  // namespace soak
