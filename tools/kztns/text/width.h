// How much room a text takes where all letters are equally wide.
#pragma once

#include <cstddef>
#include <string_view>

namespace kztns {

// The columns of a text of UTF-8 on a terminal, whatever the locale: a character of East
// Asian scripts takes two, a mark that is put over the letter before it none.
std::size_t width_of(std::string_view text);

}  // namespace kztns
