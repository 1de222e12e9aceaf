// What the tests of everything that can fail share: a folder of their own with the names
// file, so that its name is short and known, and a container on a fresh platform.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

#include "expected_log.h"
#include "kzoci/oci_tnsname.h"
#include "parsing.h"

namespace faults {

using support::operator+;
using support::Lines;

inline std::ptrdiff_t open_files() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}

inline Lines release(const std::string &tag) { return {"FREE " + tag}; }

inline Lines lookup_begins(const std::string &file = "names.ora") {
  return {"DEBUG call KZCITnsBuild with params [tns:PTR]", "DEBUG get KZCI_TNS_FILE:" + file,
          "DEBUG get configure file:" + file};
}

class FaultFolder : public testing::Test {
 protected:
  void SetUp() override {
    start_ = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
    environment_.set("KZCI_TNS_FILE", "names.ora");
    begin();
  }

  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    begin();
    std::filesystem::current_path(start_);
  }

  void begin() {
    support::reset_platform();
    KZCITnsInit(&tns_);
  }

  void names_file(const std::string &text) const { folder_.write("names.ora", text); }

  // What happened since the given number of events.
  static Lines since(std::size_t count) {
    const Lines all = support::events();
    return Lines(all.begin() + static_cast<std::ptrdiff_t>(count), all.end());
  }

  support::Environment environment_;
  support::TemporaryFolder folder_;
  std::filesystem::path start_;
  KZCITns tns_;
};

}  // namespace faults
