// Applies the fixes of findings to the text that was checked.
#pragma once

#include <functional>
#include <vector>

#include "check/check_report.h"

namespace kztns {

// The edits of those fixes that can be applied together, sorted: of two that change the
// same bytes, the first one's. What is copied is copied with the edits in it. applied, when
// it is there, gets an element for each finding.
std::vector<Edit> edits_of(const std::vector<Finding> &findings,
                           std::vector<bool> *applied = nullptr);

// The same of the findings that are wanted, which are asked for by their indexes.
std::vector<Edit> edits_of(const std::vector<Finding> &findings,
                           const std::function<bool(std::size_t)> &is_wanted,
                           std::vector<bool> *applied = nullptr);

}  // namespace kztns
