// Entries that lookups of other names pass over to a wrong end, although they are not built:
// a comment or quotes hide parentheses, which such lookups count.
#pragma once

#include <vector>

#include "scan/file_scan.h"

namespace kztns {

// After the first block of an entry, told by its tokens up to a limit, when lookups that
// pass over it come to another end; absent when they come to that one, or when there is none.
std::optional<Offset> end_if_led_astray(std::string_view text, Offset body, Offset limit);

// Those of a scan's entries that are not built, some at most.
std::vector<SkipMismatch> mismatches_of_refused(const FileScan &scan, std::size_t most);

}  // namespace kztns
