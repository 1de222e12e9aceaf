// The log file of the default logger: its settings, its rotation, and what
// becomes of the records when the file cannot take them.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
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

#include "kzoci/platform/default_logger.h"
#include "support/log_file_support.h"
#include "support/logger_support.h"

namespace {

namespace fs = std::filesystem;

using namespace logger_support;

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
  std::ofstream(path_, std::ios::app | std::ios::binary) << "of another writer\n";
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
  EXPECT_EQ(lines_in(folder_ + "/moved"), Lines{line_of('a', 60)});
  EXPECT_EQ(files(), std::vector<Lines>{{line_of('b', 60)}});
}

#if !defined(_WIN32)  // A file that is open keeps its name there.
TEST_F(LogFile, IsMadeAnewWhereItWasRemoved) {
  ASSERT_EQ(configure("", path_, 120, 3), 0);
  log_line_of('a', 60);
  fs::remove(path_);
  log_line_of('b', 60);
  EXPECT_EQ(files(), std::vector<Lines>{{line_of('b', 60)}});
}
#endif

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
    ASSERT_EQ(configure("", ""), 0);
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
    ASSERT_EQ(configure("", ""), 0);
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
  std::vector<std::string> names = {".0", ".01", ".1x", "1", ".-1", ".3"};
  // A point at the end of a name is left out there.
  if (!support::on_windows) names.push_back(".");
  for (const std::string &name : names) write_file(path_ + name, name);
  ASSERT_EQ(configure("", path_, 60, 3), 0);
  for (const char letter : {'a', 'b', 'c', 'd', 'e'}) log_line_of(letter, 60);
  for (const std::string &name : names) EXPECT_EQ(content_of(path_ + name), name);
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

TEST_F(LogFileGivenUp, WhenItCannotStartOver) {
  const std::string moved = folder_ + "/moved";
  ASSERT_EQ(configure("", path_, 100, 1), 0);
  fs::rename(path_, moved);
  fs::create_directory(path_);
  expect_rotation_fails(moved);
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
