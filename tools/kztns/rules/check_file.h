// Checks a file: its scan, with the findings of all rules.
#pragma once

#include <functional>

#include "rules/check_report.h"
#include "scan/file_scan.h"

namespace kztns {

struct CheckRequest {
  std::string file;           // as the report calls it
  bool with_entries = false;  // whether the report lists the entries
  std::function<void(Offset)> progress = [](Offset) {};
};

CheckReport check_file(const NamesText &text, const CheckRequest &request);

}  // namespace kztns
