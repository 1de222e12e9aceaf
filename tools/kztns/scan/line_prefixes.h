// What mails, diffs and listings put before lines.
#pragma once

#include <string_view>
#include <vector>

#include "text/offset.h"

namespace kztns {

// The ">" of quoted lines, or the numbers of numbered ones, from the line on that begins with a
// place, each with a blank after it; empty where the line has none. One number is no numbering.
std::vector<Span> line_prefixes(std::string_view text, Offset at);

// The ">" of a mail, "> >" too, or the "+" of a diff before each line of an entry that begins with
// one, up to the first line without.
std::vector<Span> line_signs(std::string_view text, Offset begin, Offset end);

}  // namespace kztns
