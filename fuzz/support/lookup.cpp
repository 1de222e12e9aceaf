#include "lookup.h"

#include <cstdint>
#include <string>

#include "fuzz_platform.h"
#include "reading_checks.h"
#include "tests/support/parsing.h"
#include "tree_checks.h"

namespace fuzz {
namespace {

// Stands in *find before a build, so that an output that is not written shows.
constexpr boolean untouched = 7;

// What a build shows to its caller.
struct Outcome {
  sword status;
  boolean find;
  std::uint64_t log;  // stands for the log records

  bool operator==(const Outcome &other) const = default;
};

// Builds into the container. A build that finds its service adds exactly that
// service and loses no block; every other one leaves the container as it was.
Outcome build_into(KZCITns &tns, const Lookup &lookup) {
  const KZCITns before = tns;
  const std::size_t blocks_before = blocks_below(tns, lookup.input);
  const std::size_t live_before = live_blocks();
  Outcome outcome{0, untouched, 0};
  take_log_fingerprint();
  outcome.status = lookup.build(&tns, reinterpret_cast<const OraText *>(lookup.identifier),
                                static_cast<ub4>(lookup.identifier_length), &outcome.find);
  outcome.log = take_log_fingerprint();

  check(outcome.status == 0 || outcome.status == -1, "status %d", outcome.status);
  check(outcome.find == 0 || (outcome.find == 1 && outcome.status == 0), "find %d at status %d",
        outcome.find, outcome.status);
  check(tns.tns_service_count == before.tns_service_count + static_cast<ub4>(outcome.find),
        "find %d, %u services after %u", outcome.find, tns.tns_service_count,
        before.tns_service_count);
  check(tns.tns_service == before.tns_service || before.tns_service == nullptr,
        "the first service changes");
  const std::size_t blocks = blocks_below(tns, lookup.input) - blocks_before;
  const std::size_t live = live_blocks() - live_before;
  if (outcome.find == 1)
    check(live == blocks, "%zu blocks stay allocated, %zu belong to the service", live, blocks);
  return outcome;
}

// The first build, into an empty container, is just what the simple reader says,
// lost blocks included.
void check_prediction(const KZCITns &tns, const Outcome &outcome, const Lookup &lookup,
                      std::size_t live_before) {
  const model::Prediction &expected = lookup.expected;
  check(outcome.status == expected.status && outcome.find == expected.find,
        "status %d, find %d; should be status %d, find %d", outcome.status, outcome.find,
        expected.status, expected.find);
  const std::string tree = support::full_tree(tns);
  check(tree == expected.tree, "the tree is\n%s\nand should be\n%s", tree.c_str(),
        expected.tree.c_str());
  const std::size_t lost = live_blocks() - live_before - blocks_below(tns, lookup.input);
  check(lost == expected.lost.size(), "%zu blocks are lost, should be %zu", lost,
        expected.lost.size());
}

std::string read_service(KZCITnsService &service) {
  check_accessors(service);
  return display_of(service);
}

// Services that were built from the same input read the same.
void read_services(KZCITns &tns) {
  if (tns.tns_service == nullptr) return;
  KZCITnsService *service = tns.tns_service;
  const std::string first = read_service(*service);
  for (ub4 i = 1; i < tns.tns_service_count; ++i) {
    service = KZCITnsServiceNext(service);
    check(read_service(*service) == first, "service %u differs from the first one", i);
    check(name_of(*service) == name_of(*tns.tns_service), "the name of service %u differs", i);
  }
}

void release(KZCITns &tns, std::string_view input) {
  const std::size_t live_after = live_blocks() - blocks_below(tns, input);
  check(KZCITnsClear(&tns) == 0, "the container is not released");
  check(tns.tns_service == nullptr && tns.tns_service_count == 0, "a service is left");
  check(live_blocks() == live_after, "%zu blocks are left for %zu", live_blocks(), live_after);
}

}  // namespace

void build_twice(const Lookup &lookup, std::size_t failing_allocation) {
  KZCITns tns;
  check(KZCITnsInit(&tns) == 0, "the container is not initialised");
  const std::size_t live_before = live_blocks();
  fail_allocation(0);
  const Outcome first = build_into(tns, lookup);
  check_prediction(tns, first, lookup, live_before);
  fail_allocation(failing_allocation);
  const Outcome second = build_into(tns, lookup);
  check(allocation_has_failed() ? second.status == -1 && second.find == 0 : second == first,
        "status %d, find %d; the second time status %d, find %d", first.status, first.find,
        second.status, second.find);
  read_services(tns);
  release(tns, lookup.input);
}

}  // namespace fuzz
