// kztns check: what is wrong with names files.
#pragma once

#include <string>
#include <vector>

#include "io/read_file.h"
#include "report/check_formats.h"

namespace kztns {

enum class ColorChoice { automatic, always, never };

// From which severity on findings make the check fail.
enum class FailOn { error, warning, never };

struct CheckOptions {
  // Files, folders, or "-"; none: the file that the environment chooses.
  std::vector<std::string> paths;
  std::string stdin_name = "<stdin>";  // what reports call standard input
  std::uint64_t max_size = default_max_size;
  const CheckFormat *format = check_formats;
  ColorChoice color = ColorChoice::automatic;
  RuleSet disabled;
  bool strict = false;  // warnings are reported as errors
  FailOn fail_on = FailOn::error;
};

// Returns an ExitStatus.
int check(const CheckOptions &options);

// Prints all rules, or one with what the documents say of it; returns an ExitStatus.
int list_rules();
int explain_rule(Rule rule);

// Whether to write in colour to standard output.
bool wants_color(ColorChoice choice);

}  // namespace kztns
