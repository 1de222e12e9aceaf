// The names of the log levels, from LOG_LEVEL_TRACE on.
#pragma once

#include <cstddef>
#include <iterator>

#include "kzoci/platform/log.h"

namespace kzoci::platform {

constexpr const char *level_names[] = {"TRACE", "DEBUG", "INFO",   "WARN",
                                       "ERROR", "FATAL", "SLOWSQL"};

// C programs may log at levels that there are not.
constexpr const char *level_name(log_level level) {
  const std::size_t at = static_cast<std::size_t>(level) - LOG_LEVEL_TRACE;
  return at < std::size(level_names) ? level_names[at] : "?";
}

}  // namespace kzoci::platform
