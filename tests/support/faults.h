// Samples built one by one, and what is expected of each when memory or input end half-way.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "builder_body.h"
#include "fault_corpus.h"
#include "lookup_fixture.h"
#include "model_reader.h"

namespace faults {

using builder_body::live;
using model::Fault;
using model::Prediction;
using support::build;
using support::fault_corpus;
using support::Lines;
using support::open_files;
using support::operator+;
using support::Outcome;
using support::Sample;
using support::Source;

inline constexpr Outcome found = {0, 1};
inline constexpr Outcome absent = {0, 0};
inline constexpr Outcome malformed = {-1, 0};

inline constexpr std::size_t buffer_size = sizeof(KZCITnsParseParams::tns_buffer);

inline Prediction predict(const Sample &sample, const Fault &fault = {}) {
  if (sample.source == Source::literal_only) return model::predict_literal(sample.text, fault);
  if (sample.source == Source::literal) return model::predict(sample.text, "", fault);
  return model::predict(sample.identifier, sample.text, fault);
}

inline Outcome outcome_of(const Prediction &prediction) {
  return {prediction.status, prediction.find};
}

inline Lines sorted(Lines blocks) {
  std::sort(blocks.begin(), blocks.end());
  return blocks;
}

// The log without the refills, which depend on how much each read gave.
inline Lines log_without_refills() {
  Lines out;
  for (const std::string &line : support::log_without_pointers())
    if (line != "DEBUG read data mode=1") out.push_back(line);
  return out;
}

// A sample for the message of a failing row.
inline std::string shown(const Sample &sample) {
  return sample.name + ": " + sample.text.substr(0, 400);
}

inline Outcome build_sample(KZCITns &tns, const Sample &sample) {
  if (sample.source == Source::file) return build(tns, sample.identifier);
  if (sample.source == Source::literal) return build(tns, sample.text);
  Outcome outcome = {0, 7};
  outcome.status = KZCITnsBuildDes(&tns, reinterpret_cast<const OraText *>(sample.text.c_str()),
                                   static_cast<ub4>(sample.text.size()), &outcome.find);
  return outcome;
}

// An entry that is found after another one.
inline Sample small_sample() {
  return {"small", Source::file, "mydb",
          "other = (x)\n"
          "mydb = (DESCRIPTION = (ADDRESS = (HOST = a))(ADDRESS_LIST = (ADDRESS = (HOST = b))))\n",
          found};
}

// What came of a lookup.
struct Trial {
  Outcome outcome;
  std::string tree;
  Lines log;

  bool operator==(const Trial &other) const = default;
};

class Faults : public support::LookupTest {
 protected:
  void SetUp() override {
    LookupTest::SetUp();
    open_before_ = open_files();
  }

  void TearDown() override {
    LookupTest::TearDown();
    RecordProperty("faults", static_cast<int>(faults_));
  }

  Trial look_up(const Sample &sample, bool keep_log = true) {
    begin();
    support::keep_log(keep_log);
    const Outcome outcome = build(tns_, sample.identifier);
    return {outcome, support::full_tree(tns_), log_without_refills()};
  }

  // Releases the tree; only the lost blocks are still allocated then.
  void expect_left(const Lines &lost) {
    EXPECT_EQ(KZCITnsClear(&tns_), 0);
    EXPECT_EQ(sorted(live()), sorted(lost));
    EXPECT_EQ(support::bad_releases(), 0u);
  }

  void expect(const Outcome &outcome, const Prediction &expected) {
    EXPECT_EQ(outcome, outcome_of(expected));
    EXPECT_EQ(tns_.tns_service_count, expected.find);
    EXPECT_EQ(support::full_tree(tns_), expected.tree);
    EXPECT_EQ(sorted(live()), expected.live);
    EXPECT_EQ(open_files(), open_before_);
    expect_left(expected.lost);
  }

  std::ptrdiff_t open_before_ = 0;
  std::size_t faults_ = 0;
};

}  // namespace faults
