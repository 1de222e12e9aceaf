// The statuses of every operation, by name.
#pragma once

#include "kzoci/platform/types.h"
#include "log.h"

namespace kzoci::tns {

constexpr sword success = 0;
constexpr sword failure = -1;
constexpr sword invalid_handle = -2;
constexpr sword no_data = 100;  // the input is exhausted

// Refuses a null argument.
inline sword refuse_null_handle() {
  KZ_LOG_ERROR("invalid handle, handle is NULL");
  return invalid_handle;
}

}  // namespace kzoci::tns
