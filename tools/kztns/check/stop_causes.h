// What ends lookups, for people.
#pragma once

#include <optional>

#include "rules/diagnosis.h"

namespace kztns {

// Whether the words of such a cause go on with the entries that are lost.
bool goes_on_with_loss(Rule rule);

// Of a scan that does not come to the file's end.
Diagnosis cause_of_stop(const FileScan &scan);

// Of one of a scan's further stops.
Diagnosis cause_of_further_stop(const FileScan &scan, const Stop &stop);

// The parenthesis that leads passing over an entry astray, when there is one.
std::optional<Diagnosis> cause_of_skip_mismatch(const NamesText &text,
                                                const SkipMismatch &skip_mismatch);

}  // namespace kztns
