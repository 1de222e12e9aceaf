// The records that the module logs, by name; their texts are in messages.def. The module
// logs `message::token_failed`; a program that reads the log recognises a record by the
// address of its format.
#pragma once

#include <climits>
#include <cstddef>
#include <string_view>

#include "kzoci/platform/log.h"
#include "kzoci/platform/types.h"

// The formats print 64-bit numbers as long, which elsewhere may have 32 bits.
#if LONG_MAX >= INT64_MAX
#define KZ_LD "ld"
#else
#define KZ_LD "lld"
#endif

namespace kzoci::tns {

#if LONG_MAX >= INT64_MAX
using long_argument = long;
#else
using long_argument = long long;
#endif

// How each type of argument is printed. No other type is.
template <class Argument>
constexpr std::string_view conversion = "?";
template <>
inline constexpr std::string_view conversion<int> = "d";
template <>
inline constexpr std::string_view conversion<unsigned> = "u";
template <>
inline constexpr std::string_view conversion<unsigned long> = "lu";
template <>
inline constexpr std::string_view conversion<long_argument> = KZ_LD;
template <>
inline constexpr std::string_view conversion<const char *> = "s";
template <>
inline constexpr std::string_view conversion<const void *> = "p";

// What follows the first "%" of a text; empty when there is none. A plain loop: with
// sanitizers g++ 12 takes no comparison of an address with null for a constant.
constexpr std::string_view next_conversion(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i)
    if (text[i] == '%') return text.substr(i + 1);
  return {};
}

// Whether a format prints arguments of these types, all of them and no others.
template <class... Arguments>
consteval bool is_printed_by(std::string_view format) {
  const std::string_view wanted[] = {conversion<Arguments>..., "?"};
  std::size_t taken = 0;
  for (std::string_view at = next_conversion(format); !at.empty(); at = next_conversion(at)) {
    if (at.starts_with(".*")) {
      if (wanted[taken++] != conversion<int>) return false;
      at.remove_prefix(2);
    }
    if (taken == sizeof...(Arguments) || !at.starts_with(wanted[taken++])) return false;
  }
  return taken == sizeof...(Arguments);
}

// A record's level and format, with the types of its arguments.
template <class... Arguments>
struct Message {
  log_level level;
  const char *format;
};

enum class MessageId {
#define MESSAGE(identity, level, format, ...) identity,
#include "messages.def"
#undef MESSAGE
};

// Each format is one object of the program or shared library that holds the module, so
// that its address identifies the record.
#pragma GCC visibility push(hidden)
namespace message {
#define MESSAGE(identity, level, format, ...)                   \
  inline constexpr char identity##_format[] = format;           \
  static_assert(is_printed_by<__VA_ARGS__>(identity##_format)); \
  inline constexpr Message<__VA_ARGS__> identity = {LOG_LEVEL_##level, identity##_format};
#include "messages.def"
#undef MESSAGE
}  // namespace message

// All records, for programs that read the log.
struct MessageRow {
  const char *name;
  const char *format;
  MessageId id;
  log_level level;
};

inline constexpr MessageRow messages[] = {
#define MESSAGE(identity, level, format, ...) \
  {#identity, message::identity##_format, MessageId::identity, LOG_LEVEL_##level},
#include "messages.def"
#undef MESSAGE
};
#pragma GCC visibility pop

}  // namespace kzoci::tns
