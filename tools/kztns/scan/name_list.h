// Lists of names, "A, B = (...)", which other readers know, and what looks like one.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "text/offset.h"

namespace kztns {

struct NameList {
  std::vector<Span> names;
  Offset end = 0;  // of the last one, the comma after it included
  Offset equal = 0;
};

// "A, B ="; absent where the text at a place is no list. A comma may follow the last name.
std::optional<NameList> read_name_list(std::string_view text, Offset at);

// "Regards," on a line of its own, before something else than a list or a block.
bool is_salutation(std::string_view text, Offset at);

// Whether a name is made of signs alone, as other notations leave them.
bool is_signs(std::string_view text, Span name);

// The end of the line of the first name where that is none of the entry after it: signs alone, and
// "Regards," before a blank line.
std::optional<Offset> end_of_no_name(std::string_view text, const NameList &list);

}  // namespace kztns
