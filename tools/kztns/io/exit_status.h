// How the command ends.
#pragma once

namespace kztns {

enum ExitStatus {
  exit_success = 0,
  exit_not_found = 1,
  exit_findings = 1,  // of a check: errors
  exit_malformed = 2,
  exit_usage = 64,
  exit_no_input = 66,     // the names file is there, but cannot be read
  exit_unavailable = 69,  // graphviz is not there, or fails
  exit_no_memory = 71,
  exit_output = 74,  // standard output cannot be written
};

}  // namespace kztns
