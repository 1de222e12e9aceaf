// What becomes of the text of an integer.
#pragma once

#include <string_view>

#include "kzoci/platform/types.h"

namespace model {

struct Number {
  sb8 value;      // what is stored, accepted or not
  bool accepted;  // the whole text is one integer that is not too large
};

// Spaces and tabs, a sign, digits; without a sign up to 2^64 - 1, stored as its
// 64-bit pattern, with "-" down to -2^63.
Number number_of(std::string_view text);

}  // namespace model
