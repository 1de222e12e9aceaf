#include "kzoci/platform/default_logger.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "kzoci/platform/letter_case.h"
#include "kzoci/platform/level_names.h"
#include "kzoci/platform/log_file.h"
#include "kzoci/platform/system.h"

namespace {

using kzoci::platform::level_name;
using kzoci::platform::level_names;
using kzoci::platform::LogFile;

constexpr int level_unknown = -1;

// The level of this name, in any letter case; level_unknown when there is none.
int level_of(const char *name, ub4 length) {
  for (int level = LOG_LEVEL_TRACE; level <= LOG_LEVEL_SLOWSQL; ++level) {
    const char *const known = level_names[level - 1];
    if (length == std::strlen(known) && kzoci::is_same_text(name, known, length)) return level;
  }
  return level_unknown;
}

struct Logger {
  int threshold = LOG_LEVEL_ERROR;
  kzoci_log_sink sink = nullptr;
  void *sink_context = nullptr;
  LogFile file;
};

// Not std::atomic: where it checks its arguments, it needs the C++ library.
int threshold_of(const Logger &log) { return __atomic_load_n(&log.threshold, __ATOMIC_RELAXED); }
void set_threshold(Logger &log, int level) {
  __atomic_store_n(&log.threshold, level, __ATOMIC_RELAXED);
}

// Neither made nor destroyed at run time, so that constructors and destructors of
// static objects may log.
constinit Logger logger;

// Room for a record that is too long for the stack; guarded by the logger's lock.
char long_line[64 * 1024];

class LoggerLock {
 public:
  LoggerLock() { kzoci::platform::lock_logger(); }
  ~LoggerLock() { kzoci::platform::unlock_logger(); }
  LoggerLock(const LoggerLock &) = delete;
  LoggerLock &operator=(const LoggerLock &) = delete;
};

[[maybe_unused]] const int fork_guard =
    kzoci::platform::guard_forks([] { logger.file.part_from_parent(); });

// All of a record except its text.
struct Origin {
  char time[32];
  log_level level;
  const char *file;
  int line;
  int error;  // errno of the caller
};

// Not by gmtime_r, which reads the time zone: that allocates, and takes a lock that
// a fork may leave locked.
void put_time(char (&text)[32]) {
  using namespace std::chrono;
  const kzoci::platform::Time now = kzoci::platform::now();
  const sys_seconds second{seconds{now.seconds}};
  const auto day = floor<days>(second);
  const year_month_day date{day};
  const hh_mm_ss time{second - day};
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(time.hours().count()),
                static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()),
                now.milliseconds);
}

// A line in a buffer: the head, the text, a line feed, a zero byte.
struct Layout {
  std::size_t text_at;
  std::size_t text_length;

  std::size_t length() const { return text_at + text_length + 1; }
  std::size_t room() const { return length() + 1; }
};

std::size_t not_negative(int length) { return static_cast<std::size_t>(std::max(length, 0)); }

// Formats as much as there is room for; the layout is that of the whole line.
Layout format_line(char *buffer, std::size_t size, const Origin &origin, const char *format,
                   va_list arguments) {
  const std::size_t text_at =
      not_negative(std::snprintf(buffer, size, "%s %s %s:%d ", origin.time,
                                 level_name(origin.level), origin.file, origin.line));
  const bool has_room = text_at < size;
  char *const text = has_room ? buffer + text_at : nullptr;
  const std::size_t room = has_room ? size - text_at : 0;
  errno = origin.error;
  int length = std::vsnprintf(text, room, format, arguments);
  // Of a text that cannot be formatted, the format is better than nothing.
  if (length < 0) length = std::snprintf(text, room, "%s", format);
  return {text_at, not_negative(length)};
}

// The part of a line that fits into a buffer of this size.
Layout cut(const Layout &whole, std::size_t size) {
  const std::size_t most = size - 2;
  const std::size_t text_at = std::min(whole.text_at, most);
  return {text_at, std::min(whole.text_length, most - text_at)};
}

void write_line(const char *line, std::size_t length) {
  if (logger.file.is_open() && logger.file.write(line, length)) return;
  // Not through the stream: it would lose the rest of a line that a signal
  // interrupts, and all of it where the program writes wide text.
  kzoci::platform::write_whole(kzoci::platform::standard_error, line, length);
}

// The line feed takes the place of the terminator only where a line is written:
// a sink gets the text alone.
void deliver(const Origin &origin, char *line, const Layout &layout) {
  char &end = line[layout.length() - 1];
  if (logger.sink != nullptr) {
    end = '\0';
    const kzoci_log_record record = {origin.level, origin.file, origin.line, line + layout.text_at,
                                     layout.text_length};
    logger.sink(logger.sink_context, &record);
    return;
  }
  end = '\n';
  write_line(line, layout.length());
}

// Memory is allocated only for what long_line cannot hold; without memory the line is
// cut to it. It is allocated before the lock is taken, since a replaced malloc may log.
void log_long_line(const Origin &origin, std::size_t room, const char *format, va_list arguments) {
  char *const block = room > sizeof long_line ? static_cast<char *>(std::malloc(room)) : nullptr;
  char *const line = block == nullptr ? long_line : block;
  const std::size_t size = block == nullptr ? sizeof long_line : room;
  {
    const LoggerLock lock;
    deliver(origin, line, cut(format_line(line, size, origin, format, arguments), size));
  }
  std::free(block);
}

}  // namespace

void kzoci_log_inner(log_level level, const char *file, int line, const char *format, ...) {
  if (level < threshold_of(logger)) return;
  Origin origin = {{}, level, file, line, errno};
  put_time(origin.time);

  char short_line[1024];
  va_list arguments;
  va_start(arguments, format);
  const Layout layout = format_line(short_line, sizeof short_line, origin, format, arguments);
  va_end(arguments);
  if (layout.room() <= sizeof short_line) {
    const LoggerLock lock;
    deliver(origin, short_line, layout);
  } else {
    va_start(arguments, format);
    log_long_line(origin, layout.room(), format, arguments);
    va_end(arguments);
  }
  errno = origin.error;
}

void kzoci_log_set_threshold(log_level level) {
  // Slow-SQL batches are written whatever the threshold.
  set_threshold(logger, level < LOG_LEVEL_SLOWSQL ? level : LOG_LEVEL_SLOWSQL);
}

log_level kzoci_log_threshold(void) { return static_cast<log_level>(threshold_of(logger)); }

void kzoci_log_set_sink(kzoci_log_sink sink, void *context) {
  const LoggerLock lock;
  logger.sink = sink;
  logger.sink_context = context;
}

sword kzoci_log_configure(const kzoci_log_settings *settings) {
  constexpr sword level_not_known = -1;
  constexpr sword settings_null = -2;
  constexpr sword file_not_opened = -3;
  constexpr sword path_too_long = -4;

  if (settings == nullptr) return settings_null;
  const int level = settings->level_len == 0 ? kzoci_log_threshold()
                                             : level_of(settings->level, settings->level_len);
  if (level == level_unknown) return level_not_known;
  if (settings->path_len > KZOCI_LOG_PATH_MAX) return path_too_long;
  kzoci_log_set_threshold(static_cast<log_level>(level));

  const LoggerLock lock;
  logger.file.close();
  if (settings->path_len == 0) return 0;
  const bool opened = logger.file.open(settings->path, settings->path_len, settings->file_size,
                                       settings->file_count);
  return opened ? 0 : file_not_opened;
}
