// Names files that cannot be read, come slowly or end early, files that must not
// stay open, and dumps that cannot be written.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdio_ext.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>

#include "kzoci/oci_tnsname.h"
#include "support/faults.h"

namespace {

using namespace faults;
using expected_log::input_end;

// ----------------------------------------------------------------------
// Files that cannot be opened or read
// ----------------------------------------------------------------------

using NamesFile = Faults;

// What a lookup logs that opens its file and finds nothing in it.
Lines nothing_to_read(const std::string &file) {
  return lookup_begins(file) + input_end(TNS_MODE_FILE) +
         Lines{"DEBUG fail to find tns service, dbname:mydb"};
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
  names_file(small_sample().text());
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
  names_file(small_sample().text());
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
  const Trial piped = attempt_piped(sample, sample.text(), 3);
  expect(piped.outcome, predict(sample));
  std::filesystem::remove("names.ora");
  names_file(sample.text());
  EXPECT_TRUE(look_up(sample) == piped);
}

TEST_F(Pipe, ThatIsClosedAtOnceIsAnEmptyFile) {
  EXPECT_EQ(attempt_piped(small_sample(), "", 1).outcome, absent);
  EXPECT_EQ(support::events(), nothing_to_read("names.ora"));
  EXPECT_EQ(open_files(), open_before_);
}

TEST_F(Pipe, ThatIsClosedInTheMiddleIsCutOff) {
  const Sample sample = small_sample();
  for (std::size_t length = 1; length < sample.text().size(); length += 10) {
    SCOPED_TRACE(length);
    expect(attempt_piped(sample, sample.text().substr(0, length), buffer_size).outcome,
           predict(sample, {.input_end = length}));
    ++faults_;
  }
}

// The lookup does not wait for the rest of a file when it has what it wants.
TEST_F(Pipe, IsLeftWhenTheEntryIsFound) {
  Sample sample = small_sample();
  sample.rest = "\nnext = (" + std::string(1000000, 'x') + ")\n";
  expect(attempt_piped(sample, sample.text(), 4096).outcome, predict(sample));
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
      "behind = (DESCRIPTION = (ADDRESS = (HOST = a)))\n");
  const auto nothing = [] {};
  run("mydb", found, nothing);
  run("bad", malformed, nothing);
  run("KZCISYSTEMVARIABLES", found, nothing);
  run("behind", absent, nothing);
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

// ----------------------------------------------------------------------
// Dumps that cannot be written
// ----------------------------------------------------------------------

// Puts another file in the place of standard output; with a descriptor of -1,
// standard output is closed. What could not be written is dropped at the end.
class StandardOutput {
 public:
  explicit StandardOutput(int descriptor) : kept_(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3)) {
    std::fflush(stdout);
    if (descriptor < 0)
      close(STDOUT_FILENO);
    else
      dup2(descriptor, STDOUT_FILENO);
  }
  ~StandardOutput() {
    __fpurge(stdout);
    dup2(kept_, STDOUT_FILENO);
    close(kept_);
    std::clearerr(stdout);
  }
  StandardOutput(const StandardOutput &) = delete;
  StandardOutput &operator=(const StandardOutput &) = delete;

 private:
  int kept_;
};

class Dump : public Faults {
 protected:
  // A tree whose text is longer than any stream's buffer.
  void SetUp() override {
    Faults::SetUp();
    std::string addresses;
    for (int i = 0; i < 3000; ++i) addresses += "(ADDRESS=(HOST=h)(PORT=1))";
    ASSERT_EQ(build(tns_, "(DESCRIPTION=(ADDRESS_LIST=" + addresses + ")(CONNECT_DATA=(SID=s)))"),
              found);
    tree_ = support::full_tree(tns_);
    support::display_text(tns_);  // The buffer of standard output exists from here on.
    records_before_ = support::log_records().size();
  }

  Lines logged() const {
    const Lines all = support::log_records();
    return Lines(all.begin() + static_cast<std::ptrdiff_t>(records_before_), all.end());
  }

  void expect_undisturbed() {
    EXPECT_EQ(support::full_tree(tns_), tree_);
    EXPECT_EQ(open_files(), open_before_);
  }

  struct Written {
    sword status;
    bool failed;
  };

  Written dump_to(int descriptor) {
    const StandardOutput replaced(descriptor);
    const sword status = KZCITnsDisplay(&tns_);
    std::fflush(stdout);
    return {status, std::ferror(stdout) != 0};
  }

  std::string tree_;
  std::size_t records_before_ = 0;
};

TEST_F(Dump, OntoAFullDevice) {
  const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  ASSERT_GE(full, 0);
  const Written written = dump_to(full);
  close(full);
  EXPECT_EQ(written.status, 0);
  EXPECT_TRUE(written.failed);
  EXPECT_EQ(logged(), Lines{"DEBUG tns display in stdout"});
  expect_undisturbed();
}

TEST_F(Dump, OntoAClosedStandardOutput) {
  const Written written = dump_to(-1);
  EXPECT_EQ(written.status, 0);
  EXPECT_TRUE(written.failed);
  EXPECT_EQ(logged(), Lines{"DEBUG tns display in stdout"});
  expect_undisturbed();
}

TEST_F(Dump, OntoAPipeThatNobodyReads) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  close(ends[0]);
  void (*const former)(int) = std::signal(SIGPIPE, SIG_IGN);
  const Written written = dump_to(ends[1]);
  std::signal(SIGPIPE, former);
  close(ends[1]);
  EXPECT_EQ(written.status, 0);
  EXPECT_TRUE(written.failed);
  expect_undisturbed();
}

// The next dump is whole again.
TEST_F(Dump, AfterAFailureIsWhole) {
  const std::string whole = support::display_text(tns_);
  dump_to(-1);
  sword status = 7;
  EXPECT_EQ(support::display_text(tns_, &status), whole);
  EXPECT_EQ(status, 0);
}

// The results of the writes are not looked at, at any level.
TEST_F(Dump, OfSingleRecordsOntoAFullDevice) {
  KZCITnsService *const service = tns_.tns_service;
  KZCIDescription *const des = service->description;
  const std::function<sword(FILE *)> displays[] = {
      [=](FILE *file) { return KZCITnsServiceDisplay(service, file); },
      [=](FILE *file) { return KZCIDescriptionDisplay(des, file); },
      [=](FILE *file) { return KZCIAddressListDisplay(des->address_list, file); },
      [=](FILE *file) { return KZCIAddressDisplay(des->address_list->address, file); },
      [=](FILE *file) { return KZCIConnectDataDisplay(des->connect_data, file); },
      [=](FILE *file) { return KZCISystemVariablesDisplay(&service->sys_vars, file); },
  };
  for (const auto &display : displays) {
    FILE *const full = std::fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    std::setvbuf(full, nullptr, _IONBF, 0);
    EXPECT_EQ(display(full), 0);
    EXPECT_NE(std::ferror(full), 0);
    std::fclose(full);
  }
  EXPECT_EQ(logged(), Lines{});
  expect_undisturbed();
}

// A file that is there is opened for reading: it stays as it was, and nothing
// comes to standard output.
TEST_F(Dump, IntoAFileThatExists) {
  const std::string file = folder_.write("display", "as it was\n");
  environment_.set("KZCI_TNS_DISPLAY", file);
  sword status = 7;
  EXPECT_EQ(support::display_text(tns_, &status), "");
  EXPECT_EQ(status, 0);
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  EXPECT_EQ(text.str(), "as it was\n");
  EXPECT_EQ(logged(), Lines{"DEBUG tns display in file:" + file});
  expect_undisturbed();
}

// Devices and folders can be opened for reading too.
TEST_F(Dump, IntoWhateverCanBeOpenedForReading) {
  for (const std::string name : {"/dev/null", "/dev/full", "."}) {
    SCOPED_TRACE(name);
    environment_.set("KZCI_TNS_DISPLAY", name);
    sword status = 7;
    EXPECT_EQ(support::display_text(tns_, &status), "");
    EXPECT_EQ(status, 0);
    expect_undisturbed();
  }
}

}  // namespace
