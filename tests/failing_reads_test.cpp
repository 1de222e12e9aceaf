// Names files that cannot be opened or read, end early, come slowly or change meanwhile:
// the outcome, the tree, the blocks that stay allocated and the files that stay open.
//
// The linker puts stand-ins before fread and fopen, which fail when a test
// says so.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "support/expected_log.h"
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
using namespace expected_log;

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
  return sample.text.find(std::string(256, 'h')) != std::string::npos;
}

std::vector<Sample> samples_in_files() {
  std::vector<Sample> out;
  for (const Sample &sample : fault_corpus())
    if (sample.source == Source::file) out.push_back(sample);
  return out;
}

// How many bytes each read gives. Single ones would take too long in long files.
std::vector<std::size_t> sizes_of_reads(const Sample &sample) {
  if (sample.text.size() > 1500) return {101, buffer_size};
  return {1, 7, buffer_size};
}

// A failing read is the end of the file: the rest is not looked at, and no more
// reads are tried.
TEST_F(Reads, EachReadFailsInTurn) {
  for (const Sample &sample : samples_in_files())
    for (const std::size_t size : sizes_of_reads(sample)) {
      const std::string text = sample.text;
      names_file(text);
      bool struck = true;
      for (std::size_t n = 1; struck; ++n) {
        SCOPED_TRACE(shown(sample) + "\nread " + std::to_string(n) + " of " + std::to_string(size) +
                     " bytes");
        const Trial trial = attempt(sample, {.largest = size, .failing = n}, false);
        struck = reads_ >= n;
        EXPECT_LE(reads_, n);
        const std::size_t end = std::min((n - 1) * size, text.size());
        expect(trial.outcome, struck ? predict(sample, {.input_end = end}) : predict(sample));
        faults_ += struck;
      }
    }
}

// A failing read and the end of the file are the same to the reader and its log.
TEST_F(Reads, AFailingReadIsTheEndOfTheFile) {
  for (const Sample &sample : samples_in_files()) {
    if (sample.text.size() > 1500 || has_longest_key(sample)) continue;
    const std::size_t size = sample.text.size();
    const std::size_t step = size > 250 ? 5 : 1;
    names_file(sample.text);
    // From the end on, for the file becomes shorter and shorter.
    for (std::size_t steps = size / step + 1; steps-- > 0;) {
      const std::size_t end = steps * step;
      SCOPED_TRACE(shown(sample) + "\n" + std::to_string(end) + " bytes");
      const Trial failed = attempt(sample, {.largest = 1, .failing = end + 1});
      std::filesystem::resize_file("names.ora", end);
      EXPECT_TRUE(attempt(sample) == failed);
      ++faults_;
    }
  }
}

// A read that gives less than was asked for is not the end.
TEST_F(Reads, EachReadIsShortInTurn) {
  for (const Sample &sample : samples_in_files()) {
    if (has_longest_key(sample)) continue;
    names_file(sample.text);
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
  const Sample sample = {"", Source::file, name, name + "=(DESCRIPTION=(KZLB=ON))", found};
  names_file(sample.text);
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
    return {"long", Source::file, "mydb",
            "other = (" + std::string(1200, 'x') + ")\nmydb = (DESCRIPTION = (ADDRESS_LIST =\n" +
                addresses + ")(CONNECT_DATA = (SID = s)))\n",
            found};
  }

  // The change comes before the read of this number.
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
  const std::size_t size = sample.text.size();
  ASSERT_GT(size, 3 * buffer_size);
  for (std::size_t read = 1; read <= size / buffer_size + 2; ++read)
    for (std::size_t length = 0; length <= size; length += 97) {
      SCOPED_TRACE("to " + std::to_string(length) + " bytes before read " + std::to_string(read));
      names_file(sample.text);
      const Trial trial = attempt_changing(
          sample, read, [length] { std::filesystem::resize_file("names.ora", length); });
      const std::size_t end = std::min(std::max(length, (read - 1) * buffer_size), size);
      expect(trial.outcome, predict(sample, {.input_end = end}));
      ++faults_;
    }
}

// Whoever puts another file in its place does not disturb those who read it.
TEST_F(ChangingFile, IsReplaced) {
  const Sample sample = long_sample();
  names_file(sample.text);
  const Trial whole = attempt(sample);
  for (std::size_t read = 1; read <= sample.text.size() / buffer_size + 2; ++read) {
    SCOPED_TRACE(read);
    names_file(sample.text);
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
  for (std::size_t read = 1; read <= sample.text.size() / buffer_size + 2; ++read) {
    SCOPED_TRACE(read);
    names_file(sample.text);
    const Trial trial =
        attempt_changing(sample, read, [] { std::filesystem::remove("names.ora"); });
    expect(trial.outcome, predict(sample));
    ++faults_;
  }
}

// Each read takes what then stands in the file.
TEST_F(ChangingFile, IsWrittenOver) {
  const Sample sample = long_sample();
  const std::string text = sample.text;
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
  const Sample sample = long_sample();
  const std::size_t half = sample.text.find("mydb");
  names_file(sample.text.substr(0, half));
  const Trial trial = attempt_changing(sample, 2, [&] {
    std::ofstream("names.ora", std::ios::binary | std::ios::app) << sample.text.substr(half);
  });
  expect(trial.outcome, predict(sample));
}

// ----------------------------------------------------------------------
// Files that cannot be opened
// ----------------------------------------------------------------------

Lines cannot_open(const std::string &file) { return lookup_begins(file) + not_opened(file); }

using Opening = Reads;

constexpr int open_errors[] = {ENOENT, EACCES,       EMFILE, ENFILE, EISDIR,
                               ELOOP,  ENAMETOOLONG, ENOMEM, EINTR};

// It is tried once, nothing is read, and the service is not there.
TEST_F(Opening, OfTheNamesFileFails) {
  names_file(small_sample().text);
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
    const std::size_t before = support::events().size();
    open_plan = {.error = error};
    sword status = 0;
    EXPECT_EQ(support::display_text(tns_, &status), "");
    EXPECT_EQ(status, -1);
    EXPECT_EQ(open_plan.opened, 1u);
    EXPECT_EQ(since(before),
              (Lines{"DEBUG tns display in file:" + folder_.path() + "/display",
                     "DEBUG fail to open display file, file:" + folder_.path() + "/display"}));
    EXPECT_EQ(open_files(), open_before_);
    ++faults_;
  }
  EXPECT_EQ(support::full_tree(tns_), tree);
}

// ----------------------------------------------------------------------
// Files as the system gives them
// ----------------------------------------------------------------------

using NamesFile = Faults;

// What a lookup logs that opens its file and finds nothing in it.
Lines nothing_to_read(const std::string &file) {
  return lookup_begins(file) + input_end(TNS_MODE_FILE) + not_found("mydb");
}

// A folder can be opened, yet not read.
TEST_F(NamesFile, AFolder) {
  std::filesystem::create_directory("folder");
  environment_.set("KZCI_TNS_FILE", "folder");
  EXPECT_EQ(build(tns_, "mydb"), absent);
  EXPECT_EQ(support::events(), nothing_to_read("folder"));
  EXPECT_EQ(open_files(), open_before_);
}

TEST_F(NamesFile, AnEmptyFile) {
  names_file("");
  EXPECT_EQ(build(tns_, "mydb"), absent);
  EXPECT_EQ(support::events(), nothing_to_read("names.ora"));
  EXPECT_EQ(open_files(), open_before_);
}

// The system's own refusals, without a stand-in.
TEST_F(NamesFile, RefusedByTheSystem) {
  std::filesystem::create_symlink("loop", "loop");
  const std::string names[] = {"missing.ora", "missing/names.ora", "names.ora/names.ora", "loop",
                               std::string(256, 'n')};
  names_file(small_sample().text);
  for (const std::string &name : names) {
    SCOPED_TRACE(name);
    begin();
    environment_.set("KZCI_TNS_FILE", name);
    EXPECT_EQ(build(tns_, "mydb"), absent);
    EXPECT_EQ(support::events(), cannot_open(name));
    EXPECT_EQ(open_files(), open_before_);
  }
}

// ---------------------------------------------------------------- no right to read

constexpr id_t ordinary_user = 65534;

// What a child process that may not do everything reports.
enum Report { as_expected, otherwise, rights_kept };

// Runs in a child process of an ordinary user; the exit status is the report.
Report as_ordinary_user(const std::function<bool()> &holds) {
  const pid_t child = fork();
  if (child == 0) {
    const bool given_up =
        geteuid() != 0 || (setgid(ordinary_user) == 0 && setuid(ordinary_user) == 0);
    _exit(!given_up ? rights_kept : holds() ? as_expected : otherwise);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return otherwise;
  return static_cast<Report>(WEXITSTATUS(status));
}

TEST_F(NamesFile, WithoutTheRightToRead) {
  using std::filesystem::perms;
  names_file(small_sample().text);
  // Names are short here: the way to the folder need not be open to everyone.
  std::filesystem::permissions(".", perms::owner_all | perms::others_read | perms::others_exec |
                                        perms::group_read | perms::group_exec);
  std::filesystem::permissions("names.ora",
                               perms::owner_all | perms::group_read | perms::others_read);
  EXPECT_EQ(as_ordinary_user([this] { return build(tns_, "mydb") == found; }), as_expected);
  std::filesystem::permissions("names.ora", perms::none);
  EXPECT_EQ(as_ordinary_user([this] {
              return build(tns_, "mydb") == absent && tns_.tns_service_count == 0 &&
                     support::events() == cannot_open("names.ora");
            }),
            as_expected);
}

using DisplayFile = Faults;

// The display file is opened for reading, so that it needs the right to read.
TEST_F(DisplayFile, WithoutTheRightToRead) {
  using std::filesystem::perms;
  ASSERT_EQ(build(tns_, "(DESCRIPTION=(ADDRESS=(HOST=a)))"), found);
  folder_.write("display", "as it was\n");
  environment_.set("KZCI_TNS_DISPLAY", "display");
  std::filesystem::permissions(".", perms::owner_all | perms::others_exec | perms::group_exec);
  std::filesystem::permissions("display",
                               perms::owner_read | perms::others_read | perms::group_read);
  EXPECT_EQ(as_ordinary_user([this] { return KZCITnsDisplay(&tns_) == 0; }), as_expected);
  std::filesystem::permissions("display",
                               perms::owner_write | perms::others_write | perms::group_write);
  EXPECT_EQ(as_ordinary_user([this] { return KZCITnsDisplay(&tns_) == -1; }), as_expected);
}

// ---------------------------------------------------------------- a pipe

class Pipe : public Faults {
 protected:
  void SetUp() override {
    Faults::SetUp();
    ASSERT_EQ(mkfifo("names.ora", 0600), 0);
    former_ = std::signal(SIGPIPE, SIG_IGN);
  }

  void TearDown() override {
    std::signal(SIGPIPE, former_);
    Faults::TearDown();
  }

  // Looks up what a writer sends in pieces, and closes.
  Trial attempt_piped(const Sample &sample, const std::string &text, std::size_t piece) {
    std::thread writer([&text, piece] {
      const int pipe = open("names.ora", O_WRONLY | O_CLOEXEC);
      for (std::size_t at = 0; at < text.size(); at += piece) {
        const std::size_t length = std::min(piece, text.size() - at);
        if (write(pipe, text.data() + at, length) < 0) break;
        if (length < buffer_size) std::this_thread::sleep_for(std::chrono::microseconds(200));
      }
      close(pipe);
    });
    const Trial trial = look_up(sample);
    writer.join();
    return trial;
  }

 private:
  void (*former_)(int) = nullptr;
};

TEST_F(Pipe, IsReadAtItsWritersPace) {
  const Sample sample = small_sample();
  const Trial piped = attempt_piped(sample, sample.text, 3);
  expect(piped.outcome, predict(sample));
  std::filesystem::remove("names.ora");
  names_file(sample.text);
  EXPECT_TRUE(look_up(sample) == piped);
}

TEST_F(Pipe, ThatIsClosedAtOnceIsAnEmptyFile) {
  EXPECT_EQ(attempt_piped(small_sample(), "", 1).outcome, absent);
  EXPECT_EQ(support::events(), nothing_to_read("names.ora"));
  EXPECT_EQ(open_files(), open_before_);
}

TEST_F(Pipe, ThatIsClosedInTheMiddleIsCutOff) {
  const Sample sample = small_sample();
  for (std::size_t length = 1; length < sample.text.size(); length += 10) {
    SCOPED_TRACE(length);
    expect(attempt_piped(sample, sample.text.substr(0, length), buffer_size).outcome,
           predict(sample, {.input_end = length}));
    ++faults_;
  }
}

// The lookup does not wait for the rest of a file when it has what it wants.
TEST_F(Pipe, IsLeftWhenTheEntryIsFound) {
  Sample sample = small_sample();
  sample.text += "next = (" + std::string(1000000, 'x') + ")\n";
  expect(attempt_piped(sample, sample.text, 4096).outcome, predict(sample));
}

// ----------------------------------------------------------------------
// Open files
// ----------------------------------------------------------------------

class OpenFiles : public Faults {
 protected:
  static constexpr int times = 10000;

  // Looks a name up again and again; `prepare` comes before each lookup.
  void run(const std::string &name, const Outcome &outcome, const std::function<void()> &prepare) {
    SCOPED_TRACE(name);
    for (int i = 0; i < times; ++i) {
      support::reset_platform();
      support::keep_log(false);
      KZCITnsInit(&tns_);
      prepare();
      ASSERT_EQ(build(tns_, name), outcome);
      ASSERT_EQ(KZCITnsClear(&tns_), 0);
    }
    EXPECT_EQ(open_files(), open_before_);
  }
};

TEST_F(OpenFiles, StayAsTheyWereAfterManyLookups) {
  names_file(
      "mydb = (DESCRIPTION = (ADDRESS = (HOST = a)))\n"
      "bad = (DESCRIPTION = (ADDRESS = (WEIGHT = x)))\n"
      "KZCISYSTEMVARIABLES = (LOG_COUNT = 1)\n"
      "after = (DESCRIPTION = (ADDRESS = (HOST = a)))\n");
  const auto nothing = [] {};
  run("mydb", found, nothing);
  run("bad", malformed, nothing);
  run("KZCISYSTEMVARIABLES", found, nothing);
  run("after", absent, nothing);
  for (const std::size_t n : {std::size_t{1}, std::size_t{4}})
    run("mydb", malformed, [n] { support::fail_allocation(n); });
  names_file("mydb = (DESCRIPTION = (ADDRESS = (HOST = a)))\nother = (x)\n");
  run("none", absent, nothing);
  environment_.set("KZCI_TNS_FILE", "missing.ora");
  run("mydb", absent, nothing);
  environment_.unset("KZCI_TNS_FILE");
  run("mydb", absent, nothing);
}

TEST_F(OpenFiles, StayAsTheyWereAfterManyDumps) {
  ASSERT_EQ(build(tns_, "(DESCRIPTION=(ADDRESS=(HOST=a)))"), found);
  support::keep_log(false);
  environment_.set("KZCI_TNS_DISPLAY", folder_.write("display", "as it was\n"));
  for (int i = 0; i < times; ++i) ASSERT_EQ(KZCITnsDisplay(&tns_), 0);
  EXPECT_EQ(open_files(), open_before_);
  tns_.tns_service->description->address_list_count = 0;
  for (int i = 0; i < times; ++i) ASSERT_EQ(KZCITnsDisplay(&tns_), -1);
  EXPECT_EQ(open_files(), open_before_);
  tns_.tns_service->description->address_list_count = 1;
  environment_.set("KZCI_TNS_DISPLAY", "missing");
  for (int i = 0; i < times; ++i) ASSERT_EQ(KZCITnsDisplay(&tns_), -1);
  EXPECT_EQ(open_files(), open_before_);
}

}  // namespace
