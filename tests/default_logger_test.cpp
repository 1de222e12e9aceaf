// The default logger without a file: what is written and what is dropped, the
// line that a record becomes, and sinks.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <regex>
#include <string>
#include <thread>

#include "kzoci/platform/default_logger.h"
#include "log_level_in_c.h"
#include "support/logger_support.h"

namespace {

using namespace logger_support;

// Below the line "TIME ERROR a.cpp:1 text" this many characters are not text.
constexpr std::size_t head_length =
    time_pattern.size() + std::string_view(" ERROR a.cpp:1 ").size();

// Texts of these lengths need an internal buffer just filled, or more than one.
std::vector<std::size_t> remarkable_lengths() {
  std::vector<std::size_t> lengths = {0, 1, 5000, 3000000};
  for (std::size_t length = 900; length <= 1100; ++length) lengths.push_back(length);
  return lengths;
}

// A pointer that cannot be read.
const char *unreadable_text() { return reinterpret_cast<const char *>(std::uintptr_t{1}); }

class LogSink : public LoggerTest {
 protected:
  void SetUp() override { kzoci_log_set_sink(RecordingSink::take, &sink_); }

  RecordingSink sink_;
};

TEST_F(LogThreshold, IsErrorByDefault) {
  EXPECT_EQ(kzoci_log_threshold(), LOG_LEVEL_ERROR);
  const Lines lines = logged_by([] {
    for (const LevelName &level : levels) log_text(level.level, level.name);
  });
  EXPECT_EQ(lines,
            (Lines{"ERROR a.cpp:1 ERROR", "FATAL a.cpp:1 FATAL", "SLOWSQL a.cpp:1 SLOWSQL"}));
}

TEST_F(LogThreshold, LetsItsLevelAndThoseAboveThrough) {
  for (const LevelName &threshold : levels) {
    SCOPED_TRACE(threshold.name);
    kzoci_log_set_threshold(threshold.level);
    EXPECT_EQ(kzoci_log_threshold(), threshold.level);
    for (const LevelName &level : levels) {
      SCOPED_TRACE(level.name);
      const bool written = level.level >= threshold.level || level.level == LOG_LEVEL_SLOWSQL;
      const Lines expected = {std::string(level.name) + " a.cpp:1 text"};
      EXPECT_EQ(logged_by([&] { log_text(level.level, "text"); }), written ? expected : Lines{});
    }
  }
}

TEST_F(LogThreshold, SlowStatementsAreWrittenWhateverItIs) {
  for (const LevelName &threshold : levels) {
    SCOPED_TRACE(threshold.name);
    kzoci_log_set_threshold(threshold.level);
    EXPECT_EQ(logged_by([] { log_text(LOG_LEVEL_SLOWSQL, "slow"); }),
              Lines{"SLOWSQL a.cpp:1 slow"});
  }
}

TEST_F(LogThreshold, HoldsForASinkToo) {
  RecordingSink sink;
  kzoci_log_set_sink(RecordingSink::take, &sink);
  kzoci_log_set_threshold(LOG_LEVEL_INFO);
  for (const LevelName &level : levels) log_text(level.level, level.name);
  EXPECT_EQ(sink.texts(), (Lines{"INFO", "WARN", "ERROR", "FATAL", "SLOWSQL"}));
}

TEST_F(LogThreshold, DroppedRecordsAreNotFormatted) {
  RecordingSink sink;
  for (const bool to_sink : {false, true}) {
    SCOPED_TRACE(to_sink ? "sink" : "standard error");
    if (to_sink) kzoci_log_set_sink(RecordingSink::take, &sink);
    for (const LevelName &threshold : levels) {
      kzoci_log_set_threshold(threshold.level);
      const Lines lines = logged_by([&] {
        for (int level = LOG_LEVEL_TRACE; level < threshold.level; ++level)
          kzoci_log_inner(static_cast<log_level>(level), "a.cpp", 1, "%s", unreadable_text());
      });
      EXPECT_EQ(lines, Lines{}) << threshold.name;
    }
  }
  EXPECT_EQ(sink.texts(), Lines{});
}

TEST_F(LogThreshold, IsOfTheSameTypeInC) {
  EXPECT_EQ(replace_threshold_in_c(LOG_LEVEL_WARN), LOG_LEVEL_ERROR);
  const enum log_level threshold = kzoci_log_threshold();
  EXPECT_EQ(threshold, LOG_LEVEL_WARN);
}

TEST_F(LogThreshold, ChangesWhileThreadsLog) {
  std::atomic<bool> done = false;
  const Lines lines = logged_by([&] {
    std::thread changer([&done] {
      for (int i = 0; !done; ++i)
        kzoci_log_set_threshold(i % 2 == 0 ? LOG_LEVEL_TRACE : LOG_LEVEL_ERROR);
    });
    logger_support::in_threads(4, [](int) {
      for (int i = 0; i < 200; ++i) {
        log_text(LOG_LEVEL_INFO, "sometimes");
        log_error("always");
      }
    });
    done = true;
    changer.join();
  });
  const auto always = std::count(lines.begin(), lines.end(), error_line("always"));
  const auto sometimes = std::count(lines.begin(), lines.end(), "INFO a.cpp:1 sometimes");
  EXPECT_EQ(always, 800);
  EXPECT_EQ(static_cast<std::size_t>(always + sometimes), lines.size());
}

TEST_F(LogLine, HoldsTimeLevelPlaceAndText) {
  const std::string written = standard_error_of([] {
    kzoci_log_inner(LOG_LEVEL_ERROR, "kzoci/somewhere/a.cpp", 4711, "fail to open, status:%d", -1);
  });
  EXPECT_TRUE(std::regex_match(
      written, std::regex("[0-9]{4}-(0[1-9]|1[0-2])-[0-3][0-9]"
                          "T[0-2][0-9]:[0-5][0-9]:[0-6][0-9]\\.[0-9]{3}Z "
                          "ERROR kzoci/somewhere/a\\.cpp:4711 fail to open, status:-1\n")))
      << written;
}

TEST_F(LogLine, NamesEveryLevel) {
  kzoci_log_set_threshold(LOG_LEVEL_TRACE);
  for (const LevelName &level : levels)
    EXPECT_EQ(logged_by([&] { log_text(level.level, "text"); }),
              Lines{std::string(level.name) + " a.cpp:1 text"});
}

TEST_F(LogLine, HasAPlaceForALevelThatThereIsNot) {
  const auto none = static_cast<log_level>(0);
  kzoci_log_set_threshold(none);
  EXPECT_EQ(logged_by([&] { log_text(none, "text"); }), Lines{"? a.cpp:1 text"});
}

TEST_F(LogLine, NamesAnyPlace) {
  EXPECT_EQ(logged_by([] { kzoci_log_inner(LOG_LEVEL_ERROR, "", 0, "text"); }),
            Lines{"ERROR :0 text"});
  EXPECT_EQ(logged_by([] { kzoci_log_inner(LOG_LEVEL_ERROR, "a %s b", INT_MAX, "text"); }),
            Lines{"ERROR a %s b:2147483647 text"});
}

// A time zone of the process, and its own one again at the end.
class TimeZone {
 public:
  explicit TimeZone(const char *name) {
    setenv("TZ", name, 1);
    tzset();
  }
  ~TimeZone() {
    unsetenv("TZ");
    tzset();
  }
  TimeZone(const TimeZone &) = delete;
  TimeZone &operator=(const TimeZone &) = delete;
};

long long now_in_milliseconds() {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  return static_cast<long long>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

long long milliseconds_of(const std::string &line) {
  if (!begins_with_time(line)) return -1;
  const auto number = [&](std::size_t at, std::size_t length) {
    return std::stoi(line.substr(at, length));
  };
  using namespace std::chrono;
  const sys_days day = year(number(0, 4)) / number(5, 2) / number(8, 2);
  const auto time = day + hours(number(11, 2)) + minutes(number(14, 2)) + seconds(number(17, 2)) +
                    milliseconds(number(20, 3));
  return time.time_since_epoch() / milliseconds(1);
}

TEST_F(LogLine, TimeIsThatOfTheCallInUtc) {
  for (const char *zone : {"UTC", "East-5:30", "West+11"}) {
    SCOPED_TRACE(zone);
    const TimeZone time_zone(zone);
    for (int i = 0; i < 20; ++i) {
      const long long before = now_in_milliseconds();
      const std::string line = standard_error_of([] { log_error("text"); });
      const long long after = now_in_milliseconds();
      EXPECT_GE(milliseconds_of(line), before) << line;
      EXPECT_LE(milliseconds_of(line), after) << line;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
}

TEST_F(LogLine, FollowsTheOneBefore) {
  const Lines lines = logged_by([] {
    log_error("first");
    log_text(LOG_LEVEL_INFO, "dropped");
    log_text(LOG_LEVEL_FATAL, "second");
    log_error("third");
  });
  EXPECT_EQ(lines, (Lines{"ERROR a.cpp:1 first", "FATAL a.cpp:1 second", "ERROR a.cpp:1 third"}));
}

TEST_F(LogLine, IsWholeForSourcePathsAroundTheBuffer) {
  for (std::size_t length = 900; length <= 1100; ++length) {
    const std::string file = text_of_length(length);
    const Lines lines =
        logged_by([&] { kzoci_log_inner(LOG_LEVEL_ERROR, file.c_str(), 12, "text %d", 34); });
    ASSERT_EQ(lines, Lines{"ERROR " + file + ":12 text 34"}) << length;
  }
}

TEST_F(LogLine, IsWholeWhenSeveralThreadsLog) {
  constexpr int threads = 8;
  constexpr int records = 300;
  Lines lines = logged_by([] { log_from_threads(threads, records); });
  Lines expected = lines_of_threads(threads, records);
  std::sort(lines.begin(), lines.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(lines, expected);
}

TEST_F(LogLine, LongOnesAreWholeWhenSeveralThreadsLog) {
  const auto long_text = [](int thread) {
    return std::to_string(thread) + ":" + std::string(200000, static_cast<char>('a' + thread));
  };
  Lines lines = logged_by([&] {
    logger_support::in_threads(4, [&](int thread) {
      for (int i = 0; i < 5; ++i) log_error(long_text(thread));
    });
  });
  std::sort(lines.begin(), lines.end());
  Lines expected;
  for (int thread = 0; thread < 4; ++thread)
    expected.insert(expected.end(), 5, error_line(long_text(thread)));
  EXPECT_TRUE(lines == expected) << lines.size() << " lines";
}

TEST_F(LogLine, KeepsTheOrderOfEachThread) {
  const Lines lines = logged_by([] { log_from_threads(4, 100); });
  for (int thread = 0; thread < 4; ++thread) {
    const std::string mark = "thread " + std::to_string(thread) + " ";
    Lines of_thread;
    for (const std::string &line : lines)
      if (line.find(mark) != std::string::npos) of_thread.push_back(line);
    Lines expected;
    for (int record = 0; record < 100; ++record)
      expected.push_back(error_line(logger_support::thread_text(thread, record)));
    EXPECT_EQ(of_thread, expected);
  }
}

TEST_F(LogText, IsFormattedFromItsArguments) {
  const Lines lines = logged_by([] {
    kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, "%d|%5u|%-4s|%.3f|%c|%lld|%zu|%%", -7, 42u, "ab",
                    1.5, 'z', 1234567890123LL, std::size_t{9});
  });
  EXPECT_EQ(lines, Lines{error_line("-7|   42|ab  |1.500|z|1234567890123|9|%")});
}

TEST_F(LogText, TakesTextsThatAreNotTerminated) {
  constexpr int length = 2000;
  const std::unique_ptr<char[]> exact(new char[length]);
  std::memset(exact.get(), 'x', length);
  const Lines lines = logged_by([&] {
    kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, "<%.*s>", 5, exact.get() + length - 5);
    kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, "<%.*s>", length, exact.get());
    kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, "<%.*s>", 0, exact.get());
  });
  EXPECT_EQ(lines, (Lines{error_line("<xxxxx>"), error_line("<" + std::string(length, 'x') + ">"),
                          error_line("<>")}));
}

TEST_F(LogText, OfAnyLengthIsWrittenWhole) {
  for (const std::size_t length : remarkable_lengths()) {
    const std::string text = text_of_length(length);
    const std::string written = standard_error_of([&] { log_error(text); });
    const Lines lines = lines_of(written);
    ASSERT_EQ(written.size(), head_length + length + 1);
    ASSERT_EQ(lines.size(), 1u) << length;
    ASSERT_TRUE(without_time(lines[0]) == error_line(text)) << length;
  }
}

// The arguments are read twice where the first buffer is too short.
TEST_F(LogText, OfAnyLengthMayHaveManyArguments) {
  for (const std::size_t length : remarkable_lengths()) {
    const std::string text = text_of_length(length);
    const Lines lines = logged_by([&] {
      kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, "%d %s %.1f %lld %s %d %d %d", 1, text.c_str(),
                      2.5, 3LL, "four", 5, 6, 7);
    });
    ASSERT_TRUE(lines == Lines{error_line("1 " + text + " 2.5 3 four 5 6 7")}) << length;
  }
}

TEST_F(LogText, MayHavePercentSigns) {
  const std::string text = "100%s 5%n %d%% %";
  EXPECT_EQ(logged_by([&] { log_error(text); }), Lines{error_line(text)});
  EXPECT_EQ(logged_by([] { kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, "100%% of %%s"); }),
            Lines{error_line("100% of %s")});
  std::string percent_signs;
  for (int i = 0; i < 1500; ++i) percent_signs += "%n";
  EXPECT_EQ(logged_by([&] { log_error(percent_signs); }), Lines{error_line(percent_signs)});
}

TEST_F(LogText, MayHaveLineFeeds) {
  const std::string written = standard_error_of([] { log_error("\none\n\ntwo\n"); });
  ASSERT_TRUE(begins_with_time(written));
  EXPECT_EQ(written.substr(time_pattern.size()), " ERROR a.cpp:1 \none\n\ntwo\n\n");
}

TEST_F(LogText, MayBeEmpty) {
  const std::string written = standard_error_of([] { log_error(""); });
  ASSERT_TRUE(begins_with_time(written));
  EXPECT_EQ(written.substr(time_pattern.size()), " ERROR a.cpp:1 \n");
}

TEST_F(LogText, MayHaveZeroBytes) {
  const Lines lines = logged_by([] {
    kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, "a%cb", '\0');
    kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, "%2000d%cb", 1, '\0');
  });
  const std::string zero(1, '\0');
  EXPECT_EQ(lines, (Lines{error_line("a" + zero + "b"),
                          error_line(std::string(1999, ' ') + "1" + zero + "b")}));
}

TEST_F(LogText, ThatCannotBeFormattedLeavesALine) {
  const wchar_t euro_sign[] = L"\u20ac";
  const Lines lines = logged_by([&] {
    kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, "price %ls", euro_sign);
    kzoci_log_inner(LOG_LEVEL_ERROR, "b.cpp", 2, "%2000d %ls", 1, euro_sign);
    kzoci_log_inner(LOG_LEVEL_ERROR, "c.cpp", 3, "next");
  });
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0].rfind("ERROR a.cpp:1 ", 0), 0u) << lines[0];
  EXPECT_EQ(lines[1].rfind("ERROR b.cpp:2 ", 0), 0u) << lines[1];
  EXPECT_EQ(lines[2], "ERROR c.cpp:3 next");
}

TEST_F(LogText, ThatCannotBeFormattedIsTerminatedForASink) {
  const wchar_t euro_sign[] = L"\u20ac";
  RecordingSink sink;
  kzoci_log_set_sink(RecordingSink::take, &sink);
  kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, "price %ls", euro_sign);
  kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, "%2000d %ls", 1, euro_sign);
  ASSERT_EQ(sink.records.size(), 2u);
  for (const RecordingSink::Record &record : sink.records) {
    EXPECT_TRUE(record.terminated);
    EXPECT_EQ(record.text.find('\0'), std::string::npos);
  }
}

TEST_F(LogText, LeavesErrnoAlone) {
  const std::string long_text(5000, 'x');
  int after[4] = {};
  standard_error_of([&] {
    errno = EXDEV;
    log_text(LOG_LEVEL_INFO, "dropped");
    after[0] = errno;
    log_error("short");
    after[1] = errno;
    log_error(long_text);
    after[2] = errno;
    kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, "price %ls", L"\u20ac");
    after[3] = errno;
  });
  for (const int value : after) EXPECT_EQ(value, EXDEV);
}

// "%m" prints the error of the caller, not one of the logger's own calls; the
// first conversion of a time looks for the time zone.
TEST_F(LogText, MayHoldTheErrorOfTheCaller) {
  const TimeZone time_zone(":/no/such/zone");
  const std::string error_text = std::strerror(EXDEV);
  const std::string short_format = "%d %m";
  const std::string long_format = "%2000d %m";
  const Lines lines = logged_by([&] {
    errno = EXDEV;
    kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, short_format.c_str(), 1);
    kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, long_format.c_str(), 1);
  });
  EXPECT_EQ(lines, (Lines{error_line("1 " + error_text),
                          error_line(std::string(1999, ' ') + "1 " + error_text)}));
}

TEST_F(LogSink, ReceivesTheRecordAndNothingIsWritten) {
  const std::string written = standard_error_of([] {
    kzoci_log_inner(LOG_LEVEL_FATAL, "kzoci/somewhere/a.cpp", 4711, "status:%d, %s", -1, "lost");
  });
  EXPECT_EQ(written, "");
  ASSERT_EQ(sink_.records.size(), 1u);
  EXPECT_EQ(sink_.records[0].level, LOG_LEVEL_FATAL);
  EXPECT_EQ(sink_.records[0].file, "kzoci/somewhere/a.cpp");
  EXPECT_EQ(sink_.records[0].line, 4711);
  EXPECT_EQ(sink_.records[0].text, "status:-1, lost");
  EXPECT_TRUE(sink_.records[0].terminated);
}

TEST_F(LogSink, ReceivesEveryLevel) {
  kzoci_log_set_threshold(LOG_LEVEL_TRACE);
  for (const LevelName &level : levels) log_text(level.level, level.name);
  ASSERT_EQ(sink_.records.size(), std::size(levels));
  for (std::size_t i = 0; i < std::size(levels); ++i) {
    EXPECT_EQ(sink_.records[i].level, levels[i].level);
    EXPECT_EQ(sink_.records[i].text, levels[i].name);
  }
}

TEST_F(LogSink, ReceivesTextsOfAnyLengthWhole) {
  for (const std::size_t length : remarkable_lengths()) {
    const std::string text = text_of_length(length);
    sink_.records.clear();
    log_error(text);
    ASSERT_EQ(sink_.records.size(), 1u) << length;
    ASSERT_TRUE(sink_.records[0].text == text) << length;
    ASSERT_TRUE(sink_.records[0].terminated) << length;
  }
}

TEST_F(LogSink, ReceivesSourcePathsOfAnyLengthWhole) {
  for (std::size_t length = 900; length <= 1100; ++length) {
    const std::string file = text_of_length(length);
    sink_.records.clear();
    kzoci_log_inner(LOG_LEVEL_ERROR, file.c_str(), 12, "text %d", 34);
    ASSERT_EQ(sink_.records.size(), 1u) << length;
    ASSERT_EQ(sink_.records[0].file, file);
    ASSERT_EQ(sink_.records[0].line, 12);
    ASSERT_EQ(sink_.records[0].text, "text 34");
    ASSERT_TRUE(sink_.records[0].terminated) << length;
  }
}

TEST_F(LogSink, ReceivesTextsAsTheyAre) {
  log_error("100%s %n");
  log_error("\none\ntwo\n");
  kzoci_log_inner(LOG_LEVEL_ERROR, "a.cpp", 1, "a%cb", '\0');
  EXPECT_EQ(sink_.texts(), (Lines{"100%s %n", "\none\ntwo\n", std::string("a\0b", 3)}));
}

TEST_F(LogSink, GivesWayToAnother) {
  RecordingSink other;
  log_error("first");
  kzoci_log_set_sink(RecordingSink::take, &other);
  log_error("second");
  EXPECT_EQ(sink_.texts(), Lines{"first"});
  EXPECT_EQ(other.texts(), Lines{"second"});
}

TEST_F(LogSink, NullGoesBackToWriting) {
  log_error("to the sink");
  kzoci_log_set_sink(nullptr, nullptr);
  EXPECT_EQ(logged_by([] { log_error("to standard error"); }),
            Lines{error_line("to standard error")});
  EXPECT_EQ(sink_.texts(), Lines{"to the sink"});
}

TEST_F(LogSink, NullGoesBackToWritingWhateverTheContext) {
  kzoci_log_set_sink(nullptr, &sink_);
  EXPECT_EQ(logged_by([] { log_error("text"); }), Lines{error_line("text")});
  EXPECT_EQ(sink_.texts(), Lines{});
}

TEST_F(LogSink, MayHaveNoContext) {
  static int calls;
  calls = 0;
  kzoci_log_set_sink(
      [](void *context, const kzoci_log_record *) {
        EXPECT_EQ(context, nullptr);
        ++calls;
      },
      nullptr);
  log_error("text");
  EXPECT_EQ(calls, 1);
}

TEST_F(LogSink, MayChangeErrno) {
  kzoci_log_set_sink([](void *, const kzoci_log_record *) { errno = EBUSY; }, nullptr);
  const std::string long_text(5000, 'x');
  errno = EXDEV;
  log_error("short");
  EXPECT_EQ(errno, EXDEV);
  errno = EXDEV;
  log_error(long_text);
  EXPECT_EQ(errno, EXDEV);
}

TEST_F(LogSink, IsCalledByOneThreadAtATime) {
  struct Watch {
    std::atomic<int> inside = 0;
    std::atomic<bool> overlapped = false;
    int calls = 0;  // Bare, for the thread sanitizer to watch as well.
  } watch;
  kzoci_log_set_sink(
      [](void *context, const kzoci_log_record *) {
        Watch &seen = *static_cast<Watch *>(context);
        if (++seen.inside > 1) seen.overlapped = true;
        ++seen.calls;
        std::this_thread::yield();
        --seen.inside;
      },
      &watch);
  log_from_threads(8, 100);
  kzoci_log_set_sink(nullptr, nullptr);
  EXPECT_FALSE(watch.overlapped);
  EXPECT_EQ(watch.calls, 800);
}

TEST_F(LogSink, ReceivesEveryRecordOfSeveralThreads) {
  log_from_threads(8, 100);
  Lines lines;
  for (const std::string &text : sink_.texts()) lines.push_back(error_line(text));
  Lines expected = lines_of_threads(8, 100);
  std::sort(lines.begin(), lines.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(lines, expected);
}

TEST_F(LogSink, IsNotRunningOnceItIsReplaced) {
  struct Slow {
    std::atomic<bool> entered = false;
    std::atomic<bool> left = false;
  } slow;
  kzoci_log_set_sink(
      [](void *context, const kzoci_log_record *) {
        Slow &seen = *static_cast<Slow *>(context);
        seen.entered = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        seen.left = true;
      },
      &slow);
  std::atomic<bool> logged = false;
  std::thread logging([&logged] {
    log_error("text");
    logged = true;
  });
  while (!slow.entered && !logged) std::this_thread::yield();
  kzoci_log_set_sink(nullptr, nullptr);
  EXPECT_TRUE(slow.left);
  logging.join();
}

TEST_F(LogSink, LosesNothingWhenItIsReplacedWhileThreadsLog) {
  std::atomic<bool> done = false;
  RecordingSink other;
  Lines lines = logged_by([&] {
    std::thread changer([&] {
      for (int i = 0; !done; ++i) {
        RecordingSink *const next = i % 3 == 0 ? &sink_ : &other;
        kzoci_log_set_sink(i % 3 == 2 ? nullptr : RecordingSink::take, next);
        std::this_thread::yield();
      }
    });
    log_from_threads(4, 300);
    done = true;
    changer.join();
    kzoci_log_set_sink(nullptr, nullptr);
  });
  for (const std::string &text : sink_.texts()) lines.push_back(error_line(text));
  for (const std::string &text : other.texts()) lines.push_back(error_line(text));
  Lines expected = lines_of_threads(4, 300);
  std::sort(lines.begin(), lines.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(lines, expected);
}

}  // namespace
