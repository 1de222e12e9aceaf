// A file's report: its survey, put into words.
#pragma once

#include <functional>

#include "report.h"
#include "survey.h"

namespace kztns {

struct Examination {
  std::string file;           // as the report calls it
  bool with_entries = false;  // whether the report lists the entries
  std::function<void(Offset)> progress = [](Offset) {};
};

Report examine(const NamesText &text, const Examination &examination);

}  // namespace kztns
