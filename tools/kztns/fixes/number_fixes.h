// The fixes of numbers.
#pragma once

#include <string_view>

#include "rules/fix.h"
#include "text/offset.h"
#include "trace/key_words.h"

namespace kztns {

// Whether a value is a number with a unit of time after it, "90 ms".
bool has_unit(std::string_view value);

// Of the value of a key, text, that stands in a span: a number with blanks around it, or one with a
// unit of time after it.
Fix fix_of_number(const Key &key, std::string_view text, Span span);

}  // namespace kztns
