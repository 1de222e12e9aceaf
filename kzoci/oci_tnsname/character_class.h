// What a character means to the tokenizer, as one table lookup.
#pragma once

#include <array>

#include "kzoci/oci_tnsname.h"

namespace kzoci::tns {

// A character's row in the table: its token's type in the lowest two bits, its
// classes above.
enum CharacterClass : unsigned char {
  token_type_mask = 3,
  blank = 4,            // space, tab, line feed, carriage return
  comment_sign = 8,     // "#", where a token may begin
  key_terminator = 16,  // blanks, "(", ")", "="
  quote = 32
};

constexpr auto character_classes = [] {
  std::array<unsigned char, 256> classes{};
  const auto set = [&classes](char c, int token, int value) {
    classes[static_cast<unsigned char>(c)] = static_cast<unsigned char>(token | value);
  };
  classes.fill(TNS_KEY);
  for (const char c : {' ', '\t', '\n', '\r'}) set(c, TNS_KEY, blank | key_terminator);
  set('#', TNS_KEY, comment_sign);
  set('"', TNS_KEY, quote);
  set('(', TNS_LEFT_PARENTHESES, key_terminator);
  set(')', TNS_RIGHT_PARENTHESES, key_terminator);
  set('=', TNS_EQUAL_SIGN, key_terminator);
  return classes;
}();

// Whether a character belongs to any of these classes.
constexpr bool is_any_of(char c, unsigned classes) {
  return (character_classes[static_cast<unsigned char>(c)] & classes) != 0;
}

// The type of the token that begins with a character.
constexpr KZCITnsTokenType token_type(char c) {
  return static_cast<KZCITnsTokenType>(character_classes[static_cast<unsigned char>(c)] &
                                       token_type_mask);
}

}  // namespace kzoci::tns
