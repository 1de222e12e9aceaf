// Fixes of what keeps lookups from entries, where no entry is moved.
#pragma once

#include <string_view>
#include <vector>

#include "rules/fix.h"
#include "rules/rules.h"
#include "scan/file_scan.h"

namespace kztns {

// Of what ends lookups between entries; none where another fix is for it. rule and at are
// those of its cause.
Fix fix_of_stop(const FileScan &scan, const Stop &stop, Rule rule, Offset at);

// Whether the items at a place may be those of the entry before them, which lacks some.
bool may_belong_to_entry_before(const FileScan &scan, Offset at);

// Whether "= (DESCRIPTION = ...)" or "(DESCRIPTION = ...)", without a name, begins at a place.
bool is_nameless_entry(const FileScan &scan, Offset at);

// Makes comments of the lines between two places.
Fix fix_of_lines(std::string_view text, Offset begin, Offset end);

// Begins a line with a name that stands after the words of a comment.
Fix fix_of_joined_name(std::string_view text, Offset name);

// Makes comments of a part of a line or of several; what comes after it on its line begins a line
// of its own.
Fix fix_of_part(std::string_view text, Offset begin, Offset end);

// Adds, out of order, the edits that write zero bytes between two places as text: to the library
// they would end the comment that this becomes.
void write_out_zero_bytes(std::string_view text, Offset begin, Offset end,
                          std::vector<Edit> &edits);

// Makes comments of the lines of a comment in "/*" and "*/" at a place; what comes after it on its
// line begins a line of its own. None where it is not closed.
Fix fix_of_long_comment(std::string_view text, Offset at);

// Parentheses in the comments of an entry that have no partner there, or in the comments next to
// them, become brackets.
Fix fix_of_comments(std::string_view text, Offset body, Offset end);

// A carriage return after which a comment hides text; absent for none. Line feeds end
// comments.
std::optional<Offset> hiding_carriage_return(std::string_view text);

// Carriage returns without a line feed become line feeds.
Fix fix_of_line_ends(std::string_view text);

// A ":", ":=", "-", "->" or full-width "=" at a place, which other notations have for "=": where it
// ends, the place itself for none, and the edit that makes it one.
Offset end_of_foreign_equal(std::string_view text, Offset at);
Edit equal_for_foreign(std::string_view text, Offset colon);

}  // namespace kztns
