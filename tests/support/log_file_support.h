// What the tests of the log file share: settings, files and their lines, and a
// folder of its own for each test.
#pragma once

#include <gtest/gtest.h>

#include <stdlib.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "kzoci/platform/default_logger.h"
#include "logger_support.h"
#include "system_calls.h"

namespace logger_support {

// What kzoci_log_configure returns.
constexpr sword level_not_known = -1;
constexpr sword settings_null = -2;
constexpr sword file_not_opened = -3;
constexpr sword path_too_long = -4;

constexpr ub4 largest_count = std::numeric_limits<ub4>::max();

// An exact-size copy that is not terminated, so that a read after its end
// shows under the address sanitizer.
class ExactText {
 public:
  explicit ExactText(std::string_view text)
      : copy_(new char[text.size()]), length_(static_cast<ub4>(text.size())) {
    std::copy(text.begin(), text.end(), copy_.get());
  }
  ~ExactText() { std::fill_n(copy_.get(), length_, '#'); }
  ExactText(const ExactText &) = delete;
  ExactText &operator=(const ExactText &) = delete;

  const char *data() const { return copy_.get(); }
  ub4 length() const { return length_; }

 private:
  std::unique_ptr<char[]> copy_;
  ub4 length_;
};

// The settings are gone when the logger works with them.
inline sword configure(std::string_view level, std::string_view path, sb8 file_size = 0,
                       ub4 file_count = 0) {
  const ExactText level_copy(level);
  const ExactText path_copy(path);
  const kzoci_log_settings settings = {level_copy.data(),  level_copy.length(), path_copy.data(),
                                       path_copy.length(), file_size,           file_count};
  return kzoci_log_configure(&settings);
}

inline std::string content_of(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void write_file(const std::string &path, std::string_view text) {
  std::ofstream(path, std::ios::binary) << text;
}

// The lines of a file, without their times.
inline Lines lines_in(const std::string &path) { return lines_without_times(content_of(path)); }

inline std::string numbered(const std::string &path, std::size_t number) {
  return number == 0 ? path : path + "." + std::to_string(number);
}

// "TIME ERROR a.cpp:1 text" and a line feed: all but the text is this long.
constexpr std::size_t frame_length =
    time_pattern.size() + std::string_view(" ERROR a.cpp:1 \n").size();

// A text whose line takes this many bytes in the file.
inline std::string text_for(char letter, std::size_t line_length) {
  return std::string(line_length - frame_length, letter);
}
inline void log_line_of(char letter, std::size_t line_length) {
  log_error(text_for(letter, line_length));
}
inline std::string line_of(char letter, std::size_t line_length) {
  return error_line(text_for(letter, line_length));
}

// A folder for log files, removed with the test.
class LogFileTest : public LoggerTest {
 protected:
  LogFileTest() {
    std::string name = (std::filesystem::temp_directory_path() / "kzoci_log_XXXXXX").string();
    folder_ = mkdtemp(name.data());
    path_ = folder_ + "/a.log";
  }
  ~LogFileTest() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  // The files of the log, the newest first, each with its lines.
  std::vector<Lines> files() const {
    std::vector<Lines> all;
    for (std::size_t number = 0; std::filesystem::exists(numbered(path_, number)); ++number)
      all.push_back(lines_in(numbered(path_, number)));
    return all;
  }

  // The lines of all files, the oldest first.
  Lines lines_of_files() const {
    Lines all;
    const std::vector<Lines> newest_first = files();
    for (auto file = newest_first.rbegin(); file != newest_first.rend(); ++file)
      all.insert(all.end(), file->begin(), file->end());
    return all;
  }

  std::size_t entries_in_folder() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder_),
                                                  std::filesystem::directory_iterator()));
  }

  std::string folder_;
  std::string path_;
};

class LogSettings : public LogFileTest {};
class LogFile : public LogFileTest {};
class LogRotation : public LogFileTest {};
class LogFileGivenUp : public LogFileTest {};
class LogFileThreads : public LogFileTest {};

// Logs five lines: the first fits, the second needs a rotation that fails. It
// and the others are on standard error, and the file holds what it did.
inline void expect_rotation_fails(const std::string &path) {
  const Lines written = logged_by([] {
    for (const char letter : {'a', 'b', 'c', 'd', 'e'}) log_line_of(letter, 60);
  });
  EXPECT_EQ(written,
            (Lines{line_of('b', 60), line_of('c', 60), line_of('d', 60), line_of('e', 60)}));
  EXPECT_EQ(lines_in(path), Lines{line_of('a', 60)});
}

constexpr int threads = 4;
constexpr int records_per_thread = 200;

// Every record of every thread is there exactly once, in whatever order.
inline void expect_all_records(Lines lines) {
  Lines expected = lines_of_threads(threads, records_per_thread);
  std::sort(lines.begin(), lines.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(lines, expected);
}

}  // namespace logger_support
