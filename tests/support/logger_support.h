// What the tests of the default logger share: the capture of standard error,
// lines without their times, a sink that records, interrupting signals, and a
// fixture that puts the logger back to its defaults.
#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "system_calls.h"

#include "kzoci/platform/default_logger.h"
#include "kzoci/platform/log.h"

namespace logger_support {

using Lines = std::vector<std::string>;

struct LevelName {
  log_level level;
  const char *name;
};

constexpr LevelName levels[] = {{LOG_LEVEL_TRACE, "TRACE"},    {LOG_LEVEL_DEBUG, "DEBUG"},
                                {LOG_LEVEL_INFO, "INFO"},      {LOG_LEVEL_WARN, "WARN"},
                                {LOG_LEVEL_ERROR, "ERROR"},    {LOG_LEVEL_FATAL, "FATAL"},
                                {LOG_LEVEL_SLOWSQL, "SLOWSQL"}};

// Sends standard error to a temporary file until text() is called or it goes
// out of scope.
class StandardErrorCapture {
 public:
  StandardErrorCapture() : file_(support::temporary_file()), saved_(dup(STDERR_FILENO)) {
    std::fflush(stderr);
    dup2(fileno(file_), STDERR_FILENO);
  }
  ~StandardErrorCapture() {
    end();
    std::fclose(file_);
  }
  StandardErrorCapture(const StandardErrorCapture &) = delete;
  StandardErrorCapture &operator=(const StandardErrorCapture &) = delete;

  std::string text() {
    end();
    std::rewind(file_);
    std::string all;
    char piece[65536];
    while (const std::size_t length = std::fread(piece, 1, sizeof piece, file_))
      all.append(piece, length);
    return all;
  }

 private:
  void end() {
    if (saved_ == -1) return;
    std::fflush(stderr);
    dup2(saved_, STDERR_FILENO);
    close(saved_);
    saved_ = -1;
  }

  std::FILE *file_;
  int saved_;
};

// What an action writes to standard error.
template <class Action>
std::string standard_error_of(Action action) {
  StandardErrorCapture capture;
  action();
  return capture.text();
}

// The lines of a text; one that no line feed ends is marked.
inline Lines lines_of(std::string_view text) {
  Lines lines;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) {
      lines.push_back(std::string(text) + "<no line feed>");
      break;
    }
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  return lines;
}

constexpr std::string_view time_pattern = "dddd-dd-ddTdd:dd:dd.dddZ";

inline bool begins_with_time(std::string_view line) {
  if (line.size() < time_pattern.size()) return false;
  for (std::size_t i = 0; i < time_pattern.size(); ++i) {
    const bool is_digit = std::isdigit(static_cast<unsigned char>(line[i])) != 0;
    if (time_pattern[i] == 'd' ? !is_digit : line[i] != time_pattern[i]) return false;
  }
  return true;
}

// A line after its time and the blank; the line as it is when it has no time,
// so that a comparison shows it.
inline std::string without_time(const std::string &line) {
  const std::size_t length = time_pattern.size() + 1;
  const bool has_time = begins_with_time(line) && line.size() >= length && line[length - 1] == ' ';
  return has_time ? line.substr(length) : line;
}

inline Lines lines_without_times(std::string_view text) {
  Lines lines = lines_of(text);
  for (std::string &line : lines) line = without_time(line);
  return lines;
}

// What an action writes to standard error, as lines without their times.
template <class Action>
Lines logged_by(Action action) {
  return lines_without_times(standard_error_of(action));
}

// Logs a text from line 1 of a.cpp, and the line that this makes.
inline void log_text(log_level level, const std::string &text) {
  kzoci_log_inner(level, "a.cpp", 1, "%s", text.c_str());
}
inline void log_error(const std::string &text) { log_text(LOG_LEVEL_ERROR, text); }
inline std::string error_line(const std::string &text) { return "ERROR a.cpp:1 " + text; }

// A sink that keeps what it receives.
struct RecordingSink {
  struct Record {
    log_level level;
    std::string file;
    int line;
    std::string text;  // text_len characters
    bool terminated;   // a zero byte stands after them
  };

  static void take(void *context, const kzoci_log_record *record) {
    static_cast<RecordingSink *>(context)->records.push_back(
        {record->level, record->file, record->line, std::string(record->text, record->text_len),
         record->text[record->text_len] == '\0'});
  }

  Lines texts() const {
    Lines all;
    for (const Record &record : records) all.push_back(record.text);
    return all;
  }

  std::vector<Record> records;
};

// A text in which a lost, doubled or moved piece shows.
inline std::string text_of_length(std::size_t length) {
  std::string text;
  text.reserve(length + 8);
  for (std::size_t i = 0; text.size() < length; ++i) text += std::to_string(i) + ",";
  text.resize(length);
  return text;
}

// Runs a function in several threads at once, each with its number.
inline void in_threads(int count, const std::function<void(int)> &body) {
  std::vector<std::thread> threads;
  for (int number = 0; number < count; ++number) threads.emplace_back(body, number);
  for (std::thread &thread : threads) thread.join();
}

// The text of one record of one thread: differs from all others, and in length.
inline std::string thread_text(int thread, int record) {
  return "thread " + std::to_string(thread) + " record " + std::to_string(record) + " " +
         std::string(static_cast<std::size_t>((thread * 7 + record) % 40), '*');
}

inline void log_from_threads(int threads, int records) {
  in_threads(threads, [records](int thread) {
    for (int record = 0; record < records; ++record) log_error(thread_text(thread, record));
  });
}

// The lines of log_from_threads, thread by thread.
inline Lines lines_of_threads(int threads, int records) {
  Lines lines;
  for (int thread = 0; thread < threads; ++thread)
    for (int record = 0; record < records; ++record)
      lines.push_back(error_line(thread_text(thread, record)));
  return lines;
}

// Leaves the logger as the program finds it: threshold ERROR, no sink, no file.
class LoggerTest : public ::testing::Test {
 protected:
  void TearDown() override {
    const kzoci_log_settings no_file = {nullptr, 0, nullptr, 0, 0, 0};
    kzoci_log_set_sink(nullptr, nullptr);
    kzoci_log_set_threshold(LOG_LEVEL_ERROR);
    EXPECT_EQ(kzoci_log_configure(&no_file), 0);
    EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_ERROR);
  }
};

class LogThreshold : public LoggerTest {};
class LogLine : public LoggerTest {};
class LogText : public LoggerTest {};

}  // namespace logger_support
