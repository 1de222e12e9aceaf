// Small damage to input that the grammar accepts, as users and editors do it
// and as the limits of the reader make it interesting.
#pragma once

#include <cstddef>
#include <string>

#include "random.h"
#include "random_input.h"

namespace support {

// One change: a token, a block or a key word goes, comes, moves or is replaced.
void mutate_tokens(Random &random, Tokens &tokens);

// One change: characters go, come or repeat, the text is cut off, quotes and
// parentheses lose their balance, a word grows beyond the longest key, or blanks
// before it move the text over the boundaries of the reader's buffer.
void mutate_text(Random &random, std::string &text);

// Blanks before it, so that the character at this place becomes the first one
// that the reader gets with a refill.
void put_after_refill(std::string &text, std::size_t at);

// Tokens in no order at all.
Tokens random_tokens(Random &random, std::size_t most);

// A name of an entry that the reader treats in a special way, or nearly so.
std::string random_special_name(Random &random);

}  // namespace support
