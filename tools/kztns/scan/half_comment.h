// Entries of which the first lines are comments and the others are not.
#pragma once

#include <optional>
#include <string_view>

#include "text/offset.h"

namespace kztns {

struct HalfComment {
  Offset comment;  // its "#"
  Span name;       // in it
  Offset rest;     // what is no comment
  bool joined;     // whether the name comes after other words: a line end before it is gone
};

// The first one after the first block of an entry whose text stands between two places: to the
// library its rest is part of that entry.
std::optional<HalfComment> find_half_comment(std::string_view text, Offset body, Offset end);

// The name in the comments before the first block of an entry, where another block, which may be
// the entry's own, is commented out before it.
std::optional<Span> commented_name_of_block(std::string_view text, Offset body, Offset end);

// Whether the name of what begins at a place is in the comments before it.
bool is_named_in_comment(std::string_view text, Offset at);

// The name of what begins at a place at the end of the comment before it, "# Moved. NAME =".
std::optional<Span> name_joined_before(std::string_view text, Offset at);

// Where the rest of such an entry ends. Absent where it is not known, and where something else is
// on its last line.
std::optional<Offset> end_of_rest(std::string_view text, Offset rest);

}  // namespace kztns
