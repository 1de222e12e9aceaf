// Blanks, comments and words of a names file, as the module reads them.
#pragma once

#include <string_view>

#include "kzoci/oci_tnsname.h"
#include "text/offset.h"

namespace kztns {

// What is left of a longer word is read as another one.
inline constexpr Offset longest_token = sizeof(KZCITnsParseParams::tns_key);

// Where the comment that begins at a place ends: at a line feed or a zero byte.
Offset end_of_comment(std::string_view text, Offset at);

// After the blanks and comments that begin at a place.
Offset pass_blanks(std::string_view text, Offset from);

struct WordEnd {
  Offset at;
  bool closed;  // whether the word's quotes are
};

// Where the word that begins at a place ends, however long it is.
WordEnd end_of_whole_word(std::string_view text, Offset begin);

// The same, as far as the module reads it.
Offset end_of_word(std::string_view text, Offset begin);

}  // namespace kztns
