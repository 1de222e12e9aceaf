// Memory that ends in the midst of builds: each allocation fails in turn, once and for
// ever. Two entries and a descriptor with every record of the log, every allocation and
// release; every sample with its outcome, its tree and the blocks that stay.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "support/builder_body.h"
#include "support/expected_log.h"
#include "support/faults.h"

namespace {

using namespace expected_log;
using namespace faults;
using builder_body::address_block;
using builder_body::allocated;
using builder_body::data_block;
using builder_body::description_block;
using builder_body::list_block;
using builder_body::refused;
using builder_body::release;
using builder_body::service_block;

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
    names_file(sample.text);
    const Prediction expected = predict(sample);
    EXPECT_EQ(outcome_of(expected), sample.outcome);
    const Outcome outcome = build_sample(tns_, sample);
    EXPECT_EQ(support::allocation_count(), expected.allocations);
    if (outcome == found) use_tree(tns_);
    expect(outcome, expected);
  }
}

// ----------------------------------------------------------------------
// Each allocation of each sample
// ----------------------------------------------------------------------

// Builds into a container that holds a service already, so that a change would show.
class NoMemory : public Faults {
 protected:
  void begin_with_earlier() {
    begin();
    ASSERT_EQ(build(tns_, "(DESCRIPTION=(ADDRESS=(HOST=earlier)))"), found);
    earlier_ = tns_.tns_service;
    earlier_tree_ = support::full_tree(tns_);
    earlier_blocks_ = live();
    earlier_events_ = support::events().size();
  }

  void expect_unchanged() {
    EXPECT_EQ(tns_.tns_service, earlier_);
    EXPECT_EQ(earlier_->le.next, &earlier_->le);
    EXPECT_EQ(earlier_->le.prev, &earlier_->le);
    EXPECT_EQ(support::full_tree(tns_), earlier_tree_);
  }

  // One allocation fails during the build of a sample.
  void run(const Sample &sample, std::size_t allocation, bool for_ever) {
    begin_with_earlier();
    const Prediction expected = predict(sample, {.allocation = allocation});
    support::fail_allocation(allocation, for_ever);
    EXPECT_EQ(build_sample(tns_, sample), outcome_of(expected));
    EXPECT_EQ(tns_.tns_service, earlier_);
    EXPECT_EQ(sorted(live()), sorted(earlier_blocks_ + expected.live));
    if (expected.find == 0) expect_unchanged();
    expect_left(expected.lost);
  }

  KZCITnsService *earlier_ = nullptr;
  std::string earlier_tree_;
  Lines earlier_blocks_;
  std::size_t earlier_events_ = 0;
};

// The fault after the last allocation is the first one that does not come about.
TEST_F(NoMemory, ForEachAllocationOfEachSample) {
  for (const Sample &sample : fault_corpus()) {
    names_file(sample.text);
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
    names_file(sample.text);
    build_sample(tns_, sample);
    const std::string tree = support::full_tree(tns_);
    return tree.substr(tree.find('\n') + 1);
  }

  // Builds all samples into one container while an allocation fails.
  void run_sequence(const std::vector<Sample> &samples, const Lines &services,
                    std::size_t allocation, bool for_ever) {
    begin();
    support::fail_allocation(allocation, for_ever);
    Lines blocks, lost;
    std::string tree;
    ub4 count = 0;
    std::size_t asked_for = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
      Fault fault;
      if (allocation > asked_for) fault.allocation = allocation - asked_for;
      if (allocation <= asked_for && for_ever) fault.allocation = 1;
      const Prediction expected = predict(samples[i], fault);
      names_file(samples[i].text);
      EXPECT_EQ(build_sample(tns_, samples[i]), outcome_of(expected)) << samples[i].name;
      asked_for += expected.allocations;
      blocks = blocks + expected.live;
      lost = lost + expected.lost;
      if (expected.find == 1) tree += services[i];
      count += expected.find != 0 ? 1 : 0;
    }
    EXPECT_EQ(support::allocation_count(), asked_for);
    EXPECT_EQ(support::full_tree(tns_), "services=" + std::to_string(count) + "\n" + tree);
    EXPECT_EQ(sorted(live()), sorted(blocks));
    expect_left(lost);
  }
};

// Builds into one container fail and succeed in turn; each failure leaves the
// services that are there alone, and the next build goes its own way.
TEST_F(NoMemoryInSequence, ForEachAllocationOfASequence) {
  const std::vector<Lines> sequences = {
      {"every key", "two descriptions", "weight", "every setting"},
      {"only other entries", "bare address", "second connect data", "list's switch"},
      {"one block, then an item of a second", "prefix in another letter case", "text after",
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
    EXPECT_EQ(live(), Lines{});
  }
}

// Entries that are passed over, and entries that are absent, need no memory.
TEST_F(NoMemory, IsNeededForSkipping) {
  names_file("one = (DESCRIPTION = (ADDRESS = (HOST = a)))\ntwo = (x (y))\n");
  begin_with_earlier();
  support::fail_allocation(1, true);
  EXPECT_EQ(build(tns_, "none"), absent);
  expect_unchanged();
  EXPECT_EQ(live(), earlier_blocks_);
}

TEST_F(NoMemory, AndALaterBuildSucceedsAgain) {
  names_file("mydb = (DESCRIPTION = (ADDRESS = (HOST = a)))\n");
  begin_with_earlier();
  support::fail_allocation(4);  // The address, which leaves nothing.
  EXPECT_EQ(build(tns_, "mydb"), malformed);
  EXPECT_EQ(live(), earlier_blocks_);
  EXPECT_EQ(build(tns_, "mydb"), found);
  EXPECT_EQ(tns_.tns_service_count, 2u);
  expect_left({});
}

// ----------------------------------------------------------------------
// The whole log
// ----------------------------------------------------------------------

// One allocation: what the log says since the allocation before it, the block,
// and what follows when there is no memory for it.
struct Step {
  Lines before;
  std::string block;
  Lines failure;
  Lines left;
};

Lines no_memory(const std::string &what, std::size_t size) {
  return {"ERROR malloc " + what + " error, malloc size:" + std::to_string(size)};
}

// The ways in which a failure travels up from each block. Each begins with the
// message about the memory; `service` is what the service's level adds.
Lines no_description(const Lines &service) {
  // The size in this message is that of a service.
  return no_memory("description", sizeof(KZCITnsService)) +
         Lines{"ERROR fail to build description, status:-1"} + service;
}

Lines description_lost(const Lines &service) {
  return Lines{"ERROR something error in build description"} + release("KZCIDescription") +
         Lines{"ERROR fail to build description, status:-1"} + service;
}

Lines no_list(const Lines &service) {
  return no_memory("address_list", sizeof(KZCIAddressList)) +
         Lines{"ERROR fail to call KZCIAddressListBuild, status:-1"} + description_lost(service);
}

Lines no_implied_list(const Lines &service) {
  return no_memory("address_list", sizeof(KZCIAddressList)) + description_lost(service);
}

Lines no_address(const Lines &service) {
  return no_memory("address", sizeof(KZCIAddress)) +
         Lines{"ERROR fail to call buil_address_list, status:-1",
               "ERROR something error in KZCIAddressListBuild"} +
         release("address_list") + Lines{"ERROR fail to call KZCIAddressListBuild, status:-1"} +
         description_lost(service);
}

// The implied list is released before the message.
Lines no_bare_address(const Lines &service) {
  return no_memory("address", sizeof(KZCIAddress)) + release("address_list") +
         Lines{"ERROR fail to call KZCIAddressBuild"} + description_lost(service);
}

Lines no_connect_data(const Lines &service) {
  return no_memory("connect_data", sizeof(KZCIConnectData)) +
         Lines{"ERROR fail to call KZCIConnectDataBuild, status:-1"} + description_lost(service);
}

class WholeLog : public NoMemory {
 protected:
  Lines happened() const { return since(earlier_events_); }

  // Fails the allocation at the end of the first `count` steps.
  void run_failing(const std::string &identifier, const std::vector<Step> &steps, std::size_t count,
                   bool for_ever) {
    SCOPED_TRACE("allocation " + std::to_string(count) + (for_ever ? " and all that follow" : ""));
    begin_with_earlier();
    Lines expected;
    for (std::size_t i = 0; i < count; ++i)
      expected = expected + steps[i].before +
                 (i + 1 == count ? refused(steps[i].block) : allocated(steps[i].block));
    support::fail_allocation(count, for_ever);
    EXPECT_EQ(build(tns_, identifier), malformed);
    EXPECT_EQ(happened(), expected + steps[count - 1].failure);
    expect_unchanged();
    EXPECT_EQ(live(), earlier_blocks_ + steps[count - 1].left);
    expect_left(steps[count - 1].left);
    ++faults_;
  }

  // Lets every allocation succeed; `last` follows the last of them.
  void run_good(const std::string &identifier, const std::vector<Step> &steps, const Lines &last) {
    begin_with_earlier();
    Lines expected, blocks;
    for (const Step &step : steps) {
      expected = expected + step.before + allocated(step.block);
      blocks.push_back(step.block);
    }
    support::fail_allocation(steps.size() + 1);
    EXPECT_EQ(build(tns_, identifier), found);
    EXPECT_EQ(happened(), expected + last);
    EXPECT_EQ(tns_.tns_service_count, 2u);
    EXPECT_EQ(live(), earlier_blocks_ + blocks);
    expect_left({});
  }

  void run_all(const std::string &identifier, const std::vector<Step> &steps, const Lines &last) {
    for (const bool for_ever : {false, true})
      for (std::size_t count = 1; count <= steps.size(); ++count)
        run_failing(identifier, steps, count, for_ever);
    run_good(identifier, steps, last);
  }
};

TEST_F(WholeLog, AnEntryOfTheFile) {
  names_file(
      "mydb = (DESCRIPTION =\n"
      "  (ADDRESS_LIST = (ADDRESS = (HOST = a)) (ADDRESS = (HOST = b)))\n"
      "  (ADDRESS_LIST = (ADDRESS = (HOST = c)))\n"
      "  (CONNECT_DATA = (SID = s)))\n"
      " (DESCRIPTION =\n"
      "  (ADDRESS = (HOST = d))\n"
      "  (CONNECT_DATA = (SID = t)))\n"
      "next = x\n");
  const Lines service = service_failed(-1) + release("KZCITnsServiceBuild") + entry_refused();
  const std::string &d = description_block, &l = list_block, &a = address_block, &c = data_block;
  const Lines first_description = {d, l, a, a, l, a, c};
  const std::vector<Step> steps = {
      {lookup_begins() + refill(1) + key("mydb") + name_found("mydb"),
       service_block("mydb", "KZCITnsServiceBuild"),
       no_memory("tns_service", sizeof(KZCITnsService) + 4) + entry_refused(),
       {}},
      {description_begins(), d, no_description(service), {}},
      {list_begins(), l, no_list(service), {}},
      {listed_address_begins(), a, no_address(service), {}},
      // The first address of a list that is lost stays allocated.
      {host("a") + block_end() + listed_address_begins(), a, no_address(service), {a}},
      {host("b") + block_end() + list_ends(2) + list_begins(), l, no_list(service), {l, a, a}},
      {listed_address_begins(), a, no_address(service), {l, a, a}},
      {host("c") + block_end() + list_ends(1) + data_begins(),
       c,
       no_connect_data(service),
       {l, a, a, l, a}},
      {sid("s") + data_ends("s") + description_ends(2) + description_begins(), d,
       no_description(service), first_description},
      {description_key("ADDRESS", LB_ADDRESS), l, no_implied_list(service), first_description},
      {address_call(), a, no_bare_address(service), first_description},
      {host("d") + block_end() + data_begins(),
       c,
       no_connect_data(service),
       {d, l, a, a, l, a, c, l, a}},
  };
  run_all("mydb", steps,
          sid("t") + data_ends("t") + description_ends(1) + mismatch(1, 3) + built(2, 2));
}

TEST_F(WholeLog, ALiteralDescriptor) {
  const std::string text =
      "(DESCRIPTION=(ADDRESS=(HOST=a))"
      "(ADDRESS_LIST=(ADDRESS=(HOST=b))(ADDRESS=(HOST=c)))"
      "(CONNECT_DATA=(SID=s)))";
  const Lines service = service_failed(-1) + release("KZCITnsBuildDes");
  const std::string &d = description_block, &l = list_block, &a = address_block, &c = data_block;
  const std::vector<Step> steps = {
      {lookup_call() + descriptor_call(text) + refill(2) + description_word(),
       service_block("DESCRIPTION", "KZCITnsBuildDes"),
       no_memory("tns_service", sizeof(KZCITnsService) + 11) + service_failed(-1) + release("null"),
       {}},
      {description_call(), d, no_description(service), {}},
      {description_key("ADDRESS", LB_ADDRESS), l, no_implied_list(service), {}},
      {address_call(), a, no_bare_address(service), {}},
      {host("a") + block_end() + list_begins(), l, no_list(service), {l, a}},
      {listed_address_begins(), a, no_address(service), {l, a}},
      {host("b") + block_end() + listed_address_begins(), a, no_address(service), {l, a, a}},
      {host("c") + block_end() + list_ends(2) + data_begins(),
       c,
       no_connect_data(service),
       {l, a, l, a, a}},
  };
  run_all(text, steps,
          sid("s") + data_ends("s") + description_ends(2) + refill(2) + Lines{"DEBUG reach eof"} +
              built(1, 2));
}

TEST_F(WholeLog, TheReservedEntryNeedsOneBlock) {
  names_file("KZCISYSTEMVARIABLES = (LOG_COUNT = 3)(LOG_LEVEL = INFO)\n");
  const std::string name = "KZCISYSTEMVARIABLES";
  const std::vector<Step> steps = {
      {lookup_begins() + refill(1) + key(name) + name_found(name),
       service_block(name, "KZCITnsServiceBuild"),
       no_memory("tns_service", sizeof(KZCITnsService) + 19) + entry_refused(),
       {}},
  };
  run_all(name, steps,
          variables_begin() + log_count("3") + key_word("LOG_LEVEL", LB_LOG_LEVEL) + key("INFO") +
              Lines{"DEBUG parse system variables get log level:INFO"} + input_end(1) +
              built(0, 2));
}

}  // namespace
