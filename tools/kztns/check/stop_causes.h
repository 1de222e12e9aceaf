// What ends lookups, for people.
#pragma once

#include <optional>
#include <string>

#include "rules/fix.h"
#include "rules/rules.h"
#include "scan/file_scan.h"

namespace kztns {

// What ends lookups: the rule, the place and the words.
struct StopCause {
  Rule rule;
  Offset at;
  std::string text;
  std::string remedy = {};
  Fix fix = {};
};

// Whether the words of such a cause go on with the entries that are lost.
bool goes_on_with_loss(Rule rule);

// Of a scan that does not come to the file's end.
StopCause cause_of_stop(const FileScan &scan);

// Of one of a scan's further stops.
StopCause cause_of_further_stop(const FileScan &scan, const Stop &stop);

// The parenthesis that leads passing over an entry astray, when there is one.
std::optional<StopCause> cause_of_skip_mismatch(const NamesText &text,
                                                const SkipMismatch &skip_mismatch);

}  // namespace kztns
