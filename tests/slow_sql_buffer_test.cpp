// The slow-SQL buffer: what is kept, what is logged, and when.
#include <gtest/gtest.h>

#include <bit>
#include <cinttypes>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "kzoci/platform/memory.h"
#include "support/parsing.h"

namespace {

using namespace std::string_literals;
using support::operator+;
using support::Lines;

constexpr sb8 largest = std::numeric_limits<sb8>::max();
constexpr sb8 smallest = std::numeric_limits<sb8>::min();
constexpr ub4 interval = 77;

const std::string released = "FREE KZCISlowSQLBufferInit";
const std::string lost_before = "ERROR KZCISlowSQLBufferFlush write to log fail.";
const std::string lost_after = "ERROR KZCISlowSQLBufferFlush write to log fail!";
const std::string lost_at_clear = "ERROR KZCISlowSQLBufferFlush (clean) write to log fail";

std::string allocated(sb8 size) {
  return "MALLOC " + std::to_string(size) + " KZCISlowSQLBufferInit";
}

std::string batch(const std::string &text) { return "SLOWSQL SLOWSQL:" + text; }

// A report of which no two neighbouring parts are alike.
std::string report(std::size_t length, std::size_t from = 0) {
  std::string text;
  for (std::size_t i = 0; i < length; ++i) text += static_cast<char>('a' + (from + i) % 26);
  return text;
}

// The whole buffer, the bytes after the text too.
std::string content(const KZCISLowSQL &slowsql) {
  return {slowsql.buffer, static_cast<std::size_t>(slowsql.buffer_length)};
}

sword write(KZCISLowSQL &slowsql, const std::string &text) {
  return KZCISlowSQLWrite(&slowsql, "%s", text.c_str());
}

class SlowSql : public ::testing::Test {
 protected:
  void SetUp() override {
    support::reset_platform();
    std::memset(&slowsql_, 0, sizeof slowsql_);
    slowsql_.flush_second = interval;
  }
  void TearDown() override {
    EXPECT_EQ(slowsql_.flush_second, interval);
    EXPECT_EQ(support::bad_releases(), 0u);
    support::reset_platform();
  }

  // Starts over with a buffer and an empty log.
  void init(sb8 size) {
    support::reset_platform();
    ASSERT_EQ(KZCISlowSQLBufferInit(&slowsql_, size), 0);
    ASSERT_EQ(support::events(), Lines{allocated(size)});
  }

  // A record made by hand over a block of 16 bytes with this text and then 'z'.
  void by_hand(const std::string &text, sb8 length, sb8 pos) {
    support::reset_platform();
    slowsql_.buffer = static_cast<char *>(kzci_malloc(16, "KZCISlowSQLBufferInit"));
    std::memset(slowsql_.buffer, 'z', 16);
    std::memcpy(slowsql_.buffer, text.data(), text.size());
    slowsql_.buffer_length = length;
    slowsql_.buffer_pos = pos;
  }
  std::string hand_made_content() const { return {slowsql_.buffer, 16}; }

  void expect_log(const Lines &expected) { EXPECT_EQ(support::log_records(), expected); }

  // The buffer holds this text and zeros after it.
  void expect_kept(const std::string &text) {
    EXPECT_EQ(slowsql_.buffer_pos, static_cast<sb8>(text.size()));
    std::string whole = text;
    whole.resize(static_cast<std::size_t>(slowsql_.buffer_length), '\0');
    EXPECT_EQ(content(slowsql_), whole);
  }

  void expect_no_buffer() {
    EXPECT_EQ(slowsql_.buffer, nullptr);
    EXPECT_EQ(slowsql_.buffer_length, 0);
    EXPECT_EQ(slowsql_.buffer_pos, 0);
  }

  // Write and Flush refuse a record without a buffer and log nothing.
  void expect_unusable() {
    const Lines before = support::events();
    EXPECT_EQ(write(slowsql_, "report"), -2);
    EXPECT_EQ(write(slowsql_, ""), -2);
    EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), -2);
    EXPECT_EQ(support::events(), before);
  }

  // Init without memory: these events, no buffer, no other change.
  void expect_failed_allocation(sb8 size, const Lines &events) {
    support::reset_platform();
    std::memset(&slowsql_, 0x5C, sizeof slowsql_);
    slowsql_.flush_second = interval;
    support::fail_allocation(1);
    EXPECT_EQ(KZCISlowSQLBufferInit(&slowsql_, size), -2);
    EXPECT_EQ(support::events(), events);
    expect_no_buffer();
    EXPECT_EQ(slowsql_.flush_second, interval);
    expect_unusable();
    EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), 0);
  }

  KZCISLowSQL slowsql_;
};

using SlowSqlInit = SlowSql;
using SlowSqlFlush = SlowSql;
using SlowSqlWrite = SlowSql;
using SlowSqlClear = SlowSql;

/* ---- The record ---- */

TEST(SlowSqlRecord, FieldsStandInTheirOrder) {
  static_assert(std::is_same_v<decltype(KZCISLowSQL::buffer), char *>);
  static_assert(std::is_same_v<decltype(KZCISLowSQL::buffer_length), sb8>);
  static_assert(std::is_same_v<decltype(KZCISLowSQL::buffer_pos), sb8>);
  static_assert(std::is_same_v<decltype(KZCISLowSQL::flush_second), ub4>);
  EXPECT_EQ(offsetof(KZCISLowSQL, buffer), 0u);
  EXPECT_LT(offsetof(KZCISLowSQL, buffer), offsetof(KZCISLowSQL, buffer_length));
  EXPECT_LT(offsetof(KZCISLowSQL, buffer_length), offsetof(KZCISLowSQL, buffer_pos));
  EXPECT_LT(offsetof(KZCISLowSQL, buffer_pos), offsetof(KZCISLowSQL, flush_second));
}

/* ---- Init ---- */

TEST_F(SlowSqlInit, MakesAnEmptyBuffer) {
  for (const sb8 size : {1, 2, 3, 15, 16, 17, 1048576}) {
    SCOPED_TRACE(size);
    std::memset(&slowsql_, 0x5C, sizeof slowsql_);
    slowsql_.flush_second = interval;
    init(size);
    ASSERT_NE(slowsql_.buffer, nullptr);
    EXPECT_EQ(slowsql_.buffer_length, size);
    EXPECT_EQ(slowsql_.flush_second, interval);
    expect_kept("");
    EXPECT_EQ(
        support::live_blocks(),
        (std::vector<support::Block>{{"KZCISlowSQLBufferInit", static_cast<std::size_t>(size)}}));
  }
}

TEST_F(SlowSqlInit, KeepsAnyFlushSecond) {
  for (const ub4 seconds : {0u, 1u, 4294967295u}) {
    slowsql_.flush_second = seconds;
    EXPECT_EQ(KZCISlowSQLBufferInit(&slowsql_, 16), 0);
    EXPECT_EQ(slowsql_.flush_second, seconds);
    EXPECT_EQ(KZCISlowSQLBufferInit(&slowsql_, 0), 0);
    EXPECT_EQ(slowsql_.flush_second, seconds);
  }
  slowsql_.flush_second = interval;
}

// The message prints the low 32 bits of the size.
TEST_F(SlowSqlInit, NoBufferForASizeOf0OrLess) {
  struct Row {
    sb8 size;
    std::string printed;
  };
  const Row rows[] = {
      {0, "0"},
      {-1, "-1"},
      {-16, "-16"},
      {-2147483648LL, "-2147483648"},
      {-2147483649LL, "2147483647"},
      {-4294967295LL, "1"},
      {-4294967296LL, "0"},
      {smallest, "0"},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.size);
    support::reset_platform();
    std::memset(&slowsql_, 0x5C, sizeof slowsql_);
    slowsql_.flush_second = interval;
    EXPECT_EQ(KZCISlowSQLBufferInit(&slowsql_, row.size), 0);
    EXPECT_EQ(support::events(), Lines{"DEBUG KZCISlowSQLBufferInit: buffer_size=" + row.printed});
    expect_no_buffer();
    EXPECT_EQ(slowsql_.flush_second, interval);
    expect_unusable();
    EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), 0);
    EXPECT_EQ(support::memory_events(), Lines());
  }
}

TEST_F(SlowSqlInit, NullRecord) {
  EXPECT_EQ(KZCISlowSQLBufferInit(nullptr, 16), -2);
  EXPECT_EQ(KZCISlowSQLBufferInit(nullptr, 0), -2);
  EXPECT_EQ(KZCISlowSQLBufferInit(nullptr, -1), -2);
  EXPECT_EQ(support::events(), Lines());
}

TEST_F(SlowSqlInit, FailedAllocation) {
  for (const sb8 size : {sb8{1}, sb8{16}, sb8{2147483648}, sb8{4294967295}}) {
    SCOPED_TRACE(size);
    expect_failed_allocation(size,
                             {"MALLOC FAILS " + std::to_string(size) + " KZCISlowSQLBufferInit"});
  }
}

// Where addresses have 32 bits the size must not be cut to them: nothing is
// allocated, and what follows is what a failed allocation leaves.
TEST_F(SlowSqlInit, MoreThan32BitsOfCharacters) {
  for (const sb8 size : {sb8{4294967296}, sb8{4294967312}, largest - 1, largest}) {
    SCOPED_TRACE(size);
    const bool asks = sizeof(std::size_t) == 8;
    expect_failed_allocation(
        size,
        asks ? Lines{"MALLOC FAILS " + std::to_string(size) + " KZCISlowSQLBufferInit"} : Lines{});
  }
}

TEST_F(SlowSqlInit, WorksAfterAFailedAllocation) {
  support::fail_allocation(1);
  EXPECT_EQ(KZCISlowSQLBufferInit(&slowsql_, 16), -2);
  init(16);
  EXPECT_EQ(write(slowsql_, "a"), 0);
  expect_kept("a");
}

// The caller clears first: a buffer that is there is neither logged nor released.
TEST_F(SlowSqlInit, EarlierBufferIsNotReleased) {
  init(16);
  EXPECT_EQ(write(slowsql_, "first"), 0);
  char *const first = slowsql_.buffer;
  EXPECT_EQ(KZCISlowSQLBufferInit(&slowsql_, 8), 0);
  EXPECT_NE(slowsql_.buffer, first);
  expect_kept("");
  EXPECT_STREQ(first, "first");
  EXPECT_EQ(KZCISlowSQLBufferInit(&slowsql_, 0), 0);
  expect_no_buffer();
  EXPECT_EQ(support::events(),
            (Lines{allocated(16), allocated(8), "DEBUG KZCISlowSQLBufferInit: buffer_size=0"}));
  EXPECT_EQ(support::live_blocks().size(), 2u);
}

TEST_F(SlowSqlInit, AgainAfterClear) {
  init(16);
  EXPECT_EQ(write(slowsql_, "first"), 0);
  EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), 0);
  EXPECT_EQ(KZCISlowSQLBufferInit(&slowsql_, 4), 0);
  EXPECT_EQ(write(slowsql_, "ab"), 0);
  expect_kept("ab");
  EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), 0);
  EXPECT_EQ(support::events(),
            (Lines{allocated(16), batch("first"), released, allocated(4), batch("ab"), released}));
}

/* ---- Flush ---- */

TEST_F(SlowSqlFlush, LogsTheTextAndEmptiesTheBuffer) {
  init(16);
  EXPECT_EQ(write(slowsql_, "select 1"), 0);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({batch("select 1")});
  expect_kept("");
  EXPECT_EQ(slowsql_.buffer_length, 16);
}

TEST_F(SlowSqlFlush, BatchHasALevelOfItsOwn) {
  init(16);
  EXPECT_EQ(write(slowsql_, "a"), 0);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  EXPECT_EQ(support::log_of(LOG_LEVEL_SLOWSQL), Lines{"SLOWSQL:a"});
}

TEST_F(SlowSqlFlush, EmptyBufferLogsNothing) {
  init(16);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  EXPECT_EQ(write(slowsql_, "a"), 0);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({batch("a")});
}

// Every byte of the buffer becomes zero, those after the text too.
TEST_F(SlowSqlFlush, WholeBufferIsZeroed) {
  by_hand("abc\0"s, 16, 3);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({batch("abc")});
  expect_kept("");
}

// ... and none after its length.
TEST_F(SlowSqlFlush, BytesAfterTheLengthStay) {
  by_hand("abc\0"s, 8, 3);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  EXPECT_EQ(hand_made_content(), std::string(8, '\0') + "zzzzzzzz");
}

TEST_F(SlowSqlFlush, PositionOf0OrLessTouchesNothing) {
  for (const sb8 pos : {sb8{0}, sb8{-1}, sb8{-16}, smallest}) {
    SCOPED_TRACE(pos);
    by_hand("abc\0"s, 16, pos);
    EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
    EXPECT_EQ(slowsql_.buffer_pos, pos);
    EXPECT_EQ(hand_made_content(), "abc\0zzzzzzzzzzzz"s);
    expect_log({});
  }
}

TEST_F(SlowSqlFlush, TextIsNoFormat) {
  init(32);
  EXPECT_EQ(write(slowsql_, "like '100%' %s%n%d%%"), 0);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({batch("like '100%' %s%n%d%%")});
}

TEST_F(SlowSqlFlush, NullRecordAndNoBuffer) {
  EXPECT_EQ(KZCISlowSQLBufferFlush(nullptr), -2);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), -2);
  slowsql_.buffer_length = 16;
  slowsql_.buffer_pos = 5;
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), -2);
  EXPECT_EQ(slowsql_.buffer_pos, 5);
  EXPECT_EQ(support::events(), Lines());
}

TEST_F(SlowSqlFlush, LengthOf0OrLess) {
  for (const sb8 length : {sb8{0}, sb8{-1}, smallest}) {
    SCOPED_TRACE(length);
    by_hand("abc\0"s, length, 3);
    EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), -2);
    EXPECT_EQ(slowsql_.buffer_pos, 3);
    EXPECT_EQ(slowsql_.buffer_length, length);
    EXPECT_EQ(hand_made_content(), "abc\0zzzzzzzzzzzz"s);
    expect_log({});
  }
}

/* ---- Write ---- */

TEST_F(SlowSqlWrite, ReportThatReachesTheThresholdFlushesFirst) {
  init(16);
  EXPECT_EQ(write(slowsql_, "0123456789"), 0);
  expect_kept("0123456789");
  expect_log({});
  EXPECT_EQ(write(slowsql_, "abcde"), 0);
  expect_kept("abcde");
  expect_log({batch("0123456789")});
}

TEST_F(SlowSqlWrite, ReportBelowTheThresholdIsAppended) {
  init(16);
  EXPECT_EQ(write(slowsql_, "0123456789"), 0);
  EXPECT_EQ(write(slowsql_, "abcd"), 0);
  expect_kept("0123456789abcd");
  expect_log({});
}

TEST_F(SlowSqlWrite, LongestReportThatIsKept) {
  init(16);
  EXPECT_EQ(write(slowsql_, report(14)), 0);
  expect_kept(report(14));
  expect_log({});
}

TEST_F(SlowSqlWrite, ReportThatFillsTheBufferIsLoggedAtOnce) {
  init(16);
  EXPECT_EQ(write(slowsql_, report(15)), 0);
  expect_log({batch(report(15))});
  expect_kept("");
}

TEST_F(SlowSqlWrite, LongReportIsCutAndLoggedAlone) {
  for (const std::size_t length : {16u, 17u, 40u, 1000000u}) {
    SCOPED_TRACE(length);
    init(16);
    EXPECT_EQ(write(slowsql_, "before"), 0);
    EXPECT_EQ(write(slowsql_, report(length)), 0);
    expect_log({batch("before"), batch(report(15))});
    expect_kept("");
    EXPECT_EQ(write(slowsql_, "behind"), 0);
    expect_kept("behind");
  }
}

// The buffer is given by its size; each row is a report into an empty buffer.
TEST_F(SlowSqlWrite, SmallestBuffers) {
  struct Row {
    sb8 size;
    std::string text;
    std::string kept;
    Lines log;
  };
  const Row rows[] = {
      {1, "", "", {}},
      {1, "a", "", {batch("")}},
      {1, "ab", "", {batch("")}},
      {2, "", "", {}},
      {2, "a", "", {batch("a")}},
      {2, "ab", "", {batch("a")}},
      {2, "abc", "", {batch("a")}},
      {3, "", "", {}},
      {3, "a", "a", {}},
      {3, "ab", "", {batch("ab")}},
      {3, "abc", "", {batch("ab")}},
      {4, "ab", "ab", {}},
      {4, "abc", "", {batch("abc")}},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE("size " + std::to_string(row.size) + ", report " + row.text);
    init(row.size);
    EXPECT_EQ(write(slowsql_, row.text), 0);
    expect_kept(row.kept);
    expect_log(row.log);
  }
}

TEST_F(SlowSqlWrite, SecondReportIntoABufferOf3) {
  init(3);
  EXPECT_EQ(write(slowsql_, "a"), 0);
  EXPECT_EQ(write(slowsql_, "b"), 0);
  expect_kept("b");
  EXPECT_EQ(write(slowsql_, ""), 0);
  expect_kept("b");
  EXPECT_EQ(write(slowsql_, "cd"), 0);
  expect_kept("");
  expect_log({batch("a"), batch("b"), batch("cd")});
}

TEST_F(SlowSqlWrite, FormatsThatYieldNothing) {
  init(16);
  EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "%s", ""), 0);
  EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "%.0s", "abc"), 0);
  EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "%.*s", 0, "abc"), 0);
  EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "%.0d", 0), 0);
  expect_kept("");
  EXPECT_EQ(write(slowsql_, report(14)), 0);
  EXPECT_EQ(write(slowsql_, ""), 0);
  expect_kept(report(14));
  expect_log({});
}

TEST_F(SlowSqlWrite, EveryKindOfArgument) {
  init(128);
  EXPECT_EQ(
      KZCISlowSQLWrite(&slowsql_, "%s took %d ms, %.*s %c %lld %lu %.2f %5d|%-4s|%x%%\n", "select",
                       12, 3, "abcdef", 'c', -5000000000LL, 7ul, 2.5, 42, "l", 255u),
      0);
  expect_kept("select took 12 ms, abc c -5000000000 7 2.50    42|l   |ff%\n");
}

// More arguments than registers hold: they are read twice from the start.
TEST_F(SlowSqlWrite, ManyArguments) {
  init(128);
  EXPECT_EQ(
      KZCISlowSQLWrite(&slowsql_, "%d%d%d%d%d%d%d%d%d%d %g%g%g%g%g%g%g%g%g%g %s", 0, 1, 2, 3, 4, 5,
                       6, 7, 8, 9, 0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0, "end"),
      0);
  expect_kept("0123456789 0123456789 end");
}

TEST_F(SlowSqlWrite, FormatWithoutArguments) {
  init(16);
  EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "plain"), 0);
  expect_kept("plain");
}

// A zero byte counts as a character but ends the text for the log.
TEST_F(SlowSqlWrite, ZeroByteInAReport) {
  init(16);
  EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "ab%ccd", '\0'), 0);
  expect_kept("ab\0cd"s);
  EXPECT_EQ(write(slowsql_, "ef"), 0);
  expect_kept("ab\0cdef"s);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({batch("ab")});
  expect_kept("");
}

TEST_F(SlowSqlWrite, BytesArePassedThrough) {
  init(32);
  EXPECT_EQ(write(slowsql_, "\xFF\x80\t\n%s%n\x01"), 0);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({batch("\xFF\x80\t\n%s%n\x01")});
}

TEST_F(SlowSqlWrite, NoAllocationButTheFirst) {
  init(64);
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(write(slowsql_, report(7)), 0);
  EXPECT_EQ(support::allocation_count(), 1u);
  EXPECT_EQ(support::memory_events(), Lines{allocated(64)});
}

// 62 characters are kept at most, thus 8 reports of 7.
TEST_F(SlowSqlWrite, OneRecordForEachFullBuffer) {
  init(64);
  std::string eight;
  for (int i = 0; i < 8; ++i) eight += report(7);
  for (int i = 0; i < 24; ++i) ASSERT_EQ(write(slowsql_, report(7)), 0);
  expect_log({batch(eight), batch(eight)});
  expect_kept(eight);
}

TEST_F(SlowSqlWrite, NullRecordAndNoBuffer) {
  EXPECT_EQ(KZCISlowSQLWrite(nullptr, "%s", "report"), -2);
  EXPECT_EQ(write(slowsql_, "report"), -2);
  slowsql_.buffer_length = 16;
  slowsql_.buffer_pos = 5;
  EXPECT_EQ(write(slowsql_, "report"), -2);
  EXPECT_EQ(slowsql_.buffer_pos, 5);
  EXPECT_EQ(support::events(), Lines());
}

TEST_F(SlowSqlWrite, LengthOf0OrLess) {
  for (const sb8 length : {sb8{0}, sb8{-1}, sb8{-16}, smallest}) {
    SCOPED_TRACE(length);
    by_hand("abc\0"s, length, 3);
    EXPECT_EQ(write(slowsql_, "report"), -2);
    EXPECT_EQ(write(slowsql_, ""), -2);
    EXPECT_EQ(slowsql_.buffer_pos, 3);
    EXPECT_EQ(slowsql_.buffer_length, length);
    EXPECT_EQ(hand_made_content(), "abc\0zzzzzzzzzzzz"s);
    expect_log({});
  }
}

// A report leaves the bytes after its terminator alone.
TEST_F(SlowSqlWrite, OnlyTheReportIsWritten) {
  by_hand("abc\0"s, 16, 3);
  EXPECT_EQ(write(slowsql_, "de"), 0);
  EXPECT_EQ(hand_made_content(), "abcde\0zzzzzzzzzz"s);
  EXPECT_EQ(slowsql_.buffer_pos, 5);
  expect_log({});
}

// A position at or after the end is past the threshold: the text is logged.
// Nor does it matter what the position's low 32 bits are.
TEST_F(SlowSqlWrite, PositionAfterTheEnd) {
  for (const sb8 pos : {sb8{15}, sb8{16}, sb8{17}, sb8{1000}, sb8{2147483647}, sb8{4294967296},
                        sb8{6442450943}, largest - 100}) {
    SCOPED_TRACE(pos);
    by_hand("abc\0"s, 16, pos);
    EXPECT_EQ(write(slowsql_, "de"), 0);
    expect_log({batch("abc")});
    expect_kept("de");
  }
}

TEST_F(SlowSqlWrite, LargestPosition) {
  by_hand("abc\0"s, 16, largest);
  EXPECT_EQ(write(slowsql_, "de"), 0);
  expect_log({batch("abc")});
  expect_kept("de");
}

/* ---- A length that the formatter reports as negative ---- */

#if !defined(_WIN32)  // The formatter leaves such characters out there.

// No narrow character of the "C" locale stands for this one: "%ls" fails on it.
constexpr const wchar_t *unencodable = L"\u20AC";

sword write_unencodable(KZCISLowSQL &slowsql) {
  return KZCISlowSQLWrite(&slowsql, "%ls", unencodable);
}

class SlowSqlFormatError : public SlowSql {
 protected:
  void SetUp() override {
    SlowSql::SetUp();
    ASSERT_EQ(std::snprintf(nullptr, 0, "%ls", unencodable), -1);
  }
  std::string logged() const {
    std::string all;
    for (const std::string &text : support::log_of(LOG_LEVEL_SLOWSQL)) all += text;
    return all;
  }
};

// The position goes back by one, so that the next report overwrites the last
// character.
TEST_F(SlowSqlFormatError, InTheMiddle) {
  init(16);
  EXPECT_EQ(write(slowsql_, "hello"), 0);
  EXPECT_EQ(write_unencodable(slowsql_), 0);
  EXPECT_EQ(slowsql_.buffer_pos, 4);
  expect_log({});
  EXPECT_EQ(write(slowsql_, "XY"), 0);
  EXPECT_EQ(slowsql_.buffer_pos, 6);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({batch("hellXY")});
  expect_kept("");
}

TEST_F(SlowSqlFormatError, AfterAPartThatIsFormatted) {
  init(16);
  EXPECT_EQ(write(slowsql_, "hello"), 0);
  EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "abcdefghijklmnopqrstuvwxyz%ls", unencodable), 0);
  EXPECT_EQ(slowsql_.buffer_pos, 4);
  expect_log({});
  EXPECT_EQ(write(slowsql_, "XY"), 0);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({batch("hellXY")});
  expect_kept("");
}

TEST_F(SlowSqlFormatError, AtTheLastPositionThatIsKept) {
  init(16);
  EXPECT_EQ(write(slowsql_, report(14)), 0);
  EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "abcdef%ls", unencodable), 0);
  EXPECT_EQ(slowsql_.buffer_pos, 13);
  EXPECT_EQ(write(slowsql_, ""), 0);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({batch(report(13))});
}

TEST_F(SlowSqlFormatError, BackToTheStart) {
  init(16);
  EXPECT_EQ(write(slowsql_, "a"), 0);
  EXPECT_EQ(write_unencodable(slowsql_), 0);
  EXPECT_EQ(slowsql_.buffer_pos, 0);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({});
  EXPECT_EQ(write(slowsql_, "b"), 0);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({batch("b")});
}

// Before the buffer nothing is logged and nothing is written; the position
// says how many characters fall before its start.
TEST_F(SlowSqlFormatError, AtTheStart) {
  for (const sb8 size : {1, 2, 3, 16, 64}) {
    SCOPED_TRACE(size);
    init(size);
    for (sb8 pos = -1; pos >= -20; --pos) {
      EXPECT_EQ(write_unencodable(slowsql_), 0);
      EXPECT_EQ(slowsql_.buffer_pos, pos);
    }
    EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
    EXPECT_EQ(slowsql_.buffer_pos, -20);
    EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), 0);
    expect_no_buffer();
    EXPECT_EQ(support::events(), (Lines{allocated(size), released}));
  }
}

TEST_F(SlowSqlFormatError, ReportsAfterTheStart) {
  init(16);
  EXPECT_EQ(write_unencodable(slowsql_), 0);
  EXPECT_EQ(write(slowsql_, "abc"), 0);
  EXPECT_EQ(slowsql_.buffer_pos, 2);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  EXPECT_TRUE(logged().ends_with("bc")) << logged();
  expect_kept("");
  EXPECT_EQ(write(slowsql_, "def"), 0);
  expect_kept("def");
}

TEST_F(SlowSqlFormatError, ReportThatEndsAtTheStart) {
  init(16);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(write_unencodable(slowsql_), 0);
  EXPECT_EQ(write(slowsql_, "abc"), 0);
  EXPECT_EQ(slowsql_.buffer_pos, 0);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({});
  EXPECT_EQ(write(slowsql_, "x"), 0);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({batch("x")});
}

// However far before it, a long report fills the buffer and nothing beside it.
TEST_F(SlowSqlFormatError, LongReportInFrontOfTheStart) {
  for (const sb8 size : {1, 2, 3, 16}) {
    for (const sb8 front : {sb8{-1}, sb8{-2}, sb8{-15}, sb8{-16}, sb8{-40}}) {
      SCOPED_TRACE("size " + std::to_string(size) + ", position " + std::to_string(front));
      init(size);
      slowsql_.buffer_pos = front;
      const std::string text = report(100);
      EXPECT_EQ(write(slowsql_, text), 0);
      EXPECT_EQ(logged().size(), 8 + static_cast<std::size_t>(size) - 1);
      EXPECT_NE(text.find(logged().substr(8)), std::string::npos) << logged();
      expect_kept("");
    }
  }
}

TEST_F(SlowSqlFormatError, ReportsThatFillABufferFromInFront) {
  for (std::size_t length = 0; length <= 40; ++length) {
    SCOPED_TRACE(length);
    init(16);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(write_unencodable(slowsql_), 0);
    EXPECT_EQ(write(slowsql_, report(length)), 0);
    const sb8 reached = static_cast<sb8>(length) - 3;
    EXPECT_EQ(slowsql_.buffer_pos, reached >= 15 ? 0 : reached);
    EXPECT_EQ(support::log_records().size(), reached >= 15 ? 1u : 0u);
  }
}

// A smallest position stays what it is when nothing is added.
TEST_F(SlowSqlFormatError, SmallestPosition) {
  init(16);
  slowsql_.buffer_pos = smallest;
  EXPECT_EQ(write(slowsql_, ""), 0);
  EXPECT_EQ(slowsql_.buffer_pos, smallest);
  EXPECT_EQ(write(slowsql_, "abc"), 0);
  EXPECT_EQ(slowsql_.buffer_pos, smallest + 3);
  expect_log({});
}

// The position may stand after the threshold before the length is taken off.
TEST_F(SlowSqlFormatError, PositionAfterTheEnd) {
  by_hand("abc\0"s, 16, 16);
  EXPECT_EQ(write_unencodable(slowsql_), 0);
  expect_log({batch("abc")});
  EXPECT_EQ(slowsql_.buffer_pos, -1);
}

// Taken off first, the length keeps a position at the threshold below it.
TEST_F(SlowSqlFormatError, PositionAtTheThreshold) {
  by_hand("0123456789abcde\0"s, 16, 15);
  EXPECT_EQ(write_unencodable(slowsql_), 0);
  expect_log({});
  EXPECT_EQ(slowsql_.buffer_pos, 14);
  EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql_), 0);
  expect_log({batch("0123456789abcde")});
}

#endif

/* ---- A record that loses its buffer during a write ----
 *
 * "%jn" stores the number of characters before it, whenever the report is
 * formatted. Aimed at the record's own length it takes the buffer away. */

static_assert(std::is_same_v<sb8, std::intmax_t>, "\"%jn\" stores an sb8");

TEST_F(SlowSqlWrite, BufferLostWhileTheReportIsMeasured) {
  init(16);
  EXPECT_EQ(write(slowsql_, "hello"), 0);
  EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "%jnreport", &slowsql_.buffer_length), -1);
  expect_log({lost_before, lost_after});
  EXPECT_EQ(slowsql_.buffer_length, 0);
  slowsql_.buffer_length = 16;
  expect_kept("hello");
  EXPECT_EQ(write(slowsql_, " again"), 0);
  EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), 0);
  expect_log({lost_before, lost_after, batch("hello again")});
}

TEST_F(SlowSqlWrite, EmptyBufferLostWhileTheReportIsMeasured) {
  init(16);
  EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "%jnreport", &slowsql_.buffer_length), -1);
  expect_log({lost_before, lost_after});
  slowsql_.buffer_length = 16;
  expect_kept("");
}

// Before the start the second threshold is not reached: the status of the
// first failure stands.
TEST_F(SlowSqlWrite, BufferLostInFrontOfTheStart) {
  init(16);
  slowsql_.buffer_pos = -3;
  EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "%jnreport", &slowsql_.buffer_length), -1);
  expect_log({lost_before});
  EXPECT_EQ(slowsql_.buffer_pos, -3);
  slowsql_.buffer_length = 16;
  EXPECT_EQ(content(slowsql_), std::string(16, '\0'));
}

// The report is the position's lowest byte as text: one character while it is
// measured, none once the first flush has set the position to 0. So the length
// becomes 1 first and 0 afterwards.
TEST_F(SlowSqlWrite, BufferLostWhileTheReportIsWritten) {
  const std::size_t lowest = std::endian::native == std::endian::little ? 0 : sizeof(sb8) - 1;
  slowsql_.flush_second = 0;
  init(16);
  EXPECT_EQ(write(slowsql_, "hello"), 0);
  const char *const position = reinterpret_cast<const char *>(&slowsql_.buffer_pos) + lowest;
  EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "%s%jn", position, &slowsql_.buffer_length), -1);
  expect_log({batch("hello"), lost_after});
  EXPECT_EQ(slowsql_.buffer_pos, 0);
  EXPECT_EQ(slowsql_.buffer_length, 0);
  slowsql_.flush_second = interval;
}

/* ---- Clear ---- */

TEST_F(SlowSqlClear, LogsTheTextAndReleasesTheBuffer) {
  init(16);
  EXPECT_EQ(write(slowsql_, "last"), 0);
  EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), 0);
  EXPECT_EQ(support::events(), (Lines{allocated(16), batch("last"), released}));
  expect_no_buffer();
  EXPECT_EQ(support::live_blocks().size(), 0u);
}

TEST_F(SlowSqlClear, SecondTimeDoesNothing) {
  init(16);
  EXPECT_EQ(write(slowsql_, "last"), 0);
  EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), 0);
  EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), 0);
  EXPECT_EQ(support::events(), (Lines{allocated(16), batch("last"), released}));
  expect_no_buffer();
  expect_unusable();
}

TEST_F(SlowSqlClear, EmptyBufferIsReleasedSilently) {
  init(16);
  EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), 0);
  EXPECT_EQ(support::events(), (Lines{allocated(16), released}));
  expect_no_buffer();
}

TEST_F(SlowSqlClear, NullRecord) {
  EXPECT_EQ(KZCISlowSQLBufferClear(nullptr), -2);
  EXPECT_EQ(support::events(), Lines());
}

TEST_F(SlowSqlClear, WithoutABufferNothingIsTouched) {
  EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), 0);
  slowsql_.buffer_length = 16;
  slowsql_.buffer_pos = 5;
  EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), 0);
  EXPECT_EQ(slowsql_.buffer_length, 16);
  EXPECT_EQ(slowsql_.buffer_pos, 5);
  EXPECT_EQ(support::events(), Lines());
}

TEST_F(SlowSqlClear, FailingFlushIsReportedAndTheBufferReleased) {
  for (const sb8 length : {sb8{0}, sb8{-1}, smallest}) {
    SCOPED_TRACE(length);
    by_hand("abc\0"s, length, 3);
    EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), -2);
    EXPECT_EQ(support::events(), (Lines{allocated(16), lost_at_clear, released}));
    expect_no_buffer();
    EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql_), 0);
  }
}

/* ---- Against a model ---- */

// What the buffer does, said once more with a string that grows.
class Model {
 public:
  bool has_buffer() const { return length_ > 0; }
  sb8 pos() const { return static_cast<sb8>(text_.size()); }
  const std::string &text() const { return text_; }
  const Lines &log() const { return log_; }

  sword init(sb8 size) {
    text_.clear();
    length_ = size > 0 ? static_cast<std::size_t>(size) : 0;
    if (size <= 0)
      log_.push_back("DEBUG KZCISlowSQLBufferInit: buffer_size=" + std::to_string(size));
    return 0;
  }

  sword flush() {
    if (!has_buffer()) return -2;
    if (!text_.empty()) log_.push_back(batch(text_.substr(0, length_ - 1)));
    text_.clear();
    return 0;
  }

  sword write(const std::string &report) {
    if (!has_buffer()) return -2;
    if (reaches_threshold(report.size())) flush();
    text_ += report;
    if (reaches_threshold(0)) flush();
    return 0;
  }

  sword clear() {
    flush();
    length_ = 0;
    return 0;
  }

 private:
  bool reaches_threshold(std::size_t more) const { return text_.size() + more + 1 >= length_; }

  std::string text_;
  std::size_t length_ = 0;
  Lines log_;
};

// Both at once, and beside them every character that the log must show.
class Pair {
 public:
  explicit Pair(std::mt19937 &random) : random_(random) { std::memset(&real_, 0, sizeof real_); }

  // One operation on both; false when they differ.
  bool step() {
    const std::size_t choice = below(100);
    if (choice < 2) return init(static_cast<sb8>(below(65)));
    if (choice < 4) return clear() && init(static_cast<sb8>(1 + below(64)));
    if (choice < 12) return flush();
    return write(below(static_cast<std::size_t>(2 * real_.buffer_length + 1)));
  }

  bool init(sb8 size) {
    due_.resize(due_.size() - model_.text().size());
    history_ += " init " + std::to_string(size);
    return same(KZCISlowSQLBufferInit(&real_, size), model_.init(size));
  }

  bool write(std::size_t length) {
    const std::string text = report(length, written_);
    written_ += length;
    history_ += " write " + std::to_string(length);
    if (model_.has_buffer()) due_ += text.substr(0, room());
    return same(write_somehow(text), model_.write(text));
  }

  bool clear() {
    history_ += " clear";
    return same(KZCISlowSQLBufferClear(&real_), model_.clear());
  }

  const std::string &history() const { return history_; }
  const Model &model() const { return model_; }

  // The text of all batches is the text of all reports, each cut to the buffer.
  bool nothing_lost_or_doubled() const {
    std::string all;
    for (const std::string &text : support::log_of(LOG_LEVEL_SLOWSQL)) all += text.substr(8);
    return all == due_;
  }

 private:
  std::size_t below(std::size_t bound) { return random_() % bound; }
  std::size_t room() const { return static_cast<std::size_t>(real_.buffer_length - 1); }

  bool flush() {
    history_ += " flush";
    return same(KZCISlowSQLBufferFlush(&real_), model_.flush());
  }

  sword write_somehow(const std::string &text) {
    const std::size_t cut = below(text.size() + 1);
    if (below(2) == 0) return KZCISlowSQLWrite(&real_, "%s", text.c_str());
    return KZCISlowSQLWrite(&real_, "%.*s%s", static_cast<int>(cut), text.c_str(),
                            text.c_str() + cut);
  }

  bool same(sword status, sword expected) const {
    if (status != expected || real_.buffer_pos != model_.pos()) return false;
    if ((real_.buffer != nullptr) != model_.has_buffer()) return false;
    if (real_.buffer == nullptr) return real_.buffer_length == 0;
    std::string whole = model_.text();
    whole.resize(static_cast<std::size_t>(real_.buffer_length), '\0');
    return content(real_) == whole;
  }

  std::mt19937 &random_;
  KZCISLowSQL real_;
  Model model_;
  std::string due_;
  std::string history_;
  std::size_t written_ = 0;
};

void run_random_sequence(unsigned seed, int operations) {
  std::mt19937 random(seed);
  support::reset_platform();
  Pair pair(random);
  ASSERT_TRUE(pair.init(static_cast<sb8>(1 + random() % 64)));
  for (int i = 0; i < operations; ++i) ASSERT_TRUE(pair.step()) << pair.history();
  ASSERT_TRUE(pair.clear()) << pair.history();
  ASSERT_EQ(support::log_records(), pair.model().log()) << pair.history();
  ASSERT_TRUE(pair.nothing_lost_or_doubled()) << pair.history();
  ASSERT_EQ(support::bad_releases(), 0u);
}

TEST(SlowSqlModel, RandomSequences) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    run_random_sequence(seed, 200);
    if (::testing::Test::HasFatalFailure()) break;
  }
  support::reset_platform();
}

// A few sequences that are long enough for every pair of operations.
TEST(SlowSqlModel, LongSequences) {
  for (unsigned seed = 1001; seed <= 1003; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    run_random_sequence(seed, 5000);
    if (::testing::Test::HasFatalFailure()) break;
  }
  support::reset_platform();
}

// Three reports of every length up to twice the size.
void run_three_writes(std::size_t size, std::size_t first, std::size_t second, std::size_t third) {
  std::mt19937 random(1);
  support::reset_platform();
  Pair pair(random);
  const bool same = pair.init(static_cast<sb8>(size)) && pair.write(first) && pair.write(second) &&
                    pair.write(third) && pair.clear();
  ASSERT_TRUE(same) << pair.history();
  ASSERT_EQ(support::log_records(), pair.model().log()) << pair.history();
  ASSERT_TRUE(pair.nothing_lost_or_doubled()) << pair.history();
}

TEST(SlowSqlModel, EveryThreeReportsIntoASmallBuffer) {
  for (std::size_t size = 1; size <= 6; ++size) {
    const std::size_t count = 2 * size + 1;
    for (std::size_t i = 0; i < count * count * count; ++i) {
      run_three_writes(size, i % count, i / count % count, i / count / count);
      if (::testing::Test::HasFatalFailure()) return;
    }
  }
  support::reset_platform();
}

}  // namespace
