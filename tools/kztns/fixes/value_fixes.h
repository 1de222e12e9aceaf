// The fixes of values, and of what stands between a key and its value.
#pragma once

#include "fixes/fault_place.h"

namespace kztns {

// A value that the library refuses, or that goes on after its first word.
Mending mend_refused_value(const FaultPlace &place);

// Closes the quote at fault.
Fix closed_quote(const FaultPlace &place);

// Removes the quotes around an entry.
Fix without_quotes(const FaultPlace &place);

// "(KEY value)", "(KEY : value)" and the like, with a "=".
Fix with_equal(const FaultPlace &place);

// "(KEY = (value))"
Fix without_inner_parentheses(const FaultPlace &place);

}  // namespace kztns
