// The log file of the default logger where devices, pipes, limits and the longest paths of POSIX
// are concerned.
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "kzoci/platform/default_logger.h"
#include "support/interruptions.h"
#include "support/log_file_support.h"
#include "support/logger_support.h"
#include "support/turkish_locale.h"

namespace {

namespace fs = std::filesystem;

using namespace logger_support;

TEST_F(LogSettings, LevelNamesDoNotFollowTheLocale) {
  const support::TurkishLocale locale;
  ASSERT_TRUE(locale.is_in_force());
  EXPECT_EQ(configure("info", ""), 0);
  EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_INFO);
}

// Opening it would wait for a reader, and everything that logs for that.
TEST_F(LogSettings, APipeThatNobodyReadsIsNotOpened) {
  ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
  EXPECT_EQ(configure("info", path_), file_not_opened);
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

TEST_F(LogFileGivenUp, WhenTheNumberedNameIsTooLong) {
  const std::string longest = folder_ + "/" + std::string(254, 'a');
  ASSERT_EQ(configure("", longest, 100, 3), 0);
  expect_rotation_fails(longest);
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

TEST_F(LogFileThreads, LoseNothingToAFullDevice) {
  ASSERT_EQ(configure("", "/dev/full"), 0);
  expect_all_records(logged_by([] { log_from_threads(threads, records_per_thread); }));
}

}  // namespace
