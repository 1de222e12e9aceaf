#include "check.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace fuzz {

void check(bool holds, const char *format, ...) {
  if (holds) return;
  va_list arguments;
  va_start(arguments, format);
  std::fputs("check failed: ", stderr);
  std::vfprintf(stderr, format, arguments);
  std::fputc('\n', stderr);
  va_end(arguments);
  std::abort();
}

}  // namespace fuzz
