#include "kzoci/platform/default_logger.h"

#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <mutex>
#include <new>
#include <string>

#include "kzoci/platform/log_file.h"

namespace {

using kzoci::platform::LogFile;

constexpr const char *level_names[] = {"TRACE", "DEBUG", "INFO",   "WARN",
                                       "ERROR", "FATAL", "SLOWSQL"};

const char *level_name(log_level level) {
  return level >= LOG_LEVEL_TRACE && level <= LOG_LEVEL_SLOWSQL ? level_names[level - 1] : "?";
}

// The level of this name, in any letter case; 0 when there is none.
int level_of(const char *name, ub4 length) {
  for (int level = LOG_LEVEL_TRACE; level <= LOG_LEVEL_SLOWSQL; ++level) {
    const char *const known = level_names[level - 1];
    if (length == std::strlen(known) && strncasecmp(name, known, length) == 0) return level;
  }
  return 0;
}

struct Logger {
  std::mutex mutex;
  std::atomic<int> threshold = LOG_LEVEL_ERROR;
  kzoci_log_sink sink = nullptr;
  void *sink_context = nullptr;
  LogFile file;
};

// Never destroyed, so that destructors of static objects may still log.
Logger &logger() {
  static Logger &instance = *new Logger;
  return instance;
}

// Where a record comes from, and when.
struct Origin {
  char time[32];
  log_level level;
  const char *file;
  int line;
};

void put_time(char (&text)[32]) {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  tm utc = {};
  gmtime_r(&now.tv_sec, &utc);
  const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
  std::snprintf(text + length, sizeof text - length, ".%03dZ",
                static_cast<int>(now.tv_nsec / 1000000));
}

// A line in a buffer: the head, the text, a line feed, a zero byte.
struct Layout {
  std::size_t text_at;
  std::size_t text_length;

  std::size_t length() const { return text_at + text_length + 1; }
  std::size_t room() const { return length() + 1; }
};

std::size_t not_negative(int length) { return length < 0 ? 0 : static_cast<std::size_t>(length); }

// Formats as much as there is room for; the layout is that of the whole line.
Layout format_line(char *buffer, std::size_t size, const Origin &origin, const char *format,
                   va_list arguments) {
  const std::size_t text_at =
      not_negative(std::snprintf(buffer, size, "%s %s %s:%d ", origin.time,
                                 level_name(origin.level), origin.file, origin.line));
  const bool has_room = text_at < size;
  char *const text = has_room ? buffer + text_at : nullptr;
  const std::size_t room = has_room ? size - text_at : 0;
  int length = std::vsnprintf(text, room, format, arguments);
  // A text that cannot be formatted is better told by its format than lost.
  if (length < 0) length = std::snprintf(text, room, "%s", format);
  return {text_at, not_negative(length)};
}

void write_line(Logger &log, const char *line, std::size_t length) {
  if (log.file.is_open() && log.file.write(line, length)) return;
  // Not through the stream: it would lose the rest of a line that a signal
  // interrupts, and all of it where the program writes wide text.
  kzoci::platform::write_whole(STDERR_FILENO, line, length);
}

// The line feed takes the place of the terminator only where a line is written:
// a sink gets the text alone.
void deliver(const Origin &origin, char *line, const Layout &layout) {
  Logger &log = logger();
  const std::lock_guard lock(log.mutex);
  if (log.sink != nullptr) {
    const kzoci_log_record record = {origin.level, origin.file, origin.line, line + layout.text_at,
                                     layout.text_length};
    log.sink(log.sink_context, &record);
    return;
  }
  line[layout.length() - 1] = '\n';
  write_line(log, line, layout.length());
}

}  // namespace

void kzoci_log_inner(log_level level, const char *file, int line, const char *format, ...) {
  if (level < logger().threshold.load(std::memory_order_relaxed)) return;
  const int kept_errno = errno;
  Origin origin = {{}, level, file, line};
  put_time(origin.time);

  char short_line[1024];
  va_list arguments;
  va_start(arguments, format);
  Layout layout = format_line(short_line, sizeof short_line, origin, format, arguments);
  va_end(arguments);
  if (layout.room() <= sizeof short_line) {
    deliver(origin, short_line, layout);
    errno = kept_errno;
    return;
  }
  const std::unique_ptr<char[]> long_line(new (std::nothrow) char[layout.room()]);
  if (long_line != nullptr) {
    va_start(arguments, format);
    layout = format_line(long_line.get(), layout.room(), origin, format, arguments);
    va_end(arguments);
    deliver(origin, long_line.get(), layout);
  } else {
    // Without memory the beginning of a long record is all there can be.
    layout.text_at = std::min(layout.text_at, sizeof short_line - 2);
    layout.text_length = sizeof short_line - 2 - layout.text_at;
    short_line[sizeof short_line - 2] = '\0';
    deliver(origin, short_line, layout);
  }
  errno = kept_errno;
}

void kzoci_log_set_threshold(log_level level) {
  // Slow-SQL batches are written whatever the threshold.
  logger().threshold = level < LOG_LEVEL_SLOWSQL ? level : LOG_LEVEL_SLOWSQL;
}

log_level kzoci_log_threshold(void) { return static_cast<log_level>(logger().threshold.load()); }

void kzoci_log_set_sink(kzoci_log_sink sink, void *context) {
  Logger &log = logger();
  const std::lock_guard lock(log.mutex);
  log.sink = sink;
  log.sink_context = context;
}

sword kzoci_log_configure(const kzoci_log_settings *settings) {
  constexpr sword level_not_known = -1;
  constexpr sword settings_null = -2;
  constexpr sword file_not_opened = -3;

  if (settings == nullptr) return settings_null;
  const int level = settings->level_len == 0 ? kzoci_log_threshold()
                                             : level_of(settings->level, settings->level_len);
  if (level == 0) return level_not_known;
  kzoci_log_set_threshold(static_cast<log_level>(level));

  Logger &log = logger();
  const std::lock_guard lock(log.mutex);
  log.file.close();
  if (settings->path_len == 0) return 0;
  const bool opened = log.file.open(std::string(settings->path, settings->path_len),
                                    settings->file_size, settings->file_count);
  return opened ? 0 : file_not_opened;
}
