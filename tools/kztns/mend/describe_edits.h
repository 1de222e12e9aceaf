// What edits do, in words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "text/edited_text.h"

namespace kztns {

// 'inserted ")"', of the edits of a text; of many the first ones.
std::string describe(const std::vector<Edit> &edits, std::string_view text);

}  // namespace kztns
