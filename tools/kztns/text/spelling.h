// What a misspelt word may have meant.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace kztns {

// How many letters have to be changed, added, removed or swapped with their
// neighbour to make one word the other, whatever their case; limit + 1 when it
// is more than the limit.
std::size_t edit_distance(std::string_view left, std::string_view right, std::size_t limit);

// Of ASCII letters.
inline char lower_case(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool equal_but_for_case(std::string_view left, std::string_view right);

// Whether a word is one of some, whatever their case.
bool is_one_of(std::string_view word, std::initializer_list<std::string_view> words);

// What is in quotes that quote nothing here, 'x' or those of word processors; empty for a text that
// is not.
std::string_view in_foreign_quotes(std::string_view text);

// The one of some words that is near; empty when none is.
std::string_view near_word(std::string_view word, const std::vector<std::string_view> &words);

// The shortest one of some words that begins with a word or begins it, "DESC" or "WARNING", with
// no further part after a "_"; empty for none, and for short words.
std::string_view longer_or_shorter_word(std::string_view word,
                                        const std::vector<std::string_view> &words);

}  // namespace kztns
