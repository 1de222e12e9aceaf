// Replacing a file: every call that may fail does, and the file stays as it was.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "io/replace_file.h"

namespace {

namespace fs = std::filesystem;

// Which call of a function fails: after so many that do not.
std::string_view failing;
int calls_before = 0;
int error = 0;
bool has_failed = false;

// How many bytes a write takes at most; 0 for all.
std::size_t most_written = 0;

// Whether files that are open seem to be somebody else's, and whose they were made last.
bool seem_foreign = false;
uid_t new_owner = 0;
gid_t new_group = 0;

bool fails(std::string_view function) {
  if (function != failing || calls_before-- > 0) return false;
  failing = {};
  has_failed = true;
  errno = error;
  return true;
}

}  // namespace

extern "C" {
int __real_open(const char *path, int flags, ...);
ssize_t __real_write(int file, const void *bytes, size_t count);
int __real_fchmod(int file, mode_t mode);
int __real_fchown(int file, uid_t user, gid_t group);
int __real_fstat(int file, struct stat *status);
int __real_fsync(int file);
int __real_rename(const char *from, const char *to);
int __real_link(const char *from, const char *to);

int __wrap_open(const char *path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return fails("open") ? -1 : __real_open(path, flags, mode);
}

int __wrap_open64(const char *path, int flags, ...) {
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return fails("open") ? -1 : __real_open(path, flags | O_LARGEFILE, mode);
}

ssize_t __wrap_write(int file, const void *bytes, size_t count) {
  if (fails("write")) return -1;
  if (most_written > 0) count = std::min(count, most_written);
  return __real_write(file, bytes, count);
}

int __wrap_fchmod(int file, mode_t mode) {
  return fails("fchmod") ? -1 : __real_fchmod(file, mode);
}

int __wrap_fchown(int file, uid_t user, gid_t group) {
  new_owner = user;
  new_group = group;
  return fails("fchown") ? -1 : __real_fchown(file, user, group);
}

int __wrap_fstat(int file, struct stat *status) {
  const int result = __real_fstat(file, status);
  if (seem_foreign) ++status->st_uid;
  return result;
}

int __wrap_fsync(int file) { return fails("fsync") ? -1 : __real_fsync(file); }

int __wrap_rename(const char *from, const char *to) {
  return fails("rename") ? -1 : __real_rename(from, to);
}

int __wrap_link(const char *from, const char *to) {
  return fails("link") ? -1 : __real_link(from, to);
}
}

namespace {

using kztns::Backup;

class ReplaceFile : public testing::Test {
 protected:
  void SetUp() override {
    char name[] = "/tmp/replace_file_XXXXXX";
    ASSERT_NE(mkdtemp(name), nullptr);
    folder_ = name;
    write("names.ora", "old");
  }

  void TearDown() override {
    failing = {};
    most_written = 0;
    fs::remove_all(folder_);
  }

  std::string path(const std::string &name) const { return folder_ / name; }

  void write(const std::string &name, std::string_view text) const {
    std::ofstream(path(name), std::ios::binary) << text;
  }

  std::string content(const std::string &name) const {
    std::ifstream in(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  std::set<std::string> names() const {
    std::set<std::string> all;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder_))
      all.insert(entry.path().filename());
    return all;
  }

  struct stat status(const std::string &name) const {
    struct stat status = {};
    EXPECT_EQ(stat(path(name).c_str(), &status), 0);
    return status;
  }

  fs::path folder_;
};

using Names = std::set<std::string>;

}  // namespace

TEST_F(ReplaceFile, KeepsTheOldContentAsItsBackup) {
  EXPECT_EQ(kztns::replace_file(path("names.ora"), "new", Backup::tilde), std::nullopt);
  EXPECT_EQ(content("names.ora"), "new");
  EXPECT_EQ(content("names.ora~"), "old");
  EXPECT_EQ(names(), (Names{"names.ora", "names.ora~"}));
}

TEST_F(ReplaceFile, ReplacesAnOlderBackup) {
  write("names.ora~", "older");
  EXPECT_EQ(kztns::replace_file(path("names.ora"), "new", Backup::tilde), std::nullopt);
  EXPECT_EQ(content("names.ora~"), "old");
}

TEST_F(ReplaceFile, MakesNoBackupWhenNoneIsWanted) {
  EXPECT_EQ(kztns::replace_file(path("names.ora"), "new", Backup::none), std::nullopt);
  EXPECT_EQ(content("names.ora"), "new");
  EXPECT_EQ(names(), Names{"names.ora"});
}

TEST_F(ReplaceFile, KeepsTheMode) {
  for (const mode_t mode : {0640, 0604, 0600, 0755}) {
    ASSERT_EQ(chmod(path("names.ora").c_str(), mode), 0);
    EXPECT_EQ(kztns::replace_file(path("names.ora"), "new", Backup::tilde), std::nullopt);
    EXPECT_EQ(status("names.ora").st_mode & 07777, mode);
  }
}

// Only root gives files to others.
TEST_F(ReplaceFile, KeepsTheOwner) {
  const bool given = chown(path("names.ora").c_str(), 1234, 1235) == 0;
  const struct stat before = status("names.ora");
  seem_foreign = !given;
  EXPECT_EQ(kztns::replace_file(path("names.ora"), "new", Backup::tilde), std::nullopt);
  seem_foreign = false;
  EXPECT_EQ(new_owner, before.st_uid);
  EXPECT_EQ(new_group, before.st_gid);
  EXPECT_EQ(status("names.ora").st_uid, before.st_uid);
  EXPECT_EQ(status("names.ora").st_gid, before.st_gid);
}

TEST_F(ReplaceFile, ReplacesWhatASymbolicLinkLeadsTo) {
  fs::create_symlink("names.ora", folder_ / "link");
  EXPECT_EQ(kztns::replace_file(path("link"), "new", Backup::tilde), std::nullopt);
  EXPECT_TRUE(fs::is_symlink(folder_ / "link"));
  EXPECT_EQ(content("names.ora"), "new");
  EXPECT_EQ(names(), (Names{"link", "names.ora", "names.ora~"}));
}

TEST_F(ReplaceFile, MakesTheFileToWhichALinkLeadsInVain) {
  fs::create_directory(folder_ / "other");
  fs::create_symlink("other/second", folder_ / "link");
  fs::create_symlink("new.ora", folder_ / "other/second");
  EXPECT_EQ(kztns::replace_file(path("link"), "new", Backup::none), std::nullopt);
  EXPECT_TRUE(fs::is_symlink(folder_ / "link"));
  EXPECT_TRUE(fs::is_symlink(folder_ / "other/second"));
  EXPECT_EQ(content("other/new.ora"), "new");
}

TEST_F(ReplaceFile, LeavesALoopOfLinks) {
  fs::create_symlink("b", folder_ / "a");
  fs::create_symlink("a", folder_ / "b");
  EXPECT_NE(kztns::replace_file(path("a"), "new", Backup::none), std::nullopt);
  EXPECT_EQ(names(), (Names{"a", "b", "names.ora"}));
}

// Some file systems have no second names for a file.
TEST_F(ReplaceFile, CopiesItsBackupWhereItCannotBeLinked) {
  ASSERT_EQ(chmod(path("names.ora").c_str(), 0604), 0);
  for (const int error_of_link : {EPERM, EOPNOTSUPP, ENOSYS, EMLINK}) {
    write("names.ora", "old");
    write("names.ora~", "older");
    failing = "link";
    calls_before = 0;
    error = error_of_link;
    EXPECT_EQ(kztns::replace_file(path("names.ora"), "new", Backup::tilde), std::nullopt);
    EXPECT_EQ(content("names.ora"), "new");
    EXPECT_EQ(content("names.ora~"), "old");
    EXPECT_EQ(status("names.ora~").st_mode & 07777, 0604u);
    EXPECT_EQ(names(), (Names{"names.ora", "names.ora~"}));
  }
}

TEST_F(ReplaceFile, MakesAFileThatIsNotThere) {
  EXPECT_EQ(kztns::replace_file(path("other"), "new", Backup::none), std::nullopt);
  EXPECT_EQ(content("other"), "new");
  EXPECT_EQ(names(), (Names{"names.ora", "other"}));
}

TEST_F(ReplaceFile, WritesIntoWhatIsNoRegularFile) {
  EXPECT_EQ(kztns::replace_file("/dev/null", "new", Backup::none), std::nullopt);
  EXPECT_EQ(kztns::replace_file("/dev/full", "new", Backup::none),
            "cannot be written: No space left on device");
  EXPECT_EQ(kztns::replace_file(folder_, "new", Backup::none), "cannot be written: Is a directory");
}

TEST_F(ReplaceFile, NeedsItsFolder) {
  EXPECT_EQ(kztns::replace_file(path("nowhere/names.ora"), "new", Backup::none),
            "its folder is not there: No such file or directory");
}

TEST_F(ReplaceFile, PassesOverNamesThatAreTaken) {
  const std::string taken = ".kztns-" + std::to_string(getpid()) + "-0";
  write(taken, "taken");
  EXPECT_EQ(kztns::replace_file(path("names.ora"), "new", Backup::none), std::nullopt);
  EXPECT_EQ(content("names.ora"), "new");
  EXPECT_EQ(content(taken), "taken");
}

TEST_F(ReplaceFile, WritesOnAfterShortWritesAndInterrupts) {
  most_written = 1;
  failing = "write";
  calls_before = 1;
  error = EINTR;
  EXPECT_EQ(kztns::replace_file(path("names.ora"), "newer", Backup::none), std::nullopt);
  EXPECT_TRUE(failing.empty());
  EXPECT_EQ(content("names.ora"), "newer");
}

TEST_F(ReplaceFile, TellsAFullDevice) {
  most_written = 1;
  failing = "write";
  calls_before = 2;
  error = ENOSPC;
  EXPECT_EQ(kztns::replace_file(path("names.ora"), "newer", Backup::tilde),
            "cannot be written: No space left on device");
  EXPECT_EQ(content("names.ora"), "old");
  EXPECT_EQ(names(), Names{"names.ora"});
}

// Each call in turn, until one more is not made.
class FailingReplaceFile : public ReplaceFile, public testing::WithParamInterface<const char *> {};

TEST_P(FailingReplaceFile, LeavesTheFileAndItsBackupAsTheyWere) {
  // Taken over by root only.
  const bool other_owner = chown(path("names.ora").c_str(), 1234, 1235) == 0;
  ASSERT_EQ(chmod(path("names.ora").c_str(), 0640), 0);
  write("names.ora~", "older");
  for (int calls = 0;; ++calls) {
    SCOPED_TRACE(calls);
    failing = GetParam();
    calls_before = calls;
    error = EACCES;
    has_failed = false;
    const auto fault = kztns::replace_file(path("names.ora"), "new", Backup::tilde);
    failing = {};
    if (!has_failed) {
      EXPECT_EQ(fault, std::nullopt);
      EXPECT_TRUE(calls > 0 || !other_owner);
      break;
    }
    EXPECT_NE(fault, std::nullopt);
    EXPECT_EQ(content("names.ora"), "old");
    EXPECT_EQ(content("names.ora~"), "older");
    EXPECT_EQ(status("names.ora").st_mode & 07777, 0640u);
    EXPECT_EQ(names(), (Names{"names.ora", "names.ora~"}));
  }
  EXPECT_EQ(content("names.ora"), "new");
}

INSTANTIATE_TEST_SUITE_P(Calls, FailingReplaceFile,
                         testing::Values("open", "write", "fchmod", "fchown", "fsync", "rename",
                                         "link"));
