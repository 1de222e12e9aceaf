// kztns check: what is wrong with a names file.
#pragma once

#include <optional>
#include <string>

#include "io/read_file.h"
#include "report/check_formats.h"

namespace kztns {

enum class ColorChoice { automatic, always, never };

struct CheckOptions {
  std::optional<std::string> file;  // absent: the one that the environment chooses
  std::uint64_t max_size = default_max_size;
  const CheckFormat *format = check_formats;
  ColorChoice color = ColorChoice::automatic;
  bool strict = false;  // warnings count as errors
};

// Returns an ExitStatus.
int check(const CheckOptions &options);

// Whether to write in colour to standard output.
bool wants_color(ColorChoice choice);

}  // namespace kztns
