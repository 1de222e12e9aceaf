// The rules about the file as a whole: names, and where lookups end.
#pragma once

#include "rules/findings.h"
#include "scan/file_scan.h"

namespace kztns {

// Whether a file is in UTF-16, of which nothing else need be said.
bool is_utf_16(std::string_view text);

// What ends the lookups, for people: the rule, the place and the words. Not for a
// scan that comes to the file's end.
struct StopCause {
  Rule rule;
  Offset at;
  std::string text;
  Fix fix = {};
};
StopCause cause_of_stop(const NamesText &text, const FileScan &scan);

// The parenthesis that leads passing over an entry astray, when there is one.
std::optional<StopCause> cause_of_skip_mismatch(const NamesText &text,
                                                const SkipMismatch &skip_mismatch);

// reported is the finding about the last entry that already explains what ends the
// lookups; absent when there is none.
void apply_file_rules(const NamesText &text, const FileScan &scan,
                      const std::optional<StopCause> &reported, Findings &findings);

}  // namespace kztns
