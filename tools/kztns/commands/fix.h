// kztns fix: a names file with what check finds mended.
#pragma once

#include <optional>
#include <string>

#include "io/read_file.h"
#include "mend/comment_out.h"

namespace kztns {

enum class FixTarget {
  output,    // the mended text goes to standard output
  diff,      // what changes does
  in_place,  // the file itself is replaced
  file       // another file is written
};

struct FixOptions {
  std::optional<std::string> file;  // absent: the one that the environment chooses
  std::string stdin_name = {};      // of standard input
  std::uint64_t max_size = default_max_size;
  RuleSet disabled = {};  // rules whose fixes are not applied
  FixTarget target = FixTarget::output;
  std::string output = {};    // of FixTarget::file
  bool with_unsafe = false;   // fixes that guess or give something up, too
  bool inline_ifile = false;  // the text of included files in the place of their lines
  Commenting commenting = {};
};

// Returns an ExitStatus. Nothing is written where a name would not be served as before.
int fix(const FixOptions &options);

}  // namespace kztns
