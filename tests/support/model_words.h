// How the texts of words compare with the words of the grammar.
#pragma once

#include <string>
#include <string_view>

namespace model {

inline constexpr std::string_view no_key = "";

// Whether a value stands for an upper-case word: a leading part in any case. A
// zero byte right after the whole word ends the comparison.
bool stands_for(std::string_view value, std::string_view word);

// The key word that a text is, in any case, or no_key.
std::string_view key_of(std::string_view text);

// A copy that stops at a zero byte and fills up with zero bytes.
std::string copied_as_string(std::string_view text);

// The text up to its first zero byte.
std::string_view printed(std::string_view text);

}  // namespace model
