// The names files of the folders that a user lists.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kztns {

bool is_folder(const std::string &path);

// The files of a folder, and of the folders in it, whose names end in ".ora", sorted.
// Symbolic links to folders are not followed. fault says what keeps a folder from being
// read, or that there is no such file; the files that were found are there all the same.
std::vector<std::string> names_files_below(const std::string &folder,
                                           std::optional<std::string> &fault);

}  // namespace kztns
