// One lookup, step by step, as JSON.
#pragma once

#include <string>

#include "lookup/lookup.h"
#include "lookup/lookup_report.h"

namespace kztns {

// What is known of a lookup when it has been explained.
struct ExplainedLookup {
  const std::string &identifier;
  const Lookup &lookup;
  const LookupReport &report;
  bool file_given;   // on the command line
  std::string link;  // the link string; empty for none
};

// The variables of the environment that would name a file, too, if the one that chose it
// were not set.
std::vector<std::string> ignored_variables(const Lookup &lookup);

// docs/why.schema.json describes it.
std::string lookup_json(const ExplainedLookup &explained);

}  // namespace kztns
