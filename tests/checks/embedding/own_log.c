#include <kzoci/platform/log.h>
#include <stdio.h>

void kzoci_log_inner(enum log_level level, const char *file, int line, const char *format, ...) {
  fprintf(stderr, "own log: %d %s:%d %s\n", (int)level, file, line, format);
}
