// Memory that ends in the midst of builds: each allocation of each sample fails in
// turn, once and for ever. The outcome, the tree and the blocks that stay.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "support/faults.h"

namespace {

using namespace faults;
using support::Harm;

// What a caller does with a tree that was built; none of it needs memory.
void use_tree(KZCITns &tns) {
  const std::size_t allocations = support::allocation_count();
  const std::string before = support::full_tree(tns);
  support::display_text(tns);
  char text[256], session[257], dblink[256];
  sb4 text_length = 0, mode = 0, session_length = 0, dblink_length = 0;
  KZCITnsServiceExtraInfoGet(tns.tns_service, text, &text_length, &mode, session, &session_length);
  KZCITnsServiceDblinkGet(tns.tns_service, dblink, &dblink_length);
  EXPECT_EQ(support::allocation_count(), allocations);
  EXPECT_EQ(support::full_tree(tns), before);
}

TEST_F(Faults, EverySampleComesToItsOutcome) {
  for (const Sample &sample : fault_corpus()) {
    SCOPED_TRACE(shown(sample));
    begin();
    names_file(sample.text());
    const Prediction expected = predict(sample);
    EXPECT_EQ(expected.outcome, sample.outcome);
    const Outcome outcome = build_sample(tns_, sample);
    EXPECT_EQ(support::allocation_count(), expected.allocations);
    if (outcome == found) use_tree(tns_);
    expect(outcome, expected);
  }
}

// ----------------------------------------------------------------------
// No memory
// ----------------------------------------------------------------------

class NoMemory : public Faults {
 protected:
  // One allocation fails during the build of a sample, into a container that holds
  // a service already.
  void run(const Sample &sample, std::size_t allocation, bool for_ever) {
    begin();
    ASSERT_EQ(build(tns_, "(DESCRIPTION=(ADDRESS=(HOST=earlier)))"), found);
    KZCITnsService *const earlier = tns_.tns_service;
    const std::string earlier_tree = support::full_tree(tns_);
    const std::vector<Block> earlier_blocks = support::live_blocks();
    const Prediction expected = predict(sample, {.allocation = allocation});
    support::fail_allocation(allocation, for_ever);
    EXPECT_EQ(build_sample(tns_, sample), expected.outcome);
    EXPECT_EQ(tns_.tns_service, earlier);
    std::vector<Block> blocks = earlier_blocks;
    blocks.insert(blocks.end(), expected.kept.begin(), expected.kept.end());
    EXPECT_EQ(sorted(support::live_blocks()), sorted(blocks, expected.lost));
    if (!(expected.outcome == found)) {
      EXPECT_EQ(support::full_tree(tns_), earlier_tree);
      EXPECT_EQ(earlier->le.next, &earlier->le);
      EXPECT_EQ(earlier->le.prev, &earlier->le);
    }
    expect_left(expected.lost);
  }
};

// The fault behind the last allocation is the first one that does not come about.
TEST_F(NoMemory, ForEachAllocationOfEachSample) {
  for (const Sample &sample : fault_corpus()) {
    names_file(sample.text());
    const std::size_t allocations = predict(sample).allocations;
    for (const bool for_ever : {false, true})
      for (std::size_t n = 1; n <= allocations + 1; ++n) {
        SCOPED_TRACE(shown(sample) + "\nallocation " + std::to_string(n) +
                     (for_ever ? " and all that follow" : ""));
        run(sample, n, for_ever);
        faults_ += n <= allocations;
      }
  }
}

std::vector<Sample> samples_named(const Lines &names) {
  std::vector<Sample> out;
  for (const std::string &name : names)
    for (const Sample &sample : fault_corpus())
      if (sample.name == name) out.push_back(sample);
  return out;
}

class NoMemoryInSequence : public NoMemory {
 protected:
  // The service that a sample gives when nothing goes wrong, as text.
  std::string service_text(const Sample &sample) {
    begin();
    names_file(sample.text());
    build_sample(tns_, sample);
    const std::string tree = support::full_tree(tns_);
    return tree.substr(tree.find('\n') + 1);
  }

  // Builds all samples into one container while an allocation fails.
  void run_sequence(const std::vector<Sample> &samples, const Lines &services,
                    std::size_t allocation, bool for_ever) {
    begin();
    support::fail_allocation(allocation, for_ever);
    std::vector<Block> kept, lost;
    std::string tree;
    ub4 count = 0;
    std::size_t asked_for = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
      Harm harm;
      if (allocation > asked_for) harm.allocation = allocation - asked_for;
      if (allocation <= asked_for && for_ever) harm.allocation = 1;
      const Prediction expected = predict(samples[i], harm);
      names_file(samples[i].text());
      EXPECT_EQ(build_sample(tns_, samples[i]), expected.outcome) << samples[i].name;
      asked_for += expected.allocations;
      kept.insert(kept.end(), expected.kept.begin(), expected.kept.end());
      lost.insert(lost.end(), expected.lost.begin(), expected.lost.end());
      if (expected.outcome == found) tree += services[i];
      if (expected.outcome == found) ++count;
    }
    EXPECT_EQ(support::allocation_count(), asked_for);
    EXPECT_EQ(support::full_tree(tns_), "services=" + std::to_string(count) + "\n" + tree);
    EXPECT_EQ(sorted(support::live_blocks()), sorted(kept, lost));
    expect_left(lost);
  }
};

// Builds into one container fail and succeed in turn; each failure leaves the
// services that are there alone, and the next build goes its own way.
TEST_F(NoMemoryInSequence, ForEachAllocationOfASequence) {
  const std::vector<Lines> sequences = {
      {"every key", "two descriptions", "weight", "every setting"},
      {"only other entries", "bare address", "second connect data", "list's switch"},
      {"one block, then an item of a second", "prefix in another letter case", "text behind",
       "empty name"},
  };
  for (const Lines &names : sequences) {
    const std::vector<Sample> samples = samples_named(names);
    ASSERT_GE(samples.size(), names.size());
    Lines services;
    std::size_t allocations = 0;
    for (const Sample &sample : samples) {
      services.push_back(service_text(sample));
      allocations += predict(sample).allocations;
    }
    for (const bool for_ever : {false, true})
      for (std::size_t n = 1; n <= allocations + 1; ++n) {
        SCOPED_TRACE(names.front() + " ...: allocation " + std::to_string(n) +
                     (for_ever ? " and all that follow" : ""));
        run_sequence(samples, services, n, for_ever);
        faults_ += n <= allocations;
      }
  }
}

// A slow-SQL buffer that could not be had takes nothing and needs no release.
TEST_F(NoMemory, ForTheSlowSqlBuffer) {
  for (const bool for_ever : {false, true}) {
    begin();
    ++faults_;
    KZCISLowSQL slowsql = {nullptr, 9, 9, 77};
    support::fail_allocation(1, for_ever);
    EXPECT_EQ(KZCISlowSQLBufferInit(&slowsql, 64), -2);
    EXPECT_EQ(KZCISlowSQLWrite(&slowsql, "%s", "report"), -2);
    EXPECT_EQ(KZCISlowSQLBufferFlush(&slowsql), -2);
    EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql), 0);
    EXPECT_EQ(support::events(), Lines{"MALLOC FAILS 64 KZCISlowSQLBufferInit"});
    EXPECT_EQ(slowsql.flush_second, 77u);
    const sword later = for_ever ? -2 : 0;
    EXPECT_EQ(KZCISlowSQLBufferInit(&slowsql, 64), later);
    for (const std::size_t length : {40u, 40u, 100u, 63u, 1u})
      EXPECT_EQ(KZCISlowSQLWrite(&slowsql, "%s", std::string(length, 'r').c_str()), later);
    EXPECT_EQ(support::log_of(LOG_LEVEL_SLOWSQL).size(), for_ever ? 0u : 4u);
    EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql), 0);
    EXPECT_EQ(support::live_blocks(), std::vector<Block>{});
  }
}

}  // namespace
