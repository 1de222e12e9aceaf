// Tells findings of one check from those of another, when the file has changed between.
#pragma once

#include <string>
#include <unordered_map>

#include "check/check_report.h"

namespace kztns {

// The fingerprints of a file's findings, in their order. They follow from rule, entry, path
// and line of the file, whatever the line's number and its blanks; equal ones are counted.
class Fingerprints {
 public:
  std::string next(const Finding &finding);  // "9e3779b97f4a7c15:1"

 private:
  std::unordered_map<std::uint64_t, int> counts_;
};

}  // namespace kztns
