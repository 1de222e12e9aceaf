// Processes that share a log file, forks while threads log, and programs that are
// started: nothing is lost but what rotation drops, and nothing hangs.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include "kzoci/platform/default_logger.h"
#include "support/log_file_support.h"
#include "support/logger_support.h"

namespace {

namespace fs = std::filesystem;

using namespace logger_support;

// Runs a function in a child, which a signal ends when it takes too long.
template <class Body>
pid_t start_child(unsigned seconds, Body body) {
  const pid_t child = fork();
  if (child != 0) return child;
  alarm(seconds);
  body();
  _exit(0);
}

bool ends_well(pid_t child) {
  int status = -1;
  return waitpid(child, &status, 0) == child && status == 0;
}

// The children leave by exit, at which builds that measure coverage write it down.
void in_processes(int count, const std::function<void(int)> &body) {
  std::fflush(nullptr);
  std::vector<pid_t> children;
  for (int number = 0; number < count; ++number)
    children.push_back(start_child(60, [&body, number] {
      body(number);
      std::exit(0);
    }));
  for (const pid_t child : children) EXPECT_TRUE(ends_well(child));
}

constexpr int processes = 8;
constexpr char process_format[] = "process %d record %d of %d";

void log_records(int process, int count) {
  for (int record = 0; record < count; ++record)
    kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, process_format, process, record, count);
}

class LogProcesses : public LogFileTest {
 protected:
  // The first record that each process has in the files, given that from there on
  // they have all of it, in order and once.
  std::array<int, processes> first_records(int count) const {
    std::array<int, processes> first;
    first.fill(count);
    std::array<int, processes> next = first;
    for (const std::string &line : lines_of_files()) {
      int process = -1, record = -1;
      const bool is_known =
          std::sscanf(line.c_str(), "ERROR a.cpp:1 process %d record %d", &process, &record) == 2 &&
          process >= 0 && process < processes;
      EXPECT_TRUE(is_known) << line;
      if (!is_known) continue;
      char whole[100];
      std::snprintf(whole, sizeof whole, process_format, process, record, count);
      EXPECT_EQ(line, error_line(whole));
      const auto at = static_cast<std::size_t>(process);
      if (next[at] == count) first[at] = next[at] = record;
      EXPECT_EQ(record, next[at]) << "process " << process;
      next[at] = record + 1;
    }
    for (const int end : next) EXPECT_EQ(end, count);
    return first;
  }

  void expect_files_within(sb8 limit) const {
    for (std::size_t number = 0; number < entries_in_folder(); ++number)
      EXPECT_LE(fs::file_size(numbered(path_, number)), static_cast<std::uintmax_t>(limit))
          << number;
  }

  static constexpr std::array<int, processes> from_the_start = {};
};

constexpr int many_records = 20000;
constexpr sb8 small_file = 128 << 10;

TEST_F(LogProcesses, LoseNothing) {
  EXPECT_EQ(standard_error_of([this] {
              in_processes(processes, [this](int process) {
                if (configure("", path_, small_file, 1000) != 0) _exit(1);
                log_records(process, many_records);
              });
            }),
            "");
  EXPECT_EQ(first_records(many_records), from_the_start);
  // 160,000 lines of at least 62 bytes.
  EXPECT_GE(entries_in_folder(), std::size_t{160000} * 62 / small_file);
  expect_files_within(small_file);
}

// All files but the newest are full up to a line.
TEST_F(LogProcesses, LoseOnlyWhatRotationDrops) {
  for (const ub4 count : {1u, 3u}) {
    SCOPED_TRACE(count);
    EXPECT_EQ(standard_error_of([this, count] {
                in_processes(processes, [this, count](int process) {
                  if (configure("", path_, small_file, count) != 0) _exit(1);
                  log_records(process, many_records / 4);
                });
              }),
              "");
    first_records(many_records / 4);
    EXPECT_EQ(entries_in_folder(), count);
    expect_files_within(small_file);
    for (std::size_t number = 1; number < count; ++number)
      EXPECT_GT(fs::file_size(numbered(path_, number)),
                static_cast<std::uintmax_t>(small_file - 100));
    fs::remove(path_);
  }
}

// A rotation with every few lines, and the log opened before the fork: what parent
// and children have in common must not let two of them rotate at once.
TEST_F(LogProcesses, LoseNothingToALogOfTheirParent) {
  constexpr int records = 150;
  ASSERT_EQ(configure("", path_, 300, logger_support::largest_count), 0);
  EXPECT_EQ(standard_error_of([] {
              in_processes(processes, [](int process) { log_records(process, records); });
            }),
            "");
  EXPECT_EQ(first_records(records), from_the_start);
  expect_files_within(300);
}

// The descriptor of an open file; -1 when there is none.
int descriptor_of(const std::string &path) {
  for (const fs::directory_entry &entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code ignored;
    if (fs::read_symlink(entry, ignored) == path) return std::stoi(entry.path().filename());
  }
  return -1;
}

// A lock that the parent holds would be the child's as well on a file that they
// opened together.
TEST_F(LogProcesses, DoNotShareTheLockOfTheirParent) {
  ASSERT_EQ(configure("", path_, 300, 3), 0);
  ASSERT_EQ(flock(descriptor_of(path_), LOCK_EX), 0);
  in_processes(1, [this](int) {
    const int own = descriptor_of(path_);
    if (own == -1 || flock(own, LOCK_EX | LOCK_NB) == 0) _exit(1);
  });
}

TEST_F(LogProcesses, WithoutALimitShareTheFile) {
  ASSERT_EQ(configure("", path_), 0);
  in_processes(processes, [](int process) { log_records(process, 1000); });
  EXPECT_EQ(first_records(1000), from_the_start);
  EXPECT_EQ(entries_in_folder(), 1u);
}

// Whoever is held up finds that others have rotated the log, and that its own file
// is gone.
TEST_F(LogProcesses, FindTheFileThatOthersRotated) {
  ASSERT_EQ(configure("", path_, 60, 2), 0);
  log_line_of('a', 60);
  in_processes(1, [](int) {
    for (const char letter : {'b', 'c', 'd'}) log_line_of(letter, 60);
  });
  EXPECT_EQ(standard_error_of([] { log_line_of('e', 60); }), "");
  EXPECT_EQ(files(), (std::vector<Lines>{{line_of('e', 60)}, {line_of('d', 60)}}));
}

// Only the thread that forks is in the child: what others held there stays held.
void fork_while_threads_log(int forks) {
  std::atomic<bool> done = false;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&done] {
      while (!done) log_error("of a thread");
    });
  std::vector<pid_t> children;
  for (int i = 0; i < forks; ++i)
    children.push_back(start_child(10, [i] { log_error("of child " + std::to_string(i)); }));
  for (const pid_t child : children) EXPECT_TRUE(ends_well(child));
  done = true;
  for (std::thread &thread : threads) thread.join();
}

void expect_lines_of_children(Lines lines, int forks) {
  std::erase(lines, error_line("of a thread"));
  Lines expected;
  for (int i = 0; i < forks; ++i) expected.push_back(error_line("of child " + std::to_string(i)));
  std::sort(lines.begin(), lines.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(lines, expected);
}

constexpr int forks = 30;

TEST_F(LogProcesses, MayForkWhileThreadsLog) {
  expect_lines_of_children(logged_by([] { fork_while_threads_log(forks); }), forks);
}

TEST_F(LogProcesses, MayForkWhileThreadsLogToAFile) {
  ASSERT_EQ(configure("", path_, 100000, logger_support::largest_count), 0);
  EXPECT_EQ(standard_error_of([] { fork_while_threads_log(forks); }), "");
  expect_lines_of_children(lines_of_files(), forks);
}

// What a program that is started has open.
std::string open_in_a_program() {
  std::FILE *const output = popen("ls -l /proc/self/fd", "r");
  std::string text(10000, '\0');
  text.resize(std::fread(text.data(), 1, text.size(), output));
  EXPECT_EQ(pclose(output), 0);
  return text;
}

TEST_F(LogProcesses, StartProgramsThatHaveNoLogOpen) {
  ASSERT_EQ(configure("", path_, 60, 3), 0);
  const int inherited = open(folder_.c_str(), O_RDONLY);
  EXPECT_NE(open_in_a_program().find(folder_), std::string::npos);
  close(inherited);
  EXPECT_EQ(open_in_a_program().find(folder_), std::string::npos);
  for (const char letter : {'a', 'b', 'c'}) log_line_of(letter, 60);
  EXPECT_EQ(open_in_a_program().find(folder_), std::string::npos);
  in_processes(1, [this](int) {
    log_line_of('d', 60);
    if (open_in_a_program().find(folder_) != std::string::npos) _exit(1);
  });
}

}  // namespace
