// Why the parentheses of an entry do not balance, where more than one parenthesis is at fault.
#pragma once

#include <optional>
#include <vector>

#include "rules/diagnosis.h"
#include "scan/entry_tokens.h"

namespace kztns {

// An opening that stands twice, brackets of other kinds, comments of other readers, items that a
// comment has taken in. tokens are those of an entry whose text ends at a place.
std::optional<Diagnosis> find_parenthesis_cause(const Subject &subject,
                                                const std::vector<EntryToken> &tokens, Offset end);

}  // namespace kztns
