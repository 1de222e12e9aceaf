// The module against the second reader of the tests, on the same bytes: outcome, tree,
// blocks and the complete log of a lookup in a names file, and of the same text taken for
// a literal descriptor. The second reader predicts every input; nothing is left out.
//
//   input := failing-allocation identifier LF names-file
//
// The failing allocation holds for both. Blocks that a failed build leaves allocated are
// predicted, too, and given back to the system by the next run.
#include <algorithm>
#include <string>
#include <string_view>

#include "fuzz/support/check.h"
#include "fuzz/support/input.h"
#include "fuzz/support/target.h"
#include "tests/support/memory_file.h"
#include "tests/support/model_reader.h"
#include "tests/support/observed_lookup.h"

namespace {

using fuzz::check;
using support::ObservedLookup;
using support::Taken;

std::string joined(const model::Blocks &blocks) {
  std::string text;
  for (const std::string &block : blocks) text += block + ", ";
  return text;
}

void compare_builds(const model::Prediction &seen, const model::Prediction &expected) {
  check(seen.status == expected.status && seen.find == expected.find,
        "status %d, find %d; should be status %d, find %d", seen.status, seen.find, expected.status,
        expected.find);
  check(seen.tree == expected.tree, "the tree is\n%s\nand should be\n%s", seen.tree.c_str(),
        expected.tree.c_str());
  check(seen.allocations == expected.allocations, "%zu allocations, should be %zu",
        seen.allocations, expected.allocations);
  check(seen.live == expected.live, "allocated are %s and should be %s", joined(seen.live).c_str(),
        joined(expected.live).c_str());
  check(seen.lost == expected.lost, "lost are %s and should be %s", joined(seen.lost).c_str(),
        joined(expected.lost).c_str());
}

void compare_logs(const model::Lines &seen, const model::Lines &expected) {
  const std::size_t common = std::min(seen.size(), expected.size());
  for (std::size_t i = 0; i < common; ++i)
    check(seen[i] == expected[i], "record %zu is\n%s\nand should be\n%s", i, seen[i].c_str(),
          expected[i].c_str());
  check(seen.size() == expected.size(), "%zu records, should be %zu; after \"%s\"", seen.size(),
        expected.size(), common > 0 ? seen[common - 1].c_str() : "");
}

void compare(const std::string &identifier, Taken taken, std::size_t failing_allocation,
             const model::Prediction &expected, const model::Lines &log) {
  const ObservedLookup seen =
      support::observe_lookup(identifier, taken, failing_allocation, support::LogKept::yes);
  compare_builds(seen.built, expected);
  compare_logs(seen.log, support::comparable(log));
  check(seen.cleared == 0, "the release ends with status %d", seen.cleared);
  check(seen.bad_releases == 0, "%zu releases of what is not allocated", seen.bad_releases);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static support::MemoryFile names_file;
  fuzz::Input input(data, size);
  const model::Fault fault = {.allocation = input.failing_allocation()};
  const std::string identifier(input.line());
  const std::string text(input.rest());
  check(names_file.write(text), "the names file cannot be written");

  model::Lines log;
  const model::Prediction looked_up = model::predict(identifier, text, fault, &log);
  compare(identifier, Taken::as_identifier, fault.allocation, looked_up, log);
  log.clear();
  const model::Prediction literal = model::predict_literal(text, fault, &log);
  compare(text, Taken::as_literal, fault.allocation, literal, log);
  return 0;
}
