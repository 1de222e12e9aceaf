// The statuses of every operation, by name, and how a failure is passed up.
#pragma once

#include "kzoci/platform/types.h"
#include "log.h"

namespace kzoci::tns {

constexpr sword success = 0;
constexpr sword failure = -1;
constexpr sword invalid_handle = -2;
constexpr sword no_data = 100;  // the input is exhausted

// The two below log with the place of their caller, so that records of one text can be
// told apart.

// Refuses a null argument.
inline sword refuse_null_handle(const char *file = __builtin_FILE(), int line = __builtin_LINE()) {
  log_record({file, line}, message::null_handle);
  return invalid_handle;
}

// The status of a step, which is logged when it is a failure.
inline sword reported(sword status, const Message<sword> &step_failed,
                      const char *file = __builtin_FILE(), int line = __builtin_LINE()) {
  if (status != success) log_record({file, line}, step_failed, status);
  return status;
}

}  // namespace kzoci::tns
