// Reads and files that fail in the midst of lookups: the outcome, the tree, the
// blocks that stay allocated and the files that stay open.
//
// The linker puts stand-ins in front of fread and fopen, which fail when a test
// says so.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <system_error>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "support/faults.h"

namespace {

// What happens to reads: each gives at most `largest` bytes, one gives a single
// byte, one gives nothing.
struct ReadPlan {
  std::size_t largest = std::string::npos;
  std::size_t shortened = 0;  // Number of the read, from 1 on; 0 for none.
  std::size_t failing = 0;
  std::function<void(std::size_t)> before_read = {};  // Called with the read's number.
  bool unbuffered = false;  // Whether each read meets the file as it then is.
  std::size_t reads = 0;
};

struct OpenPlan {
  int error = 0;  // What opening fails with; 0 for none.
  std::size_t opened = 0;
};

ReadPlan read_plan;
OpenPlan open_plan;

// Reads past the stream's buffer, up to the end of the file.
std::size_t read_directly(void *to, std::size_t count, std::FILE *file) {
  std::size_t total = 0;
  for (ssize_t n = 1; n > 0 && total < count;
       total += static_cast<std::size_t>(std::max<ssize_t>(n, 0)))
    n = read(fileno(file), static_cast<char *>(to) + total, count - total);
  return total;
}

std::FILE *open_as_planned(std::FILE *(*open)(const char *, const char *), const char *name,
                           const char *mode) {
  ++open_plan.opened;
  if (open_plan.error != 0) {
    errno = open_plan.error;
    return nullptr;
  }
  return open(name, mode);
}

}  // namespace

extern "C" {

// The linker takes calls of NAME to __wrap_NAME, and those of __real_NAME to NAME.
std::size_t __real_fread(void *to, std::size_t size, std::size_t count, std::FILE *file);
std::size_t __wrap_fread(void *to, std::size_t size, std::size_t count, std::FILE *file);
std::FILE *__real_fopen(const char *name, const char *mode);
std::FILE *__wrap_fopen(const char *name, const char *mode);
// What fopen is where files of any size must be asked for.
std::FILE *__real_fopen64(const char *name, const char *mode);
std::FILE *__wrap_fopen64(const char *name, const char *mode);

std::size_t __wrap_fread(void *to, std::size_t size, std::size_t count, std::FILE *file) {
  const std::size_t number = ++read_plan.reads;
  if (read_plan.before_read) read_plan.before_read(number);
  if (number == read_plan.failing) return 0;
  const std::size_t most = number == read_plan.shortened ? 1 : read_plan.largest;
  if (read_plan.unbuffered) return read_directly(to, std::min(count, most), file);
  return __real_fread(to, size, std::min(count, most), file);
}

std::FILE *__wrap_fopen(const char *name, const char *mode) {
  return open_as_planned(__real_fopen, name, mode);
}

std::FILE *__wrap_fopen64(const char *name, const char *mode) {
  return open_as_planned(__real_fopen64, name, mode);
}

}  // extern "C"

namespace {

using namespace faults;
using expected_log::key_too_long;

// ----------------------------------------------------------------------
// Reads that fail or give less
// ----------------------------------------------------------------------

class Reads : public Faults {
 protected:
  void TearDown() override {
    read_plan = {};
    open_plan = {};
    Faults::TearDown();
  }

  // Looks a sample up while the plan holds.
  Trial attempt(const Sample &sample, const ReadPlan &plan = {}, bool keep_log = true) {
    read_plan = plan;
    const Trial trial = look_up(sample, keep_log);
    reads_ = read_plan.reads;
    read_plan = {};
    return trial;
  }

  std::size_t reads_ = 0;  // In the last attempt.
};

// Whether a key reaches the length at which it depends on the buffer's end how it
// is read.
bool has_longest_key(const Sample &sample) {
  return sample.text().find(std::string(256, 'h')) != std::string::npos;
}

std::vector<Sample> samples_in_files() {
  std::vector<Sample> out;
  for (const Sample &sample : fault_corpus())
    if (sample.source == Source::file) out.push_back(sample);
  return out;
}

// How many bytes each read gives. Single ones would take too long in long files.
std::vector<std::size_t> sizes_of_reads(const Sample &sample) {
  if (sample.text().size() > 1500) return {101, buffer_size};
  return {1, 7, buffer_size};
}

// A failing read is the end of the file: the rest is not looked at, and no more
// reads are tried.
TEST_F(Reads, EachReadFailsInTurn) {
  for (const Sample &sample : samples_in_files())
    for (const std::size_t size : sizes_of_reads(sample)) {
      const std::string text = sample.text();
      names_file(text);
      bool struck = true;
      for (std::size_t n = 1; struck; ++n) {
        SCOPED_TRACE(shown(sample) + "\nread " + std::to_string(n) + " of " + std::to_string(size) +
                     " bytes");
        const Trial trial = attempt(sample, {.largest = size, .failing = n}, false);
        struck = reads_ >= n;
        EXPECT_LE(reads_, n);
        const std::size_t input_end = std::min((n - 1) * size, text.size());
        expect(trial.outcome, struck ? predict(sample, {.input_end = input_end}) : predict(sample));
        faults_ += struck;
      }
    }
}

// A failing read and the end of the file are the same to the reader and its log.
TEST_F(Reads, AFailingReadIsTheEndOfTheFile) {
  for (const Sample &sample : samples_in_files()) {
    if (sample.text().size() > 1500 || has_longest_key(sample)) continue;
    const std::size_t size = sample.text().size();
    const std::size_t step = size > 250 ? 5 : 1;
    names_file(sample.text());
    // From the end on, for the file becomes shorter and shorter.
    for (std::size_t steps = size / step + 1; steps-- > 0;) {
      const std::size_t input_end = steps * step;
      SCOPED_TRACE(shown(sample) + "\n" + std::to_string(input_end) + " bytes");
      const Trial failed = attempt(sample, {.largest = 1, .failing = input_end + 1});
      std::filesystem::resize_file("names.ora", input_end);
      EXPECT_TRUE(attempt(sample) == failed);
      ++faults_;
    }
  }
}

// A read that gives less than was asked for is not the end.
TEST_F(Reads, EachReadIsShortInTurn) {
  for (const Sample &sample : samples_in_files()) {
    if (has_longest_key(sample)) continue;
    names_file(sample.text());
    const Trial whole = attempt(sample);
    for (const std::size_t size : {std::size_t{13}, buffer_size}) {
      bool struck = true;
      for (std::size_t n = 1; struck; ++n) {
        SCOPED_TRACE(shown(sample) + "\nread " + std::to_string(n) + " of " + std::to_string(size) +
                     " bytes");
        const Trial trial = attempt(sample, {.largest = size, .shortened = n});
        struck = reads_ >= n;
        EXPECT_TRUE(trial == whole);
        expect(trial.outcome, predict(sample));
        faults_ += struck;
      }
    }
  }
}

// A key of 256 characters is refused when it would need another read to see
// whether it goes on, and cut when more is at hand.
TEST_F(Reads, AKeyAtItsLimitDependsOnTheReads) {
  const std::string name(256, 'n');
  const Sample sample = {"", Source::file, name, "", name + "=(DESCRIPTION=(KZLB=ON))", "", found};
  names_file(sample.text());
  EXPECT_EQ(attempt(sample).outcome, found);
  EXPECT_EQ(attempt(sample, {.largest = 257}).outcome, found);
  const Trial refused = attempt(sample, {.largest = 256});
  EXPECT_EQ(refused.outcome, malformed);
  EXPECT_EQ(support::warnings_and_errors(), key_too_long());
}

// ----------------------------------------------------------------------
// Files that change while they are read
// ----------------------------------------------------------------------

class ChangingFile : public Reads {
 protected:
  // A sample of several buffers; the entry begins inside the second.
  static Sample long_sample() {
    std::string addresses;
    for (int i = 0; i < 60; ++i)
      addresses += "(ADDRESS=(HOST=host" + std::to_string(i) + ")(PORT=1))\n";
    return {"long",
            Source::file,
            "mydb",
            "other = (" + std::string(1200, 'x') + ")\n",
            "mydb = (DESCRIPTION = (ADDRESS_LIST =\n" + addresses + ")(CONNECT_DATA = (SID = s)))",
            "\n",
            found};
  }

  // The change comes in front of the read of this number.
  Trial attempt_changing(const Sample &sample, std::size_t read,
                         const std::function<void()> &change) {
    ReadPlan plan;
    plan.unbuffered = true;
    plan.before_read = [read, change](std::size_t number) {
      if (number == read) change();
    };
    const Trial trial = attempt(sample, plan);
    EXPECT_GE(reads_, read);
    return trial;
  }
};

TEST_F(ChangingFile, IsTruncated) {
  const Sample sample = long_sample();
  const std::size_t size = sample.text().size();
  ASSERT_GT(size, 3 * buffer_size);
  for (std::size_t read = 1; read <= size / buffer_size + 2; ++read)
    for (std::size_t length = 0; length <= size; length += 97) {
      SCOPED_TRACE("to " + std::to_string(length) + " bytes before read " + std::to_string(read));
      names_file(sample.text());
      const Trial trial = attempt_changing(
          sample, read, [length] { std::filesystem::resize_file("names.ora", length); });
      const std::size_t input_end = std::min(std::max(length, (read - 1) * buffer_size), size);
      expect(trial.outcome, predict(sample, {.input_end = input_end}));
      ++faults_;
    }
}

// Whoever puts another file in its place does not disturb those who read it.
TEST_F(ChangingFile, IsReplaced) {
  const Sample sample = long_sample();
  names_file(sample.text());
  const Trial whole = attempt(sample);
  for (std::size_t read = 1; read <= sample.text().size() / buffer_size + 2; ++read) {
    SCOPED_TRACE(read);
    names_file(sample.text());
    folder_.write("new.ora", "mydb = (x)\n");
    const Trial trial =
        attempt_changing(sample, read, [] { std::filesystem::rename("new.ora", "names.ora"); });
    EXPECT_TRUE(trial == whole);
    expect(trial.outcome, predict(sample));
    ++faults_;
  }
}

TEST_F(ChangingFile, IsRemoved) {
  const Sample sample = long_sample();
  for (std::size_t read = 1; read <= sample.text().size() / buffer_size + 2; ++read) {
    SCOPED_TRACE(read);
    names_file(sample.text());
    const Trial trial =
        attempt_changing(sample, read, [] { std::filesystem::remove("names.ora"); });
    expect(trial.outcome, predict(sample));
    ++faults_;
  }
}

// Each read takes what then stands in the file.
TEST_F(ChangingFile, IsWrittenOver) {
  const Sample sample = long_sample();
  const std::string text = sample.text();
  const std::string other(text.size(), 'o');
  for (std::size_t read = 1; read <= text.size() / buffer_size + 1; ++read) {
    SCOPED_TRACE(read);
    names_file(text);
    const Trial changed = attempt_changing(sample, read, [&] { names_file(other); });
    const std::size_t kept = (read - 1) * buffer_size;
    names_file(text.substr(0, kept) + other.substr(kept));
    EXPECT_TRUE(attempt(sample) == changed);
    EXPECT_FALSE(changed.outcome == found);
    ++faults_;
  }
}

TEST_F(ChangingFile, GrowsBeforeItsEndIsMet) {
  Sample sample = long_sample();
  names_file(sample.before);
  const Trial trial = attempt_changing(sample, 2, [&] {
    std::ofstream("names.ora", std::ios::binary | std::ios::app) << sample.entry;
  });
  sample.rest.clear();
  expect(trial.outcome, predict(sample));
}

// ----------------------------------------------------------------------
// Files that cannot be opened
// ----------------------------------------------------------------------

using Opening = Reads;

constexpr int open_errors[] = {ENOENT, EACCES,       EMFILE, ENFILE, EISDIR,
                               ELOOP,  ENAMETOOLONG, ENOMEM, EINTR};

// It is tried once, nothing is read, and the service is not there.
TEST_F(Opening, OfTheNamesFileFails) {
  names_file(small_sample().text());
  for (const int error : open_errors) {
    SCOPED_TRACE(std::generic_category().message(error));
    begin();
    read_plan = {};
    open_plan = {.error = error};
    EXPECT_EQ(build(tns_, "mydb"), absent);
    EXPECT_EQ(support::events(), cannot_open("names.ora"));
    EXPECT_EQ(open_plan.opened, 1u);
    EXPECT_EQ(read_plan.reads, 0u);
    EXPECT_EQ(tns_.tns_service_count, 0u);
    EXPECT_EQ(open_files(), open_before_);
    ++faults_;
  }
  open_plan = {};
  EXPECT_EQ(build(tns_, "mydb"), found);
}

TEST_F(Opening, OfTheDisplayFileFails) {
  ASSERT_EQ(build(tns_, "(DESCRIPTION=(ADDRESS=(HOST=a)))"), found);
  const std::string tree = support::full_tree(tns_);
  environment_.set("KZCI_TNS_DISPLAY", folder_.write("display", "as it was\n"));
  for (const int error : open_errors) {
    SCOPED_TRACE(std::generic_category().message(error));
    const std::size_t records_before = support::log_records().size();
    open_plan = {.error = error};
    sword status = 0;
    EXPECT_EQ(support::display_text(tns_, &status), "");
    EXPECT_EQ(status, -1);
    EXPECT_EQ(open_plan.opened, 1u);
    const Lines log = support::log_records();
    EXPECT_EQ(Lines(log.begin() + static_cast<std::ptrdiff_t>(records_before), log.end()),
              (Lines{"DEBUG tns display in file:" + folder_.path() + "/display",
                     "DEBUG fail to open display file, file:" + folder_.path() + "/display"}));
    EXPECT_EQ(open_files(), open_before_);
    ++faults_;
  }
  EXPECT_EQ(support::full_tree(tns_), tree);
}

}  // namespace
