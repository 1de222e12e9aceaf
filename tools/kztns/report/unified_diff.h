// A unified diff between a text and its changed copy.
#pragma once

#include <string>
#include <string_view>

#include "text/edited_text.h"

namespace kztns {

// The hunks, with three lines of context, under the headers "--- FILE" and "+++ FILE";
// empty for a text that was not changed. Made from the edits, so that it takes no longer
// than reading both.
std::string unified_diff(const std::string &file, std::string_view before, const EditedText &after);

}  // namespace kztns
