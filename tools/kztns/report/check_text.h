// The lines of a report for people and editors.
#pragma once

#include <string>

#include "report/check_run.h"

namespace kztns {

// A finding as "FILE:LINE:COL: error: ENTRY: PATH: TEXT; REMEDY [rule]".
std::string finding_line(const std::string &file, const Finding &finding);

// The same of one that was mended, as "FILE:LINE:COL: fixed: ENTRY: PATH: TEXT; DONE [rule]".
std::string fixed_line(const std::string &file, const Finding &finding, const std::string &done);

// How many findings of each rule the report leaves out, a line each.
std::string left_out_lines(const CheckReport &report);

// "2 entries: 1 ok, 1 refused, 0 unreachable, 0 shadowed, 0 reserved; 1 fixable with kztns fix"
std::string summary(const RunTotals &totals);

// A source line that may be printed, and a caret under the place of an index.
std::string with_caret(const std::string &source, std::size_t caret);

}  // namespace kztns
