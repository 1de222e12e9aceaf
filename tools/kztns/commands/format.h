// kztns format: a names file, laid out.
#pragma once

#include <optional>
#include <string>

#include "format/layout.h"
#include "io/read_file.h"

namespace kztns {

enum class FormatTarget {
  output,   // the text goes to standard output
  diff,     // what changes does
  check,    // nothing is written
  in_place  // the file itself is replaced
};

struct FormatCommand {
  std::optional<std::string> file;  // absent: the one that the environment chooses
  std::string stdin_name = {};      // of standard input
  std::uint64_t max_size = default_max_size;
  FormatTarget target = FormatTarget::output;
  FormatOptions layout = {};
};

// Returns an ExitStatus.
int format(const FormatCommand &command);

}  // namespace kztns
