// Changes to names files that keep most of their structure, for inputs of fuzzers: a
// change to single bytes seldom leaves an entry that is read to its end.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/random.h"

namespace fuzz {

// A token of a text, blanks and comments left out.
struct Token {
  char kind;  // one of "()=", 'w' for a word
  std::size_t begin;
  std::size_t end;
};

std::vector<Token> tokens_of(std::string_view text);

// An item "(KEY = ...)" of a text; an open one ends with the text.
struct Item {
  std::size_t begin;
  std::size_t end;
  Token key;
  std::size_t value;  // after the "="
  bool is_leaf;       // its value is one word
};

std::vector<Item> items_of(std::string_view text);

enum class Change {
  duplicate_item,
  remove_item,
  swap_items,
  change_key,
  change_value,
  move_parenthesis,
  add_space,     // blanks, a comment or quotes
  cross_refill,  // an item stands across a boundary of the reader's buffer
  join_reserved,
  add_entry,
  change_text,
  count
};

// Makes the change; false when the text has nothing for it.
bool change_names(Change change, support::Random &random, std::string &text);

// What stands before the names file in an input of a target.
enum class Head { options, allocation_and_name };

// An input with one change to its head or one to three to its names file.
std::string mutated_input(std::string_view input, Head head, support::Random &random);

}  // namespace fuzz
