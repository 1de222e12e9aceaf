// Where the dump of a tree goes: standard output, also one that takes nothing, or a file,
// which is opened for reading and stays as it was.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <stdio_ext.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include "kzoci/oci_tnsname.h"
#include "support/lookup_fixture.h"
#include "support/parsing.h"

namespace {

using support::operator+;
using support::Lines;
using support::open_files;

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

class Dump : public support::LookupTest {
 protected:
  // A tree whose text is longer than any stream's buffer.
  void SetUp() override {
    LookupTest::SetUp();
    std::string addresses;
    for (int i = 0; i < 3000; ++i) addresses += "(ADDRESS=(HOST=h)(PORT=1))";
    ASSERT_EQ(support::build(
                  tns_, "(DESCRIPTION=(ADDRESS_LIST=" + addresses + ")(CONNECT_DATA=(SID=s)))"),
              (support::Outcome{0, 1}));
    support::display_text(tns_);  // The buffer of standard output exists from here on.
    note_what_stays();
  }

  void note_what_stays() {
    tree_ = support::full_tree(tns_);
    open_before_ = open_files();
    events_before_ = support::events().size();
  }

  // Records and allocations since then.
  Lines happened() const { return since(events_before_); }

  void expect_undisturbed() {
    EXPECT_EQ(support::full_tree(tns_), tree_);
    EXPECT_EQ(open_files(), open_before_);
  }

  // A dump into a file, of which nothing may come to standard output.
  void dump_into(const std::string &file, sword status, const Lines &log) {
    SCOPED_TRACE(file);
    environment_.set("KZCI_TNS_DISPLAY", file);
    note_what_stays();
    sword met = 7;
    EXPECT_EQ(support::display_text(tns_, &met), "");
    EXPECT_EQ(met, status);
    EXPECT_EQ(happened(), Lines{"DEBUG tns display in file:" + file} + log);
    expect_undisturbed();
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
  std::ptrdiff_t open_before_ = 0;
  std::size_t events_before_ = 0;
};

TEST_F(Dump, OntoAFullDevice) {
  const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  ASSERT_GE(full, 0);
  const Written written = dump_to(full);
  close(full);
  EXPECT_EQ(written.status, 0);
  EXPECT_TRUE(written.failed);
  EXPECT_EQ(happened(), Lines{"DEBUG tns display in stdout"});
  expect_undisturbed();
}

TEST_F(Dump, OntoAClosedStandardOutput) {
  const Written written = dump_to(-1);
  EXPECT_EQ(written.status, 0);
  EXPECT_TRUE(written.failed);
  EXPECT_EQ(happened(), Lines{"DEBUG tns display in stdout"});
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
  EXPECT_EQ(happened(), Lines{});
  expect_undisturbed();
}

TEST_F(Dump, LeavesStandardOutputOpen) {
  const std::string once = support::display_text(tns_);
  EXPECT_NE(once, "");
  EXPECT_EQ(support::display_text(tns_), once);
}

// A file that is there is opened for reading: it stays as it was.
TEST_F(Dump, IntoAFileThatExists) {
  const std::string file = folder_.write("display", "as it was\n");
  dump_into(file, 0, {});
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  EXPECT_EQ(text.str(), "as it was\n");
}

// Devices and folders can be opened for reading too.
TEST_F(Dump, IntoWhateverCanBeOpenedForReading) {
  for (const std::string &name :
       {std::string("/dev/null"), std::string("/dev/full"), std::string("."), folder_.path()})
    dump_into(name, 0, {});
}

TEST_F(Dump, IntoAMissingFileFailsAndDoesNotMakeIt) {
  for (const std::string &file : {folder_.path() + "/missing.txt", std::string()}) {
    dump_into(file, -1, {"DEBUG fail to open display file, file:" + file});
    EXPECT_FALSE(std::filesystem::exists(file));
  }
}

TEST_F(Dump, ClosesTheFileAfterAFailure) {
  KZCIDescription &des = *tns_.tns_service->description;
  const ub4 lists = des.address_list_count;
  des.address_list_count = 0;
  dump_into(folder_.write("display", ""), -1,
            {"ERROR error des", "ERROR fail to call KZCIDescriptionDisplay, status:-1",
             "ERROR fail to call KZCITnsServiceDisplay, status:-1"});
  des.address_list_count = lists;
}

}  // namespace
