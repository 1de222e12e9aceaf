// Which names file lookups read.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "io/read_file.h"

namespace kztns {

struct FileChoice {
  std::string variable;  // the one that chose it, or would have for a file that is given
  std::string value;     // its value
  std::string path;
};

// The file that is given; otherwise the one that the environment chooses, as the
// library does; absent when no variable names one. The file itself is not touched.
std::optional<FileChoice> choose_file(const std::optional<std::string> &given);

// The variables of the environment that name the file: "A, B or C".
std::string file_variables(const std::string &last_joint);

// Why the environment chooses no file.
std::string no_file_chosen();

// What reads as a file's name, and means standard input.
inline constexpr std::string_view standard_input = "-";

// Reads the file, standard input, or the file that the environment chooses; absent with the
// reason on standard error. path becomes the file's name, stdin_name for standard input.
std::optional<std::string> read_names_file(const std::optional<std::string> &file,
                                           const std::string &stdin_name, std::uint64_t max_size,
                                           std::string &path);

}  // namespace kztns
