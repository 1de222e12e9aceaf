// Memory, files and the system's calls failing below the default logger, each in
// turn: the process goes on, and no record is lost that could be kept.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#include "kzoci/platform/default_logger.h"
#include "support/log_faults.h"
#include "support/log_file_support.h"
#include "support/logger_support.h"

namespace {

namespace fs = std::filesystem;

using log_faults::Call;
using log_faults::Faults;
using log_faults::for_ever;
using log_faults::Plan;
using namespace logger_support;

// Bytes of the longest line that takes no memory, its line feed among them.
constexpr std::size_t longest_without_memory = 65535;

// A text in which a lost, doubled or moved piece shows.
std::string text_of_length(std::size_t length) {
  std::string text;
  for (std::size_t i = 0; text.size() < length; ++i) text += std::to_string(i) + ",";
  text.resize(length);
  return text;
}

// Lines for the stack, for the long line, and for memory; the limit lets some of
// them share a file.
const std::vector<std::string> &texts() {
  static const std::vector<std::string> all = {
      "one", "two", text_of_length(5000), "four", text_of_length(70000), "six", "seven", "eight"};
  return all;
}
constexpr sb8 file_size = 150;

std::size_t open_files() {
  return static_cast<std::size_t>(
      std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()));
}

class LogFaults : public LogFileTest {
 protected:
  struct Outcome {
    std::size_t struck = 0;
    Lines in_files;
    Lines on_standard_error;
    std::size_t open_files = 0;
  };

  ~LogFaults() override { fs::current_path("/"); }

  // Sets a log of former files and writes all texts while the plan is in force.
  Outcome play(const Plan &plan, ub4 file_count) {
    fs::remove_all(folder_);
    fs::create_directory(folder_);
    fs::current_path(folder_);
    write_file(path_, "");
    if (file_count > 1) {
      write_file(path_, "former 0\n");
      write_file(path_ + ".1", "former 1\n");
      write_file(path_ + ".2", "former 2\n");
    }
    Outcome outcome;
    outcome.on_standard_error = lines_without_times(standard_error_of([&] {
      const Faults faults(plan);
      configure("", "a.log", file_size, file_count);
      for (const std::string &text : texts()) log_error(text);
      outcome.struck = faults.struck();
    }));
    EXPECT_EQ(configure("", ""), 0);
    for (const fs::directory_entry &file : fs::directory_iterator(folder_))
      for (const std::string &line : lines_without_times(content_of(file.path())))
        outcome.in_files.push_back(line);
    outcome.open_files = open_files();
    return outcome;
  }

  // Makes the call fail, beginning with each one in turn.
  template <class Check>
  void strike_each(Plan plan, ub4 file_count, Check check) {
    const std::size_t open_before = open_files();
    std::size_t struck = 1;
    for (std::size_t first = 1; struck > 0; ++first) {
      SCOPED_TRACE(log_faults::name_of(plan.call) + " " + std::to_string(first) +
                   (plan.times == for_ever ? " and all after it: " : ": ") +
                   std::generic_category().message(plan.error));
      plan.first = first;
      const Outcome outcome = play(plan, file_count);
      struck = outcome.struck;
      EXPECT_EQ(outcome.open_files, open_before);
      check(outcome);
      EXPECT_TRUE(struck > 0 || first > 1) << "never called";
      faults_ += struck > 0;
    }
  }

  template <class Check>
  void strike_each(Call call, std::size_t times, int error, ub4 file_count, Check check) {
    strike_each({call, 1, times, error}, file_count, check);
  }

  void TearDown() override {
    LogFileTest::TearDown();
    RecordProperty("faults", std::to_string(faults_));
    std::cout << faults_ << " faults\n";
  }

  std::size_t faults_ = 0;  // Each counts once, however often it repeats.
};

// Where memory is missing, the beginning of the line that needs it is expected.
Lines expected_lines(bool has_memory) {
  Lines expected;
  for (const std::string &text : texts()) {
    std::string line = error_line(text);
    if (!has_memory)
      line.resize(std::min(line.size(), longest_without_memory - time_pattern.size() - 2));
    expected.push_back(line);
  }
  return expected;
}

// Every line is whole, in a file or on standard error, and not in both.
void expect_all_kept(const Lines &in_files, const Lines &on_standard_error, Lines expected) {
  Lines kept = in_files;
  kept.insert(kept.end(), on_standard_error.begin(), on_standard_error.end());
  std::sort(kept.begin(), kept.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_TRUE(kept == expected) << in_files.size() << " lines in files, "
                                << on_standard_error.size() << " on standard error";
}

Lines with_former(Lines lines) {
  lines.insert(lines.end(), {"former 0", "former 1", "former 2"});
  return lines;
}

TEST_F(LogFaults, LoseNothingInTheFilesAndOnStandardError) {
  for (const Call call : {Call::malloc, Call::getcwd, Call::open, Call::fstat, Call::stat,
                          Call::flock, Call::rename, Call::write})
    for (const int error : {EACCES, ENOSPC, EIO, ENOMEM})
      for (const std::size_t times : {std::size_t{1}, for_ever})
        strike_each(call, times, error, 1000, [call](const Outcome &outcome) {
          const bool has_memory = call != Call::malloc || outcome.struck == 0;
          expect_all_kept(outcome.in_files, outcome.on_standard_error,
                          with_former(expected_lines(has_memory)));
        });
}

TEST_F(LogFaults, LeaveTheFileAsItIsWhereItCannotStartOver) {
  for (const std::size_t times : {std::size_t{1}, for_ever})
    strike_each(Call::ftruncate, times, EIO, 1, [](const Outcome &outcome) {
      // One of the texts that is over the limit has the file to itself.
      const Lines all = expected_lines(true);
      if (outcome.struck == 0) {
        EXPECT_EQ(outcome.on_standard_error, Lines{});
        return;
      }
      const auto given_up =
          std::search(all.begin(), all.end(), outcome.in_files.begin(), outcome.in_files.end()) +
          static_cast<std::ptrdiff_t>(outcome.in_files.size());
      EXPECT_EQ(outcome.on_standard_error, Lines(given_up, all.end()));
    });
}

// A file of the same number on another device is another file.
TEST_F(LogFaults, OfDevicesLoseNothing) {
  for (const std::size_t times : {std::size_t{1}, for_ever})
    strike_each(Call::stat, times, 0, 1000, [times](const Outcome &outcome) {
      if (times == 1) {
        EXPECT_EQ(outcome.on_standard_error, Lines{});
      }
      expect_all_kept(outcome.in_files, outcome.on_standard_error,
                      with_former(expected_lines(true)));
    });
}

// Signals change nothing.
TEST_F(LogFaults, OfInterruptedCallsChangeNothing) {
  for (const Call call : {Call::open, Call::flock, Call::write})
    for (const std::size_t times : {1u, 3u})
      strike_each(call, times, EINTR, 1000, [](const Outcome &outcome) {
        EXPECT_EQ(outcome.on_standard_error, Lines{});
        expect_all_kept(outcome.in_files, {}, with_former(expected_lines(true)));
      });
  for (const std::size_t times : {1u, 3u})
    strike_each(Call::ftruncate, times, EINTR, 1, [](const Outcome &outcome) {
      EXPECT_EQ(outcome.on_standard_error, Lines{});
      EXPECT_EQ(outcome.in_files,
                (Lines{error_line("six"), error_line("seven"), error_line("eight")}));
    });
}

TEST_F(LogFaults, OfShortWritesChangeNothing) {
  for (const std::size_t times : {std::size_t{1}, for_ever})
    strike_each(Call::write, times, 0, 1000, [](const Outcome &outcome) {
      EXPECT_EQ(outcome.on_standard_error, Lines{});
      expect_all_kept(outcome.in_files, {}, with_former(expected_lines(true)));
    });
}

// As on a device that is full in the middle of a line.
TEST_F(LogFaults, OfTheRestOfALineLeaveNothingOfIt) {
  for (const std::size_t times : {std::size_t{2}, for_ever})
    strike_each({Call::write, 1, times, ENOSPC, true}, 1000, [](const Outcome &outcome) {
      expect_all_kept(outcome.in_files, outcome.on_standard_error,
                      with_former(expected_lines(true)));
    });
}

TEST_F(LogFaults, OfTheRestOfALineLeaveNothingOfItInAFileThatStartsOver) {
  const Lines all = expected_lines(true);
  strike_each({Call::write, 1, for_ever, ENOSPC, true}, 1, [&all](const Outcome &outcome) {
    for (const std::string &line : outcome.in_files)
      EXPECT_NE(std::find(all.begin(), all.end(), line), all.end()) << line;
  });
}

TEST_F(LogFaults, OfStandardErrorLoseTheLineAlone) {
  for (const int error : {EIO, EPIPE, ENOSPC})
    for (std::size_t number = 1; number <= texts().size(); ++number) {
      const std::string written = standard_error_of([&] {
        const Faults faults({Call::write_to_standard_error, number, 1, error});
        for (const std::string &text : texts()) log_error(text);
        faults_ += faults.struck() > 0;
      });
      Lines expected = expected_lines(true);
      expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(number - 1));
      EXPECT_EQ(lines_without_times(written), expected);
    }
}

TEST_F(LogFaults, OfStandardErrorMayLastForEver) {
  ASSERT_EQ(configure("", folder_), -3);
  EXPECT_EQ(standard_error_of([this] {
              const Faults faults({Call::write_to_standard_error, 1, for_ever, EIO});
              for (const std::string &text : texts()) log_error(text);
              faults_ += faults.struck() > 0;
            }),
            "");
}

TEST_F(LogFaults, OfSignalsOnStandardErrorChangeNothing) {
  for (const int error : {EINTR, 0}) {
    const std::string written = standard_error_of([&] {
      const Faults faults({Call::write_to_standard_error, 1, 100, error});
      for (const std::string &text : texts()) log_error(text);
      faults_ += faults.struck() > 0;
    });
    EXPECT_EQ(lines_without_times(written), expected_lines(true));
  }
}

// A file that others have moved, where no other can be opened, takes what fits.
TEST_F(LogFaults, LeaveAFileThatWasMoved) {
  ASSERT_EQ(configure("", path_, file_size, 3), 0);
  fs::rename(path_, path_ + ".moved");
  const std::string written = standard_error_of([this] {
    const Faults faults({Call::open, 1, for_ever, EACCES});
    for (const char *text : {"one", "two", "three"}) log_error(text);
    faults_ += faults.struck() > 0;
  });
  EXPECT_EQ(lines_without_times(content_of(path_ + ".moved")),
            (Lines{error_line("one"), error_line("two"), error_line("three")}));
  EXPECT_EQ(written, "");
}

TEST_F(LogFaults, OfMemoryLeaveOtherLinesWhole) {
  for (const std::size_t length : {900u, 1100u, 5000u, 65000u, 65100u}) {
    const std::string text = text_of_length(length);
    const std::string written = standard_error_of([&] {
      const Faults faults({Call::malloc, 1, for_ever, ENOMEM});
      log_error(text);
      EXPECT_EQ(faults.struck(), 0u) << length;
    });
    EXPECT_EQ(lines_without_times(written), Lines{error_line(text)}) << length;
  }
}

// The longest line that needs no memory, and those that are longer by a byte or two.
TEST_F(LogFaults, OfMemoryCutWhatIsTooLong) {
  const std::size_t longest =
      longest_without_memory - time_pattern.size() - 1 - error_line("\n").size();
  for (std::size_t excess = 0; excess < 3; ++excess) {
    const std::string text = text_of_length(longest + excess);
    const std::string written = standard_error_of([&] {
      const Faults faults({Call::malloc, 1, for_ever, ENOMEM});
      log_error(text);
      EXPECT_EQ(faults.struck(), excess > 0 ? 1u : 0u);
      faults_ += faults.struck() > 0;
    });
    EXPECT_EQ(written.size(), longest_without_memory);
    EXPECT_EQ(lines_without_times(written), Lines{error_line(text.substr(0, longest))});
  }
}

TEST_F(LogFaults, OfMemoryLeaveASinkTheBeginning) {
  const std::string text = text_of_length(100000);
  RecordingSink sink;
  kzoci_log_set_sink(RecordingSink::take, &sink);
  {
    const Faults faults({Call::malloc, 1, for_ever, ENOMEM});
    log_error(text);
    faults_ += faults.struck() > 0;
  }
  ASSERT_EQ(sink.records.size(), 1u);
  EXPECT_TRUE(sink.records[0].terminated);
  EXPECT_GT(sink.records[0].text.size(), 65000u);
  EXPECT_EQ(sink.records[0].text, text.substr(0, sink.records[0].text.size()));
}

TEST_F(LogFaults, OfMemoryLeaveALineForALongSourcePath) {
  const std::string file = text_of_length(100000);
  RecordingSink sink;
  const std::string written = standard_error_of([&] {
    const Faults faults({Call::malloc, 1, for_ever, ENOMEM});
    kzoci_log_inner(LOG_LEVEL_ERROR, file.c_str(), 1, "text");
    kzoci_log_set_sink(RecordingSink::take, &sink);
    kzoci_log_inner(LOG_LEVEL_ERROR, file.c_str(), 1, "text");
    faults_ += faults.struck() > 0;
  });
  ASSERT_EQ(written.size(), longest_without_memory);
  const std::string line = without_time(lines_of(written)[0]);
  EXPECT_EQ(line, ("ERROR " + file).substr(0, line.size()));
  ASSERT_EQ(sink.records.size(), 1u);
  EXPECT_TRUE(sink.records[0].terminated);
  EXPECT_EQ(sink.records[0].text, "");
}

}  // namespace
