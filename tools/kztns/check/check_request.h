// What is asked of a check.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "check/findings.h"
#include "scan/file_scan.h"

namespace kztns {

struct CheckRequest {
  std::string file;                                       // as the report calls it
  bool with_entries = false;                              // whether the report lists the entries
  std::size_t most_of_a_rule = Findings::most_of_a_rule;  // findings; more are counted only
  std::function<void(Offset)> progress = [](Offset) {};
  std::function<void(const EntryView &)> visit = {};  // called for every entry, when it is there
};

}  // namespace kztns
