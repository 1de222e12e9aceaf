#include "observed_lookup.h"

#include <algorithm>

#include "parsing.h"
#include "recording_platform.h"

namespace support {
namespace {

model::Blocks sorted_live_blocks() {
  model::Blocks blocks;
  for (const Block &block : live_blocks()) blocks.push_back(model::block_of(block.size, block.tag));
  std::sort(blocks.begin(), blocks.end());
  return blocks;
}

Outcome build_literal(KZCITns &tns, const std::string &text) {
  Outcome outcome{0, 7};
  outcome.status = KZCITnsBuildDes(&tns, reinterpret_cast<const OraText *>(text.c_str()),
                                   static_cast<ub4>(text.size()), &outcome.find);
  return outcome;
}

}  // namespace

ObservedLookup observe_lookup(const std::string &identifier, Taken taken,
                              std::size_t failing_allocation, LogKept log_kept) {
  reset_platform();
  keep_log(log_kept == LogKept::yes);
  KZCITns tns;
  KZCITnsInit(&tns);
  fail_allocation(failing_allocation);
  const Outcome outcome =
      taken == Taken::as_literal ? build_literal(tns, identifier) : build(tns, identifier);
  ObservedLookup seen;
  seen.built.status = outcome.status;
  seen.built.find = outcome.find;
  seen.built.tree = full_tree(tns);
  seen.built.allocations = allocation_count();
  seen.built.live = sorted_live_blocks();
  seen.log = log_without_pointers();
  seen.cleared = KZCITnsClear(&tns);
  seen.built.lost = sorted_live_blocks();
  seen.bad_releases = bad_releases();
  return seen;
}

model::Lines comparable(model::Lines lines) {
  for (std::string &line : lines) line = without_pointers(line);
  return lines;
}

}  // namespace support
