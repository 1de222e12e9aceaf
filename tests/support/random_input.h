// Random input that the grammar accepts: descriptions, entries and whole names
// files as tokens, and the ways to write the same tokens down.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "random.h"

namespace support {

enum class TokenKind { open, close, equal, name, key_word, word, integer, text };

// A token; the text is that of the value it means, without quotes.
struct Token {
  TokenKind kind;
  std::string text;
};

using Tokens = std::vector<Token>;

// Which texts a value may hold. Odd texts (blanks, parentheses, zero bytes and
// the like) can only be written in quotes.
struct Taste {
  bool odd_texts = true;
  std::size_t longest_text = 255;
};

// One block "(DESCRIPTION = ...)".
Tokens random_description(Random &random, const Taste &taste = {});

// An entry: its name, "=" and its blocks.
struct Entry {
  std::string name;
  Tokens tokens;
};

Entry random_entry(Random &random, const std::string &name, const Taste &taste = {},
                   std::size_t most_blocks = 2);
Entry random_reserved_entry(Random &random, const std::string &name, const Taste &taste = {});

// A name that no other number gives and that is no part of the reserved name.
std::string random_name(Random &random, std::size_t number);

// Text of an integer that every integer key accepts.
std::string random_integer(Random &random);

// What a way of writing adds to the tokens. Comments of entries that are passed
// over must not hold parentheses, because these are counted.
struct Layout {
  bool blanks = false;
  bool comments = false;
  bool parentheses_in_comments = false;
  bool change_case = false;
  bool quotes = false;
};

// Nothing between tokens, quotes only where a text needs them.
std::string write_plain(const Tokens &tokens);
std::string write_tokens(const Tokens &tokens, Random &random, const Layout &layout);

// The same for a literal descriptor, whose first 13 characters other than blanks
// are "(DESCRIPTION=" without quotes and comments.
std::string write_literal(const Tokens &tokens, Random &random, const Layout &layout);

std::string random_case(Random &random, std::string_view word);

}  // namespace support
