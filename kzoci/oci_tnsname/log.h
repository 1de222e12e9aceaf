// Logging a record, and the arguments that formats need in the right width.
#pragma once

#include <algorithm>
#include <climits>
#include <cstddef>
#include <type_traits>

#include "kzoci/platform/log.h"
#include "messages.h"

// Logs a record by its name. A macro, so that it carries the file and line of its call.
#define KZ_LOG(...) kzoci::tns::log_record({__FILE__, __LINE__}, __VA_ARGS__)

namespace kzoci::tns {

// Where a record is logged.
struct Place {
  const char *file;
  int line;
};

// Each message has checked its format against its arguments; compilers do not see that.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
template <class... Arguments>
inline void log_record(Place place, const Message<Arguments...> &message,
                       std::type_identity_t<Arguments>... arguments) {
  kzoci_log_inner(message.level, place.file, place.line, message.format, arguments...);
}
#pragma GCC diagnostic pop

// A number for KZ_LD.
inline long_argument long_number(sb8 number) { return static_cast<long_argument>(number); }

// A size for "%lu".
inline unsigned long size_number(std::size_t size) { return static_cast<unsigned long>(size); }

// The precision for "%.*s" that prints a text of this length.
inline int precision(ub4 length) { return static_cast<int>(std::min<ub4>(length, INT_MAX)); }

// The same, and never more than the text's array holds.
inline int precision(ub4 length, std::size_t capacity) {
  return static_cast<int>(std::min<std::size_t>(length, capacity));
}

}  // namespace kzoci::tns
