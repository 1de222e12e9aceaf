// A number as the library reads it.
#pragma once

#include <string>
#include <string_view>

#include "kzoci/platform/my_strtoll10.h"

namespace kztns {

struct LibraryNumber {
  sb8 value = 0;         // what is stored
  bool digits = false;   // whether all of the text is a number
  bool fits = false;     // whether it is one of 64 bits, with a sign or without
  bool wrapped = false;  // whether it is above the largest one with a sign, and stored as negative
};

inline LibraryNumber library_number(std::string_view text) {
  std::string digits(text);
  char *const text_end = digits.data() + digits.size();
  char *end = text_end;
  int error = 0;
  LibraryNumber number;
  number.value = my_strtoll10(digits.data(), &end, &error);
  number.digits = !text.empty() && end == text_end;
  number.fits = number.digits && (error == 0 || error == -1);
  number.wrapped = number.fits && error == 0 && number.value < 0;
  return number;
}

}  // namespace kztns
