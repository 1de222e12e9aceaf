// kztns check: what is wrong with a names file.
#pragma once

#include <optional>
#include <string>

#include "read_file.h"

namespace kztns {

enum class ReportFormat { text, json, sarif };
enum class ColorChoice { automatic, always, never };

struct CheckOptions {
  std::optional<std::string> file;  // absent: the one that the environment chooses
  std::uint64_t max_size = default_max_size;
  ReportFormat format = ReportFormat::text;
  ColorChoice color = ColorChoice::automatic;
  bool strict = false;  // warnings count as errors
};

// Returns an ExitStatus.
int check(const CheckOptions &options);

// Reads the file, or the one that the environment chooses; absent with the reason
// on standard error. path becomes the file's name.
std::optional<std::string> read_names_file(const std::optional<std::string> &file,
                                           std::uint64_t max_size, std::string &path);

// Whether to write in colour to standard output.
bool wants_color(ColorChoice choice);

}  // namespace kztns
