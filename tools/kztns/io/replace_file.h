// Writing a file so that no reader ever sees a part of it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kztns {

enum class Backup {
  none,
  tilde  // the file as it was is kept as FILE~
};

// Gives a file a new content: writes a file beside it, which then takes its name. Mode and
// owner stay; of a symbolic link it is the file that it leads to. A file that is not there
// is made; what is no regular file is written to as it is, without a backup.
//
// Returns what failed, as a clause about the file; absent for nothing. After a failure the
// file is as it was.
std::optional<std::string> replace_file(const std::string &path, std::string_view text,
                                        Backup backup);

}  // namespace kztns
