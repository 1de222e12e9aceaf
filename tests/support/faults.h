// What the tests of faults share: samples built one by one, and what is expected
// of each when memory or input end half-way.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "allocation_model.h"
#include "expected_log.h"
#include "fault_corpus.h"
#include "parsing.h"

namespace faults {

using expected_log::operator+;
using support::Block;
using support::build;
using support::fault_corpus;
using support::Lines;
using support::Outcome;
using support::predict;
using support::Prediction;
using support::Sample;
using support::Source;

inline constexpr Outcome found = {0, 1};
inline constexpr Outcome absent = {0, 0};
inline constexpr Outcome malformed = {-1, 0};

inline constexpr std::size_t buffer_size = sizeof(KZCITnsParseParams::tns_buffer);

// Blocks in an order of their own, to be compared as multisets.
inline Lines sorted(const std::vector<Block> &blocks, const std::vector<Block> &more = {}) {
  Lines out;
  for (const std::vector<Block> *part : {&blocks, &more})
    for (const Block &block : *part) out.push_back(std::to_string(block.size) + " " + block.tag);
  std::sort(out.begin(), out.end());
  return out;
}

// The log without the refills, which depend on how much each read gave.
inline Lines log_without_refills() {
  Lines out;
  for (const std::string &line : support::log_without_pointers())
    if (line != "DEBUG read data mode=1") out.push_back(line);
  return out;
}

inline std::ptrdiff_t open_files() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}

// A sample for the message of a failing row.
inline std::string shown(const Sample &sample) {
  return sample.name + ": " + sample.text().substr(0, 400);
}

inline Outcome build_sample(KZCITns &tns, const Sample &sample) {
  if (sample.source == Source::file) return build(tns, sample.identifier);
  const std::string text = sample.text();
  if (sample.source == Source::literal) return build(tns, text);
  Outcome outcome = {0, 7};
  outcome.status = KZCITnsBuildDes(&tns, reinterpret_cast<const OraText *>(text.c_str()),
                                   static_cast<ub4>(text.size()), &outcome.find);
  return outcome;
}

// An entry that is found behind another one.
inline Sample small_sample() {
  return {"small",
          Source::file,
          "mydb",
          "other = (x)\n",
          "mydb = (DESCRIPTION = (ADDRESS = (HOST = a))(ADDRESS_LIST = (ADDRESS = (HOST = b))))",
          "\n",
          found};
}

inline Lines lookup_begins(const std::string &file) {
  return {"DEBUG call KZCITnsBuild with params [tns:PTR]", "DEBUG get KZCI_TNS_FILE:" + file,
          "DEBUG get configure file:" + file};
}

// What a lookup logs whose file cannot be opened.
inline Lines cannot_open(const std::string &file) {
  return lookup_begins(file) + Lines{"DEBUG fail to open tns file, tns_name:" + file,
                                     "DEBUG fail to call KZCITnsBuildGetFile, status:-1"};
}

// What came of a lookup.
struct Trial {
  Outcome outcome;
  std::string tree;
  Lines log;

  bool operator==(const Trial &other) const = default;
};

// Works in a folder of its own, so that the name of the file is short and known.
class Faults : public testing::Test {
 protected:
  void SetUp() override {
    start_ = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
    environment_.set("KZCI_TNS_FILE", "names.ora");
    begin();
    open_before_ = open_files();
  }

  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    begin();
    std::filesystem::current_path(start_);
    RecordProperty("faults", static_cast<int>(faults_));
  }

  void begin() {
    support::reset_platform();
    KZCITnsInit(&tns_);
  }

  void names_file(const std::string &text) const { folder_.write("names.ora", text); }

  Trial look_up(const Sample &sample, bool keep_log = true) {
    begin();
    support::keep_log(keep_log);
    const Outcome outcome = build(tns_, sample.identifier);
    return {outcome, support::full_tree(tns_), log_without_refills()};
  }

  // Releases the tree; only the lost blocks are still allocated then.
  void expect_left(const std::vector<Block> &lost) {
    EXPECT_EQ(KZCITnsClear(&tns_), 0);
    EXPECT_EQ(sorted(support::live_blocks()), sorted(lost));
    EXPECT_EQ(support::bad_releases(), 0u);
  }

  void expect(const Outcome &outcome, const Prediction &expected) {
    EXPECT_EQ(outcome, expected.outcome);
    EXPECT_EQ(tns_.tns_service_count, expected.outcome == found ? 1u : 0u);
    EXPECT_EQ(sorted(support::live_blocks()), sorted(expected.kept, expected.lost));
    EXPECT_EQ(open_files(), open_before_);
    expect_left(expected.lost);
  }

  support::Environment environment_;
  support::TemporaryFolder folder_;
  std::filesystem::path start_;
  KZCITns tns_;
  std::ptrdiff_t open_before_ = 0;
  std::size_t faults_ = 0;
};

}  // namespace faults
