// What can be said when the whole file is surveyed: about names, and about where
// the lookups end.
#pragma once

#include "findings.h"
#include "survey.h"

namespace kztns {

// Whether a file is in UTF-16, of which nothing else need be said.
bool is_utf_16(std::string_view text);

// What ends the lookups, for people: the rule, the place and the words. Not for a
// survey that comes to the file's end.
struct StopCause {
  Rule rule;
  Offset at;
  std::string text;
};
StopCause cause_of_stop(const NamesText &text, const Survey &survey);

// The parenthesis that leads passing over an entry astray, when there is one.
std::optional<StopCause> cause_of_misskip(const NamesText &text, const Misskip &misskip);

// told is the finding about the last entry that tells already what ends the
// lookups; absent when there is none.
void report_aftermath(const NamesText &text, const Survey &survey,
                      const std::optional<StopCause> &told, Findings &findings);

}  // namespace kztns
