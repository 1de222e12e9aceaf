// How the command ends.
#pragma once

namespace kztns {

enum ExitStatus {
  exit_success = 0,
  exit_not_found = 1,
  exit_malformed = 2,
  exit_usage = 64,
  exit_output = 74,  // standard output cannot be written
};

}  // namespace kztns
