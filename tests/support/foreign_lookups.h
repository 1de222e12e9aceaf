// Generated names files of other readers, and what lookups find in them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foreign_files.h"
#include "io/memory_file.h"
#include "lookup/lookup.h"
#include "report/tree_json.h"

namespace support {

#if defined(KZOCI_SANITIZED)
constexpr std::size_t foreign_file_count = 100;  // ten times slower there
#else
constexpr std::size_t foreign_file_count = 1000;
#endif

// Calls check with each of the files until it fails.
template <class Check>
void for_foreign_files(Check check) {
  for (std::size_t seed = 1; seed <= foreign_file_count && !testing::Test::HasFailure(); ++seed) {
    Random random(seed);
    const ForeignFile file = random_foreign_file(random);
    SCOPED_TRACE("seed " + std::to_string(seed) + ":\n" + file.text);
    check(file);
  }
}

// The trees of those of the names that lookups find.
inline std::map<std::string, std::string> trees_found(const std::vector<std::string> &names,
                                                      const std::string &text) {
  kztns::MemoryFile file;
  EXPECT_TRUE(file.append(text));
  std::map<std::string, std::string> trees;
  for (const std::string &name : names) {
    kztns::Tree tree;
    const kztns::Lookup lookup = kztns::look_up(name, {.file = file.path()}, tree);
    if (lookup.outcome == kztns::Outcome::found) trees[name] = kztns::tree_json(*tree.get());
  }
  return trees;
}

}  // namespace support
