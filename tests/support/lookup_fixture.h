// Fixtures of tests that build services: a container on a fresh platform, and a folder of
// the test's own with the names file.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "parsing.h"

namespace support {

inline std::ptrdiff_t open_files() {
#if defined(_WIN32)
  constexpr int most = 2048;
  std::ptrdiff_t count = 0;
  for (int i = 0; i < most; ++i)
    if (_get_osfhandle(i) != -1) ++count;
  return count;
#else
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
#endif
}

class ContainerTest : public testing::Test {
 protected:
  void SetUp() override { begin(); }

  void TearDown() override {
    EXPECT_EQ(bad_releases(), 0u);
    reset_platform();
  }

  void begin() {
    reset_platform();
    KZCITnsInit(&tns_);
  }

  // Releases the tree; only the given blocks are still allocated then.
  void end(const std::vector<Block> &left) {
    EXPECT_EQ(KZCITnsClear(&tns_), 0);
    EXPECT_EQ(live_blocks(), left);
    EXPECT_EQ(bad_releases(), 0u);
    reset_platform();
  }

  // What happened since the given number of events.
  static Lines since(std::size_t count) {
    const Lines all = events();
    return Lines(all.begin() + static_cast<std::ptrdiff_t>(count), all.end());
  }

  KZCITns tns_;
};

// A folder of its own that is the working folder, so that names of files are short and known.
class WorkingFolder : public TemporaryFolder {
 public:
  WorkingFolder() : start_(std::filesystem::current_path()) {
    std::filesystem::current_path(path());
  }
  ~WorkingFolder() { std::filesystem::current_path(start_); }

 private:
  std::filesystem::path start_;
};

class LookupTest : public ContainerTest {
 protected:
  void SetUp() override {
    environment_.set("KZCI_TNS_FILE", "names.ora");
    ContainerTest::SetUp();
  }

  void names_file(std::string_view text) const { folder_.write("names.ora", text); }

  Environment environment_;
  WorkingFolder folder_;
};

}  // namespace support
