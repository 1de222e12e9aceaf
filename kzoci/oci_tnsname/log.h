// The log words, and the arguments that log formats need in the right width.
#pragma once

#include <algorithm>
#include <climits>
#include <cstddef>

#include "kzoci/platform/log.h"
#include "kzoci/platform/types.h"

// Macros, so that a record carries the file and line of its call and the
// compiler checks the format against the arguments.
#define KZ_LOG(level, ...) kzoci_log_inner(level, __FILE__, __LINE__, __VA_ARGS__)
#define KZ_LOG_DEBUG(...) KZ_LOG(LOG_LEVEL_DEBUG, __VA_ARGS__)
#define KZ_LOG_WARN(...) KZ_LOG(LOG_LEVEL_WARN, __VA_ARGS__)
#define KZ_LOG_ERROR(...) KZ_LOG(LOG_LEVEL_ERROR, __VA_ARGS__)
#define KZ_LOG_SLOWSQL(...) KZ_LOG(LOG_LEVEL_SLOWSQL, __VA_ARGS__)

namespace kzoci::tns {

// A pointer for "%p".
inline const void *pointer(const void *address) { return address; }

// The conversion that prints a 64-bit number whole: "%" KZ_LD. It is "%ld" wherever
// long has 64 bits.
#if defined(__LP64__)
#define KZ_LD "ld"
using LongNumber = long;
#else
#define KZ_LD "lld"
using LongNumber = long long;
#endif

// A number for "%" KZ_LD.
inline LongNumber long_number(sb8 number) { return static_cast<LongNumber>(number); }

// A size for "%lu".
inline unsigned long size_number(std::size_t size) { return static_cast<unsigned long>(size); }

// The precision for "%.*s" that prints a text of this length.
inline int precision(ub4 length) { return static_cast<int>(std::min<ub4>(length, INT_MAX)); }

// The same, and never more than the array behind the text holds.
inline int precision(ub4 length, std::size_t capacity) {
  return static_cast<int>(std::min<std::size_t>(length, capacity));
}

}  // namespace kzoci::tns
