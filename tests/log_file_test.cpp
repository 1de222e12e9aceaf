// The log file of the default logger: its settings, its rotation, and what
// becomes of the records when the file cannot take them.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "kzoci/platform/default_logger.h"
#include "support/log_file_support.h"
#include "support/logger_support.h"
#include "support/turkish_locale.h"

namespace {

namespace fs = std::filesystem;

using logger_support::configure;
using logger_support::content_of;
using logger_support::error_line;
using logger_support::Interruptions;
using logger_support::largest_count;
using logger_support::LevelName;
using logger_support::levels;
using logger_support::line_of;
using logger_support::Lines;
using logger_support::lines_in;
using logger_support::lines_of_threads;
using logger_support::lines_without_times;
using logger_support::log_error;
using logger_support::log_from_threads;
using logger_support::log_line_of;
using logger_support::log_text;
using logger_support::LogFileTest;
using logger_support::logged_by;
using logger_support::LoggerTest;
using logger_support::numbered;
using logger_support::RecordingSink;
using logger_support::SlowReader;
using logger_support::standard_error_of;
using logger_support::time_pattern;
using logger_support::write_file;

constexpr sword level_not_known = -1;
constexpr sword settings_null = -2;
constexpr sword file_not_opened = -3;
constexpr sword path_too_long = -4;

class LogSettings : public LogFileTest {};
class LogFile : public LogFileTest {};
class LogRotation : public LogFileTest {};
class LogFileGivenUp : public LogFileTest {};
class LogFileThreads : public LogFileTest {};

// The name as it is, in small letters, and in both by turns.
std::vector<std::string> spellings(const std::string &name) {
  std::string small = name;
  std::string mixed = name;
  for (std::size_t i = 0; i < name.size(); ++i) {
    small[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[i])));
    if (i % 2 == 0) mixed[i] = small[i];
  }
  return {name, small, mixed};
}

TEST_F(LogSettings, LevelNamesAreTakenInAnyLetterCase) {
  for (const LevelName &level : levels)
    for (const std::string &name : spellings(level.name)) {
      SCOPED_TRACE(name);
      kzoci_log_set_threshold(level.level == LOG_LEVEL_INFO ? LOG_LEVEL_WARN : LOG_LEVEL_INFO);
      EXPECT_EQ(configure(name, ""), 0);
      EXPECT_EQ(kzoci_log_threshold(), level.level);
    }
}

TEST_F(LogSettings, LevelNamesDoNotFollowTheLocale) {
  const support::TurkishLocale locale;
  ASSERT_TRUE(locale.is_in_force());
  EXPECT_EQ(configure("info", ""), 0);
  EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_INFO);
}

TEST_F(LogSettings, ThresholdIsInForce) {
  ASSERT_EQ(configure("info", path_), 0);
  for (const LevelName &level : levels) log_text(level.level, "text");
  EXPECT_EQ(lines_in(path_), (Lines{"INFO a.cpp:1 text", "WARN a.cpp:1 text", "ERROR a.cpp:1 text",
                                    "FATAL a.cpp:1 text", "SLOWSQL a.cpp:1 text"}));
}

TEST_F(LogSettings, SlowStatementsAreWrittenWhateverTheLevel) {
  ASSERT_EQ(configure("SLOWSQL", path_), 0);
  log_text(LOG_LEVEL_FATAL, "dropped");
  log_text(LOG_LEVEL_SLOWSQL, "slow");
  EXPECT_EQ(lines_in(path_), Lines{"SLOWSQL a.cpp:1 slow"});
}

std::vector<std::string> unknown_levels() {
  return {"WAR",
          "W",
          "ERR",
          "SLOW",
          "SLOWSQ",
          "SLOW SQL",
          "TRAC",
          "WARNI",
          "WARNING",
          "ERRORS",
          "SLOWSQLS",
          " WARN",
          "WARN ",
          "WA\nRN",
          "?",
          "OFF",
          "4",
          "\xc3\x8eNFO",
          "-",
          "WARN,",
          "#WARN",
          " ",
          "WARNWARNWARN",
          std::string("WARN\0", 5)};
}

TEST_F(LogSettings, UnknownLevelChangesNothing) {
  const std::string other = folder_ + "/other.log";
  ASSERT_EQ(configure("info", path_), 0);
  Lines expected;
  for (const std::string &level : unknown_levels()) {
    SCOPED_TRACE(level);
    for (const std::string &path : {other, std::string(), folder_, path_}) {
      EXPECT_EQ(configure(level, path, 10, 3), level_not_known);
      EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_INFO);
      EXPECT_EQ(standard_error_of([] { log_text(LOG_LEVEL_INFO, "text"); }), "");
      expected.push_back("INFO a.cpp:1 text");
    }
  }
  EXPECT_EQ(files(), std::vector<Lines>{expected});
  EXPECT_FALSE(fs::exists(other));
}

TEST_F(LogSettings, UnknownLevelChangesNothingOnStandardError) {
  EXPECT_EQ(configure("WAR", path_), level_not_known);
  EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_ERROR);
  EXPECT_EQ(logged_by([] { log_error("text"); }), Lines{error_line("text")});
  EXPECT_FALSE(fs::exists(path_));
}

TEST_F(LogSettings, UnknownLevelLeavesAFileThatWasGivenUp) {
  ASSERT_EQ(configure("info", folder_), file_not_opened);
  EXPECT_EQ(configure("unknown", path_), level_not_known);
  EXPECT_EQ(logged_by([] { log_error("text"); }), Lines{error_line("text")});
  EXPECT_FALSE(fs::exists(path_));
}

TEST_F(LogSettings, EmptyLevelKeepsTheThreshold) {
  for (const LevelName &level : levels) {
    SCOPED_TRACE(level.name);
    kzoci_log_set_threshold(level.level);
    EXPECT_EQ(configure("", path_), 0);
    EXPECT_EQ(kzoci_log_threshold(), level.level);
    EXPECT_EQ(configure("", ""), 0);
    EXPECT_EQ(kzoci_log_threshold(), level.level);
  }
}

TEST_F(LogSettings, ALevelOutsideTheEnumerationIsKept) {
  kzoci_log_set_threshold(static_cast<log_level>(0));
  EXPECT_EQ(configure("", path_), 0);
  EXPECT_EQ(kzoci_log_threshold(), static_cast<log_level>(0));
}

TEST_F(LogSettings, APathWithAZeroByteIsNotOpened) {
  std::string path = path_;
  path += std::string("\0x", 2);
  EXPECT_EQ(configure("info", path), file_not_opened);
  EXPECT_FALSE(fs::exists(path_));
}

// Opening it would wait for a reader, and everything that logs for that.
TEST_F(LogSettings, APipeThatNobodyReadsIsNotOpened) {
  ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
  EXPECT_EQ(configure("info", path_), file_not_opened);
}

TEST_F(LogSettings, NullChangesNothing) {
  EXPECT_EQ(kzoci_log_configure(nullptr), settings_null);
  EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_ERROR);
  ASSERT_EQ(configure("warn", path_, 100, 3), 0);
  EXPECT_EQ(kzoci_log_configure(nullptr), settings_null);
  EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_WARN);
  EXPECT_EQ(standard_error_of([] {
              log_line_of('a', 60);
              log_line_of('b', 60);
            }),
            "");
  EXPECT_EQ(files(), (std::vector<Lines>{{line_of('b', 60)}, {line_of('a', 60)}}));
}

TEST_F(LogSettings, TextsOfNoLengthMayBeNull) {
  const kzoci_log_settings nothing = {nullptr, 0, nullptr, 0, 100, 3};
  EXPECT_EQ(kzoci_log_configure(&nothing), 0);
  EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_ERROR);
  EXPECT_EQ(logged_by([] { log_error("text"); }), Lines{error_line("text")});
}

TEST_F(LogSettings, TextsEndAtTheirLengths) {
  const std::string path_and_more = path_ + ".more";
  const kzoci_log_settings settings = {
      "WARNING", 4, path_and_more.data(), static_cast<ub4>(path_.size()), 0, 0};
  EXPECT_EQ(kzoci_log_configure(&settings), 0);
  EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_WARN);
  log_error("text");
  EXPECT_EQ(lines_in(path_), Lines{error_line("text")});
  EXPECT_FALSE(fs::exists(path_and_more));
}

TEST_F(LogSettings, NoPathGoesBackToStandardError) {
  ASSERT_EQ(configure("", path_), 0);
  log_error("to the file");
  ASSERT_EQ(configure("", ""), 0);
  EXPECT_EQ(logged_by([] { log_error("to standard error"); }),
            Lines{error_line("to standard error")});
  EXPECT_EQ(lines_in(path_), Lines{error_line("to the file")});
}

TEST_F(LogSettings, LevelAndPathAreIndependent) {
  ASSERT_EQ(configure("fatal", path_), 0);
  ASSERT_EQ(configure("warn", ""), 0);
  EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_WARN);
  ASSERT_EQ(configure("", path_), 0);
  EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_WARN);
  log_text(LOG_LEVEL_WARN, "text");
  EXPECT_EQ(lines_in(path_), Lines{"WARN a.cpp:1 text"});
}

// Paths at which no file can be opened, by anybody.
std::vector<std::string> unusable_paths(const std::string &folder) {
  write_file(folder + "/plain", "");
  return {folder,
          folder + "/",
          folder + "/missing/a.log",
          folder + "/plain/a.log",
          folder + "/" + std::string(256, 'a'),
          folder + std::string(KZOCI_LOG_PATH_MAX - folder.size(), '/'),
          std::string(KZOCI_LOG_PATH_MAX, 'a'),
          std::string(KZOCI_LOG_PATH_MAX, '/')};
}

TEST_F(LogSettings, UnusablePathLeavesTheThresholdInForce) {
  for (const std::string &path : unusable_paths(folder_)) {
    SCOPED_TRACE(path);
    kzoci_log_set_threshold(LOG_LEVEL_ERROR);
    EXPECT_EQ(configure("info", path, 100, 3), file_not_opened);
    EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_INFO);
    EXPECT_EQ(logged_by([] {
                log_text(LOG_LEVEL_DEBUG, "dropped");
                log_text(LOG_LEVEL_INFO, "text");
              }),
              Lines{"INFO a.cpp:1 text"});
  }
}

TEST_F(LogSettings, UnusablePathEndsTheFileBefore) {
  ASSERT_EQ(configure("", path_), 0);
  log_error("to the file");
  EXPECT_EQ(configure("", folder_), file_not_opened);
  EXPECT_EQ(logged_by([] { log_error("to standard error"); }),
            Lines{error_line("to standard error")});
  EXPECT_EQ(lines_in(path_), Lines{error_line("to the file")});
}

TEST_F(LogSettings, TooLongPathChangesNothing) {
  ASSERT_EQ(configure("info", path_), 0);
  for (const std::size_t excess : {1u, 2u, 1000000u}) {
    const std::string path(KZOCI_LOG_PATH_MAX + excess, '/');
    EXPECT_EQ(configure("error", path, 100, 3), path_too_long);
    EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_INFO);
    EXPECT_EQ(standard_error_of([] { log_text(LOG_LEVEL_INFO, "text"); }), "");
  }
  EXPECT_EQ(lines_in(path_), Lines(3, "INFO a.cpp:1 text"));
}

// Slashes that change nothing make the path as long as is taken.
TEST_F(LogSettings, LongestPathIsTaken) {
  const std::string slashes(KZOCI_LOG_PATH_MAX - path_.size(), '/');
  ASSERT_EQ(configure("", slashes + path_), 0);
  log_error("text");
  EXPECT_EQ(lines_in(path_), Lines{error_line("text")});
}

// With the folder before it, a relative path may become too long.
TEST_F(LogSettings, RelativePathIsTakenAsLongAsTheSystemTakesIt) {
  fs::current_path(folder_);
  const std::size_t longest = KZOCI_LOG_PATH_MAX - folder_.size() - 1;
  const std::string slashes(longest - 7, '/');
  ASSERT_EQ(configure("", "./" + slashes + "a.log", 60, 2), 0);
  log_line_of('a', 60);
  EXPECT_EQ(lines_in(path_), Lines{line_of('a', 60)});
  EXPECT_EQ(configure("", "./" + slashes + "/a.log"), file_not_opened);
  fs::current_path("/");
}

TEST_F(LogSettings, RelativePathNeedsAFolder) {
  const std::string below = folder_ + "/below";
  fs::create_directory(below);
  fs::current_path(below);
  fs::remove(below);
  EXPECT_EQ(configure("", "a.log"), file_not_opened);
  fs::current_path("/");
}

TEST_F(LogSettings, UsablePathEndsStandardError) {
  EXPECT_EQ(configure("", folder_), file_not_opened);
  EXPECT_EQ(configure("", path_), 0);
  EXPECT_EQ(standard_error_of([] { log_error("text"); }), "");
  EXPECT_EQ(lines_in(path_), Lines{error_line("text")});
}

TEST_F(LogFile, TakesTheLinesInsteadOfStandardError) {
  ASSERT_EQ(configure("warn", path_), 0);
  const std::string written = standard_error_of([] {
    log_text(LOG_LEVEL_INFO, "dropped");
    log_text(LOG_LEVEL_WARN, "first");
    log_error("second");
    log_error("");
    log_text(LOG_LEVEL_SLOWSQL, "third\nand more\n");
  });
  EXPECT_EQ(written, "");
  EXPECT_EQ(files(),
            std::vector<Lines>{(Lines{"WARN a.cpp:1 first", "ERROR a.cpp:1 second",
                                      "ERROR a.cpp:1 ", "SLOWSQL a.cpp:1 third", "and more", ""})});
}

TEST_F(LogFile, HasEachLineAtOnce) {
  ASSERT_EQ(configure("", path_), 0);
  Lines expected;
  for (const char *text : {"first", "second", "third"}) {
    log_error(text);
    expected.push_back(error_line(text));
    EXPECT_EQ(lines_in(path_), expected);
  }
}

TEST_F(LogFile, IsMadeByTheSettings) {
  ASSERT_EQ(configure("", path_), 0);
  EXPECT_TRUE(fs::exists(path_));
  EXPECT_EQ(content_of(path_), "");
  EXPECT_EQ(entries_in_folder(), 1u);
}

TEST_F(LogFile, IsContinued) {
  write_file(path_, "what was there\n");
  ASSERT_EQ(configure("", path_), 0);
  log_error("first");
  ASSERT_EQ(configure("", ""), 0);
  ASSERT_EQ(configure("", path_), 0);
  log_error("second");
  ASSERT_EQ(configure("", path_), 0);
  log_error("third");
  EXPECT_EQ(lines_in(path_), (Lines{"what was there", error_line("first"), error_line("second"),
                                    error_line("third")}));
}

TEST_F(LogFile, IsSharedWithOtherWriters) {
  ASSERT_EQ(configure("", path_), 0);
  log_error("first");
  std::ofstream(path_, std::ios::app) << "of another writer\n";
  log_error("second");
  EXPECT_EQ(lines_in(path_),
            (Lines{error_line("first"), "of another writer", error_line("second")}));
}

// A daemon goes to the root folder when it has read its settings.
TEST_F(LogFile, StaysWhereItIsWhenTheProgramChangesItsFolder) {
  fs::create_directory(folder_ + "/elsewhere");
  fs::current_path(folder_);
  ASSERT_EQ(configure("", "a.log", 120, 3), 0);
  fs::current_path(folder_ + "/elsewhere");
  for (const char letter : {'a', 'b', 'c'}) log_line_of(letter, 60);
  fs::current_path("/");
  EXPECT_EQ(files(),
            (std::vector<Lines>{{line_of('c', 60)}, {line_of('a', 60), line_of('b', 60)}}));
  EXPECT_TRUE(fs::is_empty(folder_ + "/elsewhere"));
}

// Whoever moves or removes a log that is limited in size finds a new one.
TEST_F(LogFile, IsMadeAnewWhereItWasMoved) {
  ASSERT_EQ(configure("", path_, 120, 3), 0);
  log_line_of('a', 60);
  fs::rename(path_, folder_ + "/moved");
  log_line_of('b', 60);
  fs::remove(path_);
  log_line_of('c', 60);
  EXPECT_EQ(lines_in(folder_ + "/moved"), Lines{line_of('a', 60)});
  EXPECT_EQ(files(), std::vector<Lines>{{line_of('c', 60)}});
}

TEST_F(LogFile, GivesWayToAnother) {
  const std::string other = folder_ + "/other.log";
  ASSERT_EQ(configure("", path_), 0);
  log_error("first");
  ASSERT_EQ(configure("", other), 0);
  log_error("second");
  EXPECT_EQ(lines_in(path_), Lines{error_line("first")});
  EXPECT_EQ(lines_in(other), Lines{error_line("second")});
}

TEST_F(LogFile, TakesLinesOfAnyLengthWhole) {
  ASSERT_EQ(configure("", path_), 0);
  std::vector<std::size_t> lengths = {0, 1, 5000, 3000000};
  for (std::size_t length = 900; length <= 1100; ++length) lengths.push_back(length);
  Lines expected;
  for (const std::size_t length : lengths) {
    log_error(std::string(length, 'x'));
    expected.push_back(error_line(std::string(length, 'x')));
  }
  EXPECT_TRUE(lines_in(path_) == expected);
}

TEST_F(LogFile, GivesWayToASink) {
  RecordingSink sink;
  ASSERT_EQ(configure("", path_), 0);
  log_error("first");
  kzoci_log_set_sink(RecordingSink::take, &sink);
  EXPECT_EQ(standard_error_of([] { log_error("second"); }), "");
  EXPECT_EQ(sink.texts(), Lines{"second"});
  kzoci_log_set_sink(nullptr, nullptr);
  EXPECT_EQ(standard_error_of([] { log_error("third"); }), "");
  EXPECT_EQ(lines_in(path_), (Lines{error_line("first"), error_line("third")}));
  EXPECT_EQ(sink.texts(), Lines{"second"});
}

TEST_F(LogFile, WaitsForASink) {
  RecordingSink sink;
  kzoci_log_set_sink(RecordingSink::take, &sink);
  ASSERT_EQ(configure("warn", path_), 0);
  log_text(LOG_LEVEL_WARN, "first");
  EXPECT_EQ(content_of(path_), "");
  kzoci_log_set_sink(nullptr, nullptr);
  log_text(LOG_LEVEL_WARN, "second");
  EXPECT_EQ(sink.texts(), Lines{"first"});
  EXPECT_EQ(lines_in(path_), Lines{"WARN a.cpp:1 second"});
}

TEST_F(LogFile, LeavesErrnoAlone) {
  ASSERT_EQ(configure("", path_, 100, 2), 0);
  for (int i = 0; i < 6; ++i) {
    errno = EXDEV;
    log_line_of('a', i == 3 ? 5000 : 60);
    EXPECT_EQ(errno, EXDEV);
  }
}

// A line as long as this fills the file up, or is a byte short of it, or one
// too long.
TEST_F(LogRotation, BeginsWithTheByteThatIsTooMuch) {
  constexpr sb8 limit = 200;
  struct Row {
    std::size_t first, second;
    std::size_t expected_files;
  };
  constexpr Row rows[] = {{60, 139, 1}, {60, 140, 1}, {60, 141, 2}, {60, 5000, 2}, {199, 60, 2},
                          {200, 60, 2}, {201, 60, 2}, {139, 60, 1}, {140, 60, 1},  {141, 60, 2}};
  for (const Row &row : rows) {
    SCOPED_TRACE(std::to_string(row.first) + " and " + std::to_string(row.second));
    fs::remove(path_);
    fs::remove(numbered(path_, 1));
    ASSERT_EQ(configure("", path_, limit, 5), 0);
    log_line_of('a', row.first);
    log_line_of('b', row.second);
    const Lines first = {line_of('a', row.first)};
    const Lines second = {line_of('b', row.second)};
    const Lines both = {first[0], second[0]};
    EXPECT_EQ(files(), row.expected_files == 1 ? std::vector<Lines>{both}
                                               : (std::vector<Lines>{second, first}));
  }
}

TEST_F(LogRotation, CountsWhatTheFileHoldsAlready) {
  for (const std::size_t held : {139u, 140u, 141u, 199u, 200u, 201u, 100000u}) {
    SCOPED_TRACE(held);
    fs::remove(numbered(path_, 1));
    const std::string old = std::string(held - 1, 'o') + "\n";
    write_file(path_, old);
    ASSERT_EQ(configure("", path_, 200, 5), 0);
    EXPECT_EQ(content_of(path_), old);
    log_line_of('a', 60);
    const Lines old_line = {std::string(held - 1, 'o')};
    const Lines new_line = {line_of('a', 60)};
    const Lines both = {old_line[0], new_line[0]};
    EXPECT_EQ(files(),
              held <= 140 ? std::vector<Lines>{both} : (std::vector<Lines>{new_line, old_line}));
  }
}

TEST_F(LogRotation, KeepsAsManyFilesAsCounted) {
  for (const ub4 count : {2u, 3u, 4u, 10u}) {
    SCOPED_TRACE(count);
    fs::remove_all(folder_);
    fs::create_directory(folder_);
    ASSERT_EQ(configure("", path_, 60, count), 0);
    std::vector<Lines> expected;
    for (char letter = 'a'; letter <= 'z'; ++letter) {
      EXPECT_EQ(standard_error_of([letter] { log_line_of(letter, 60); }), "");
      expected.insert(expected.begin(), Lines{line_of(letter, 60)});
      if (expected.size() > count) expected.pop_back();
      ASSERT_EQ(files(), expected) << letter;
      ASSERT_EQ(entries_in_folder(), expected.size());
    }
  }
}

TEST_F(LogRotation, OfOneFileStartsItOver) {
  for (const ub4 count : {0u, 1u}) {
    SCOPED_TRACE(count);
    fs::remove(path_);
    ASSERT_EQ(configure("", path_, 130, count), 0);
    log_line_of('a', 60);
    log_line_of('b', 70);
    EXPECT_EQ(files(), std::vector<Lines>{(Lines{line_of('a', 60), line_of('b', 70)})});
    log_line_of('c', 60);
    EXPECT_EQ(files(), std::vector<Lines>{Lines{line_of('c', 60)}});
    log_line_of('d', 60);
    EXPECT_EQ(files(), std::vector<Lines>{(Lines{line_of('c', 60), line_of('d', 60)})});
    log_line_of('e', 60);
    EXPECT_EQ(files(), std::vector<Lines>{Lines{line_of('e', 60)}});
    EXPECT_EQ(entries_in_folder(), 1u);
  }
}

TEST_F(LogRotation, OfAnyNumberOfFilesTakesNoTime) {
  for (const ub4 count : {largest_count, largest_count - 1, 2147483648u, 1000000000u}) {
    SCOPED_TRACE(count);
    fs::remove_all(folder_);
    fs::create_directory(folder_);
    ASSERT_EQ(configure("", path_, 60, count), 0);
    std::vector<Lines> expected;
    for (char letter = 'a'; letter <= 'l'; ++letter) {
      log_line_of(letter, 60);
      expected.insert(expected.begin(), Lines{line_of(letter, 60)});
    }
    EXPECT_EQ(files(), expected);
    EXPECT_EQ(entries_in_folder(), expected.size());
  }
}

TEST_F(LogRotation, NeedsALimit) {
  for (const sb8 limit : {sb8{0}, sb8{-1}, std::numeric_limits<sb8>::min()}) {
    SCOPED_TRACE(limit);
    fs::remove(path_);
    ASSERT_EQ(configure("", path_, limit, 3), 0);
    Lines expected;
    for (int i = 0; i < 20; ++i) {
      log_line_of('a', 5000);
      expected.push_back(line_of('a', 5000));
    }
    EXPECT_EQ(files(), std::vector<Lines>{expected});
  }
}

TEST_F(LogRotation, TakesTheLargestLimit) {
  write_file(path_, "what was there\n");
  ASSERT_EQ(configure("", path_, std::numeric_limits<sb8>::max(), 3), 0);
  log_line_of('a', 60);
  log_line_of('b', 60);
  EXPECT_EQ(files(),
            std::vector<Lines>{(Lines{"what was there", line_of('a', 60), line_of('b', 60)})});
}

TEST_F(LogRotation, GivesALineOverTheLimitAFileOfItsOwn) {
  ASSERT_EQ(configure("", path_, 100, 6), 0);
  log_line_of('a', 5000);
  log_line_of('b', 60);
  log_line_of('c', 101);
  log_line_of('d', 3000000);
  log_line_of('e', 50);
  log_line_of('f', 50);
  EXPECT_TRUE(files() == (std::vector<Lines>{{line_of('e', 50), line_of('f', 50)},
                                             {line_of('d', 3000000)},
                                             {line_of('c', 101)},
                                             {line_of('b', 60)},
                                             {line_of('a', 5000)}}));
}

TEST_F(LogRotation, GivesEachLineAFileWithTheSmallestLimit) {
  ASSERT_EQ(configure("", path_, 1, 3), 0);
  for (const char letter : {'a', 'b', 'c', 'd'}) log_line_of(letter, 60);
  EXPECT_EQ(files(),
            (std::vector<Lines>{{line_of('d', 60)}, {line_of('c', 60)}, {line_of('b', 60)}}));
}

TEST_F(LogRotation, DoesNotTouchAnEmptyFile) {
  write_file(path_, "");
  ASSERT_EQ(configure("", path_, 10, 3), 0);
  log_line_of('a', 60);
  EXPECT_EQ(files(), std::vector<Lines>{Lines{line_of('a', 60)}});
}

TEST_F(LogRotation, MovesTheFilesOfAFormerRun) {
  write_file(path_, std::string(79, '0') + "\n");
  write_file(numbered(path_, 1), "one\n");
  write_file(numbered(path_, 2), "two\n");
  ASSERT_EQ(configure("", path_, 100, 4), 0);
  log_line_of('a', 60);
  EXPECT_EQ(files(),
            (std::vector<Lines>{{line_of('a', 60)}, {std::string(79, '0')}, {"one"}, {"two"}}));
  log_line_of('b', 60);
  EXPECT_EQ(files(), (std::vector<Lines>{
                         {line_of('b', 60)}, {line_of('a', 60)}, {std::string(79, '0')}, {"one"}}));
}

TEST_F(LogRotation, LosesNothingToAMissingNumber) {
  write_file(path_, std::string(79, '0') + "\n");
  write_file(numbered(path_, 2), "two\n");
  ASSERT_EQ(configure("", path_, 100, 5), 0);
  EXPECT_EQ(standard_error_of([] { log_line_of('a', 60); }), "");
  EXPECT_EQ(lines_in(path_), Lines{line_of('a', 60)});
  EXPECT_EQ(lines_in(numbered(path_, 1)), Lines{std::string(79, '0')});
  EXPECT_EQ(content_of(numbered(path_, 2)) + content_of(numbered(path_, 3)), "two\n");
}

TEST_F(LogRotation, LeavesOtherFilesAlone) {
  for (const char *name : {".0", ".01", ".1x", ".", "1", ".-1", ".3"})
    write_file(path_ + name, name);
  ASSERT_EQ(configure("", path_, 60, 3), 0);
  for (const char letter : {'a', 'b', 'c', 'd', 'e'}) log_line_of(letter, 60);
  for (const char *name : {".0", ".01", ".1x", ".", "1", ".-1", ".3"})
    EXPECT_EQ(content_of(path_ + name), name);
  EXPECT_EQ(lines_in(numbered(path_, 2)), Lines{line_of('c', 60)});
}

TEST_F(LogRotation, FollowsChangedSettings) {
  ASSERT_EQ(configure("", path_, 60, 3), 0);
  log_line_of('a', 60);
  ASSERT_EQ(configure("", path_, 120, 3), 0);
  log_line_of('b', 60);
  EXPECT_EQ(files(), std::vector<Lines>{(Lines{line_of('a', 60), line_of('b', 60)})});
  log_line_of('c', 60);
  ASSERT_EQ(configure("", path_, 60, 1), 0);
  log_line_of('d', 60);
  EXPECT_EQ(lines_in(path_), Lines{line_of('d', 60)});
}

TEST_F(LogRotation, DoesNotCountWhatASinkTakes) {
  RecordingSink sink;
  ASSERT_EQ(configure("", path_, 120, 3), 0);
  log_line_of('a', 60);
  kzoci_log_set_sink(RecordingSink::take, &sink);
  log_line_of('b', 60);
  log_line_of('c', 5000);
  kzoci_log_set_sink(nullptr, nullptr);
  log_line_of('d', 60);
  EXPECT_EQ(files(), std::vector<Lines>{(Lines{line_of('a', 60), line_of('d', 60)})});
}

TEST_F(LogRotation, DoesNotCountDroppedRecords) {
  ASSERT_EQ(configure("", path_, 120, 3), 0);
  log_line_of('a', 60);
  log_text(LOG_LEVEL_WARN, std::string(5000, 'b'));
  log_line_of('c', 60);
  EXPECT_EQ(files(), std::vector<Lines>{(Lines{line_of('a', 60), line_of('c', 60)})});
}

// Logs five lines: the first fits, the second needs a rotation that fails. It
// and the others are on standard error, and the file holds what it did.
void expect_rotation_fails(const std::string &path) {
  const Lines written = logged_by([] {
    for (const char letter : {'a', 'b', 'c', 'd', 'e'}) log_line_of(letter, 60);
  });
  EXPECT_EQ(written,
            (Lines{line_of('b', 60), line_of('c', 60), line_of('d', 60), line_of('e', 60)}));
  EXPECT_EQ(lines_in(path), Lines{line_of('a', 60)});
}

TEST_F(LogFileGivenUp, WhenAFolderIsInTheWay) {
  fs::create_directories(numbered(path_, 1) + "/not empty");
  ASSERT_EQ(configure("", path_, 100, 2), 0);
  expect_rotation_fails(path_);
  EXPECT_TRUE(fs::exists(numbered(path_, 1) + "/not empty"));
}

TEST_F(LogFileGivenUp, WhenAFolderIsInTheWayOfAnOlderFile) {
  write_file(numbered(path_, 1), "one\n");
  write_file(numbered(path_, 2), "two\n");
  fs::create_directories(numbered(path_, 3) + "/not empty");
  ASSERT_EQ(configure("", path_, 100, 4), 0);
  expect_rotation_fails(path_);
  EXPECT_EQ(content_of(numbered(path_, 1)), "one\n");
  EXPECT_EQ(content_of(numbered(path_, 2)), "two\n");
}

TEST_F(LogFileGivenUp, WhenTheNumberedNameIsTooLong) {
  const std::string longest = folder_ + "/" + std::string(254, 'a');
  ASSERT_EQ(configure("", longest, 100, 3), 0);
  expect_rotation_fails(longest);
}

TEST_F(LogFileGivenUp, WhenItCannotStartOver) {
  const std::string moved = folder_ + "/moved";
  ASSERT_EQ(configure("", path_, 100, 1), 0);
  fs::rename(path_, moved);
  fs::create_directory(path_);
  expect_rotation_fails(moved);
}

TEST_F(LogFileGivenUp, WhenItCannotBeMadeAnew) {
  const std::string below = folder_ + "/below";
  const std::string moved = folder_ + "/moved";
  fs::create_directory(below);
  ASSERT_EQ(configure("", below + "/a.log", 100, 3), 0);
  fs::rename(below, moved);
  expect_rotation_fails(moved + "/a.log");
}

TEST_F(LogFileGivenUp, WhenTheDeviceIsFull) {
  ASSERT_EQ(configure("info", "/dev/full", 100, 3), 0);
  const std::string long_text(5000, 'x');
  const Lines written = logged_by([&] {
    log_error("first");
    log_error(long_text);
    log_text(LOG_LEVEL_INFO, "third");
    log_text(LOG_LEVEL_DEBUG, "dropped");
  });
  EXPECT_EQ(written, (Lines{error_line("first"), error_line(long_text), "INFO a.cpp:1 third"}));
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
  EXPECT_FALSE(fs::exists("/dev/full.1"));
}

// No file grows beyond this size.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t size) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &saved_);
    const rlimit limit = {size, saved_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &saved_);
    std::signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit &) = delete;
  FileSizeLimit &operator=(const FileSizeLimit &) = delete;

 private:
  void (*handler_)(int);
  rlimit saved_ = {};
};

TEST_F(LogFileGivenUp, WhenOnlyTheBeginningOfALineCanBeWritten) {
  write_file(path_, std::string(4095 - 90, 'o') + "\n");
  ASSERT_EQ(configure("", path_), 0);
  const Lines written = logged_by([] {
    const FileSizeLimit limit(4096);
    log_line_of('a', 60);
    log_line_of('b', 60);
    log_line_of('c', 60);
  });
  EXPECT_EQ(written, (Lines{line_of('b', 60), line_of('c', 60)}));
  const Lines lines = lines_in(path_);
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines[1], line_of('a', 60));
}

TEST_F(LogFileGivenUp, UntilTheNextSettings) {
  fs::create_directories(numbered(path_, 1) + "/not empty");
  ASSERT_EQ(configure("", path_, 100, 2), 0);
  expect_rotation_fails(path_);
  fs::remove_all(numbered(path_, 1));
  EXPECT_EQ(logged_by([] { log_line_of('f', 60); }), Lines{line_of('f', 60)});
  EXPECT_EQ(kzoci_log_configure(nullptr), settings_null);
  EXPECT_EQ(configure("unknown", path_), level_not_known);
  EXPECT_EQ(logged_by([] { log_line_of('g', 60); }), Lines{line_of('g', 60)});
  ASSERT_EQ(configure("", path_, 100, 2), 0);
  EXPECT_EQ(standard_error_of([] { log_line_of('h', 60); }), "");
  EXPECT_EQ(files(), (std::vector<Lines>{{line_of('h', 60)}, {line_of('a', 60)}}));
}

TEST_F(LogFileGivenUp, KeepsTheThreshold) {
  ASSERT_EQ(configure("debug", "/dev/full"), 0);
  EXPECT_EQ(logged_by([] { log_error("text"); }), Lines{error_line("text")});
  EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_DEBUG);
}

TEST_F(LogFileGivenUp, StillGivesWayToASink) {
  RecordingSink sink;
  ASSERT_EQ(configure("", "/dev/full"), 0);
  EXPECT_EQ(logged_by([] { log_error("first"); }), Lines{error_line("first")});
  kzoci_log_set_sink(RecordingSink::take, &sink);
  EXPECT_EQ(standard_error_of([] { log_error("second"); }), "");
  EXPECT_EQ(sink.texts(), Lines{"second"});
}

TEST_F(LogFileGivenUp, LeavesErrnoAlone) {
  fs::create_directories(numbered(path_, 1) + "/not empty");
  for (const std::string &path : {path_, std::string("/dev/full")}) {
    SCOPED_TRACE(path);
    ASSERT_EQ(configure("", path, 100, 2), 0);
    int after[3] = {};
    standard_error_of([&after] {
      for (int &value : after) {
        errno = EXDEV;
        log_line_of('a', 60);
        value = errno;
      }
    });
    for (const int value : after) EXPECT_EQ(value, EXDEV);
  }
}

// Whatever happens to the files, no record is lost or doubled.
TEST_F(LogFileGivenUp, LosesNothingToAFolderThatMoves) {
  fs::create_directories(numbered(path_, 1) + "/not empty");
  ASSERT_EQ(configure("", path_, 100, 3), 0);
  Lines lines = logged_by([] {
    for (char letter = 'a'; letter <= 'j'; ++letter) log_line_of(letter, 60);
  });
  for (std::size_t number = 0; number < 4; ++number)
    if (fs::is_regular_file(numbered(path_, number)))
      for (const std::string &line : lines_in(numbered(path_, number))) lines.push_back(line);
  std::sort(lines.begin(), lines.end());
  Lines expected;
  for (char letter = 'a'; letter <= 'j'; ++letter) expected.push_back(line_of(letter, 60));
  EXPECT_EQ(lines, expected);
}

// A pipe has no size at which it could be rotated.
TEST_F(LogRotation, IsForRegularFiles) {
  ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
  const int read_end = open(path_.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_EQ(configure("", path_, 60, 3), 0);
  for (const char letter : {'a', 'b', 'c'}) log_line_of(letter, 60);
  ASSERT_EQ(configure("", ""), 0);
  std::string written(180, '\0');
  EXPECT_EQ(read(read_end, written.data(), written.size()), 180);
  close(read_end);
  EXPECT_EQ(lines_without_times(written),
            (Lines{line_of('a', 60), line_of('b', 60), line_of('c', 60)}));
  EXPECT_EQ(entries_in_folder(), 1u);
}

TEST_F(LogRotation, LeavesLinksAndWhatTheyLeadToInTheirPlaces) {
  const std::string target = path_ + " elsewhere";
  fs::create_symlink(target, path_);
  ASSERT_EQ(configure("", path_, 60, 3), 0);
  for (const char letter : {'a', 'b', 'c'}) log_line_of(letter, 60);
  ASSERT_EQ(configure("", ""), 0);
  EXPECT_EQ(fs::read_symlink(path_), target);
  EXPECT_EQ(lines_in(target), (Lines{line_of('a', 60), line_of('b', 60), line_of('c', 60)}));
  EXPECT_EQ(entries_in_folder(), 2u);
}

// Somebody moved the file away and left a link to it.
TEST_F(LogRotation, EndsWhereALinkTakesThePlaceOfTheFile) {
  const std::string target = path_ + " elsewhere";
  ASSERT_EQ(configure("", path_, 60, 3), 0);
  log_line_of('a', 60);
  fs::rename(path_, target);
  fs::create_symlink(target, path_);
  for (const char letter : {'b', 'c'}) log_line_of(letter, 60);
  ASSERT_EQ(configure("", ""), 0);
  EXPECT_EQ(fs::read_symlink(path_), target);
  EXPECT_EQ(lines_in(target), (Lines{line_of('a', 60), line_of('b', 60), line_of('c', 60)}));
  EXPECT_EQ(entries_in_folder(), 2u);
}

// A log file may be a pipe, which takes a long line in pieces.
TEST_F(LogFile, HasWholeLinesWhenSignalsInterruptTheWriting) {
  ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
  const int read_end = open(path_.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_NE(read_end, -1);
  ASSERT_EQ(configure("", path_), 0);
  ASSERT_EQ(fcntl(read_end, F_SETFL, 0), 0);
  const std::string text(3000000, 'x');
  SlowReader reader(read_end);
  const std::string on_standard_error = standard_error_of([&text] {
    const Interruptions interruptions;
    log_error(text);
    log_error("next");
  });
  ASSERT_EQ(configure("", ""), 0);
  EXPECT_TRUE(on_standard_error.empty());
  const Lines lines = lines_without_times(reader.text());
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(lines[0] == error_line(text)) << lines[0].size() << " characters";
  EXPECT_EQ(lines[1], error_line("next"));
}

constexpr int threads = 4;
constexpr int records_per_thread = 200;

// Every record of every thread is there exactly once, in whatever order.
void expect_all_records(Lines lines) {
  Lines expected = lines_of_threads(threads, records_per_thread);
  std::sort(lines.begin(), lines.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(lines, expected);
}

// Does something again and again while threads log, at least a few times.
template <class Action>
void repeat_while_threads_log(Action action) {
  std::atomic<bool> done = false;
  std::thread logging([&done] {
    log_from_threads(threads, records_per_thread);
    done = true;
  });
  for (std::size_t i = 0; i < 10 || !done; ++i) {
    action(i);
    std::this_thread::yield();
  }
  logging.join();
}

TEST_F(LogFileThreads, WriteWholeLines) {
  ASSERT_EQ(configure("", path_), 0);
  EXPECT_EQ(standard_error_of([] { log_from_threads(threads, records_per_thread); }), "");
  expect_all_records(lines_in(path_));
}

TEST_F(LogFileThreads, LoseNothingToRotations) {
  constexpr sb8 limit = 500;
  ASSERT_EQ(configure("", path_, limit, largest_count), 0);
  EXPECT_EQ(standard_error_of([] { log_from_threads(threads, records_per_thread); }), "");
  expect_all_records(lines_of_files());
  // All 800 lines together take more than 50 files.
  ASSERT_GT(entries_in_folder(), 50u);
  for (std::size_t number = 0; number < entries_in_folder(); ++number)
    EXPECT_LE(fs::file_size(numbered(path_, number)), std::uintmax_t{limit}) << number;
}

// What is kept of each thread are its last records, in their order.
TEST_F(LogFileThreads, KeepTheNewestRecords) {
  ASSERT_EQ(configure("", path_, 500, 3), 0);
  EXPECT_EQ(standard_error_of([] { log_from_threads(threads, records_per_thread); }), "");
  EXPECT_EQ(entries_in_folder(), 3u);
  const Lines kept = lines_of_files();
  EXPECT_FALSE(kept.empty());
  std::size_t kept_of_threads = 0;
  for (int thread = 0; thread < threads; ++thread) {
    const std::string mark = "thread " + std::to_string(thread) + " ";
    Lines of_thread;
    for (const std::string &line : kept)
      if (line.find(mark) != std::string::npos) of_thread.push_back(line);
    const int first = records_per_thread - static_cast<int>(of_thread.size());
    Lines last_of_thread;
    for (int record = first; record < records_per_thread; ++record)
      last_of_thread.push_back(error_line(logger_support::thread_text(thread, record)));
    EXPECT_EQ(of_thread, last_of_thread);
    kept_of_threads += of_thread.size();
  }
  EXPECT_EQ(kept_of_threads, kept.size());
}

TEST_F(LogFileThreads, LoseNothingWhenTheFileIsGivenUp) {
  fs::create_directories(numbered(path_, 2) + "/not empty");
  ASSERT_EQ(configure("", path_, 2000, 3), 0);
  Lines lines = logged_by([] { log_from_threads(threads, records_per_thread); });
  EXPECT_FALSE(lines.empty());
  for (const std::string &path : {path_, numbered(path_, 1)})
    for (const std::string &line : lines_in(path)) lines.push_back(line);
  expect_all_records(lines);
}

TEST_F(LogFileThreads, LoseNothingToAFullDevice) {
  ASSERT_EQ(configure("", "/dev/full"), 0);
  expect_all_records(logged_by([] { log_from_threads(threads, records_per_thread); }));
}

TEST_F(LogFileThreads, LoseNothingToNewSettings) {
  const std::string other = folder_ + "/other.log";
  struct Row {
    const char *level;
    std::string path;
    sb8 file_size;
    sword expected;
  };
  const Row rows[] = {{"info", path_, 500, 0},
                      {"", other, 0, 0},
                      {"unknown", path_, 0, level_not_known},
                      {"error", folder_, 0, file_not_opened},
                      {"", "", 0, 0}};
  Lines lines = logged_by([&rows] {
    repeat_while_threads_log([&rows](std::size_t i) {
      const Row &row = rows[i % std::size(rows)];
      EXPECT_EQ(configure(row.level, row.path, row.file_size, largest_count), row.expected);
    });
  });
  for (const std::string &line : lines_of_files()) lines.push_back(line);
  if (fs::exists(other))
    for (const std::string &line : lines_in(other)) lines.push_back(line);
  expect_all_records(lines);
}

TEST_F(LogFileThreads, LoseNothingToNewSettingsAndSinks) {
  RecordingSink sink;
  Lines lines = logged_by([&] {
    repeat_while_threads_log([&](std::size_t i) {
      EXPECT_EQ(configure("", i % 3 == 0 ? "" : path_, 500, largest_count), 0);
      kzoci_log_set_sink(i % 2 == 0 ? RecordingSink::take : nullptr, &sink);
    });
    kzoci_log_set_sink(nullptr, nullptr);
  });
  for (const std::string &line : lines_of_files()) lines.push_back(line);
  for (const std::string &text : sink.texts()) lines.push_back(error_line(text));
  expect_all_records(lines);
}

TEST_F(LogFileThreads, MayAllSetTheLog) {
  const Lines on_standard_error = logged_by([this] {
    logger_support::in_threads(threads, [this](int thread) {
      for (int record = 0; record < records_per_thread; ++record) {
        const std::string path = record % 2 == 0 ? path_ : folder_ + "/other.log";
        EXPECT_EQ(configure("error", path), 0);
        log_error(logger_support::thread_text(thread, record));
      }
    });
  });
  EXPECT_EQ(on_standard_error, Lines{});
  Lines lines = lines_in(path_);
  for (const std::string &line : lines_in(folder_ + "/other.log")) lines.push_back(line);
  expect_all_records(lines);
}

}  // namespace
