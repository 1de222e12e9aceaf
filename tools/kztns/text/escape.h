// One notation for what a text may not hold where it is written: \xHH, with two
// lower-case hexadecimal digits, is a byte. A backslash before such letters in
// the text itself is written as \x5c, so that replacing every \xHH by
// its byte gives the text back.
#pragma once

#include <string>
#include <string_view>

namespace kztns {

// A text as messages, logs and terminals take it: bytes that are not UTF-8,
// control characters (line feeds and tabs too), bidirectional controls and other
// characters that are invisible are escaped.
std::string visible(std::string_view text);

// A text as it is, cut to some forty characters.
std::string cut_short(std::string_view text);

// Both: cut, then escaped.
std::string excerpt(std::string_view text);

// A text between double quotes. The second one is there because a call with a std::string
// would find std::quoted as well, by its argument, and choose it where <iomanip> is included.
std::string quoted(std::string_view text);
inline std::string quoted(const std::string &text) { return quoted(std::string_view(text)); }

// A text as a JSON string takes it: only bytes that are not UTF-8 are escaped.
std::string valid_utf8(std::string_view text);

// A JSON document with the characters that are invisible as JSON's own \uHHHH,
// which leaves its meaning as it is. Line feeds between its tokens stay.
std::string visible_json(std::string_view json);

}  // namespace kztns
