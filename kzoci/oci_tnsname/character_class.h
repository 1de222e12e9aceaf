// What a character means to the tokenizer, as one table look-up.
#pragma once

#include <array>

namespace kzoci::tns {

enum CharacterClass : unsigned char {
  ordinary = 0,
  blank = 1,           // space, tab, line feed, carriage return
  comment_sign = 2,    // "#", where a token may begin
  key_terminator = 4,  // blanks, "(", ")", "="
  quote = 8
};

constexpr auto character_classes = [] {
  std::array<unsigned char, 256> classes{};
  const auto set = [&classes](char c, unsigned char value) {
    classes[static_cast<unsigned char>(c)] = value;
  };
  for (const char c : {' ', '\t', '\n', '\r'}) set(c, blank | key_terminator);
  for (const char c : {'(', ')', '='}) set(c, key_terminator);
  set('#', comment_sign);
  set('"', quote);
  return classes;
}();

// Whether a character belongs to any of these classes.
constexpr bool is_any_of(char c, unsigned classes) {
  return (character_classes[static_cast<unsigned char>(c)] & classes) != 0;
}

}  // namespace kzoci::tns
