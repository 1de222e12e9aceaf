// Texts in UTF-16, with a mark or without.
#pragma once

#include <string>
#include <string_view>

namespace kztns {

// Whether a text is in UTF-16: it begins with the mark, or nearly every other byte of
// its beginning is zero.
bool is_utf_16(std::string_view text);

// Such a text in UTF-8, without the mark. What is no character becomes U+FFFD.
std::string utf_8_of_utf_16(std::string_view text);

}  // namespace kztns
