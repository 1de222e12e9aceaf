/*
 * The log function that the module calls, and its levels.
 *
 * An embedder replaces the default implementation by defining kzoci_log_inner
 * in the program, which then must not call the functions of
 * kzoci/platform/default_logger.h: they configure the default implementation.
 */
#ifndef KZOCI_PLATFORM_LOG_H
#define KZOCI_PLATFORM_LOG_H

#include "api.h"

/* Lets compilers check the arguments of a function against its format: the numbers, from
 * 1, of the format and of the first argument after it. */
#if defined(__MINGW32__)
#define KZOCI_PRINTF_LIKE(format_at, arguments_at) \
  __attribute__((format(gnu_printf, format_at, arguments_at)))
#elif defined(__GNUC__)
#define KZOCI_PRINTF_LIKE(format_at, arguments_at) \
  __attribute__((format(printf, format_at, arguments_at)))
#else
#define KZOCI_PRINTF_LIKE(format_at, arguments_at)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Severities, in rising order. */
typedef enum log_level {
  LOG_LEVEL_TRACE = 1,
  LOG_LEVEL_DEBUG,
  LOG_LEVEL_INFO,
  LOG_LEVEL_WARN,
  LOG_LEVEL_ERROR,
  LOG_LEVEL_FATAL,
  LOG_LEVEL_SLOWSQL /* batches of slow-statement reports; never filtered out */
} log_level;

/*
 * Takes one log record.
 *
 * level   severity of the record
 * file    path of the source file that logs; a constant, never null
 * line    line of the call in that file
 * format  printf format, followed by its arguments; texts of the input are
 *         passed with "%.*s" and are not terminated
 *
 * The module calls it for every record, whatever its level: filtering is the
 * implementation's business, and best done before anything is formatted. It is
 * called from every thread that uses the module. It must not throw.
 */
KZOCI_API void kzoci_log_inner(log_level level, const char *file, int line, const char *format, ...)
    KZOCI_PRINTF_LIKE(4, 5);

#ifdef __cplusplus
}
#endif

#endif
