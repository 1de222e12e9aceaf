#include "random_mutation.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "keys.h"

namespace support {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t buffer_size = 1024;
constexpr std::size_t longest_key_length = 256;

constexpr std::string_view no_key_words[] = {
    "HOSTS", "DESCRIPTIO", "KZLB_CONNECT_TIMEOUTS", "", "ID", "HOS\0"sv,
};

constexpr std::string_view values[] = {
    "ON",
    "off",
    "ONE",
    "OFF\0more"sv,
    "O",
    "YES",
    "RANDOM",
    "ROTATION",
    "SERVERAFFINITY",
    "ROT",
    "R",
    "TIMEOUT",
    "RETRYDURATION",
    "RETRY",
    "TIMEOUTS",
    "NORMAL",
    "TCP",
    "UDP",
    "TCPS",
    "tcp",
    "1",
    "-1",
    "5s",
    "1.5",
    "--5",
    "",
    " ",
    "18446744073709551616",
    "99999999999999999999",
    "-9223372036854775809",
    "123456",
    "1234567",
    "12\0"sv,
    "\0"sv,
    "a\0b"sv,
    "+",
    "x",
};

std::string random_key_word(Random &random) {
  return std::string(random.one_in(8) ? random.pick(no_key_words) : random.pick(keys).word);
}

Token random_token(Random &random) {
  switch (random.below(6)) {
    case 0:
      return {
          TokenKind::open,
          "(",
      };
    case 1:
      return {
          TokenKind::close,
          ")",
      };
    case 2:
      return {
          TokenKind::equal,
          "=",
      };
    case 3:
      return {TokenKind::key_word, random_key_word(random)};
    case 4:
      return {TokenKind::text, std::string(random.pick(values))};
    default:
      return {TokenKind::name, random_special_name(random)};
  }
}

std::string long_word(Random &random) {
  return std::string(random.between(longest_key_length - 3, longest_key_length + 60), 'x');
}

bool has_text(const Token &token) {
  return token.kind != TokenKind::open && token.kind != TokenKind::close &&
         token.kind != TokenKind::equal;
}

// The place of a token that holds a text, at or after the given one.
std::size_t next_with_text(const Tokens &tokens, std::size_t at) {
  while (at + 1 < tokens.size() && !has_text(tokens[at])) ++at;
  return at;
}

void change_text(Random &random, Token &token) {
  switch (random.below(4)) {
    case 0:
      token.text = random_key_word(random);
      break;
    case 1:
      token.text = random.pick(values);
      break;
    case 2:
      token.text = long_word(random);
      break;
    default:
      token.text += random.one_in(2) ? "S" : " S";
  }
}

// The end of the block that begins at this token, or of the tokens.
std::size_t block_end(const Tokens &tokens, std::size_t at) {
  std::size_t depth = 0;
  do {
    if (tokens[at].kind == TokenKind::open) ++depth;
    if (tokens[at].kind == TokenKind::close && depth > 0) --depth;
    ++at;
  } while (at < tokens.size() && depth > 0);
  return at;
}

std::ptrdiff_t offset(std::size_t at) { return static_cast<std::ptrdiff_t>(at); }

void change_block(Random &random, Tokens &tokens, std::size_t at) {
  while (at + 1 < tokens.size() && tokens[at].kind != TokenKind::open) ++at;
  const auto begin = tokens.begin() + offset(at);
  const auto end = tokens.begin() + offset(block_end(tokens, at));
  if (random.one_in(3)) {
    tokens.erase(begin, end);
    return;
  }
  const Tokens copy(begin, end);
  tokens.insert(random.one_in(2) ? end : tokens.begin() + offset(random.below(tokens.size())),
                copy.begin(), copy.end());
}

// Grows a word to about the longest key, which ends about where a buffer ends.
void insert_long_word(Random &random, std::string &text) {
  const std::size_t at = random.below(text.size() + 1);
  text.insert(at, random.between(longest_key_length - 3, longest_key_length + 1), 'y');
  put_after_refill(text, at + longest_key_length + random.between(0, 14));
}

constexpr std::string_view characters = "()=\"# \n\t\r\0aK0-9\xFF"sv;

void remove_or_repeat(Random &random, std::string &text, std::size_t at) {
  switch (random.below(3)) {
    case 0:
      text.erase(at, 1);
      break;
    case 1:
      text.erase(at, random.between(1, 30));
      break;
    default:
      text.insert(random.below(text.size()), text.substr(at, random.between(1, 60)));
  }
}

}  // namespace

void mutate_tokens(Random &random, Tokens &tokens) {
  if (tokens.empty()) return;
  const std::size_t at = random.below(tokens.size());
  const auto place = tokens.begin() + offset(at);
  switch (random.below(8)) {
    case 0:
      tokens.erase(place);
      break;
    case 1: {
      const Token copy = *place;
      tokens.insert(place, copy);
      break;
    }
    case 2:
      tokens.insert(place, random_token(random));
      break;
    case 3:
      *place = random_token(random);
      break;
    case 4:
      std::swap(*place, tokens[random.below(tokens.size())]);
      break;
    case 5:
      change_block(random, tokens, at);
      break;
    default:
      change_text(random, tokens[next_with_text(tokens, at)]);
  }
}

void mutate_text(Random &random, std::string &text) {
  if (text.empty()) return;
  const std::size_t at = random.below(text.size());
  switch (random.below(9)) {
    case 0:
    case 1:
      return remove_or_repeat(random, text, at);
    case 2:
      text[at] = random.pick(characters);
      break;
    case 3:
      text.insert(at, 1, random.pick(characters));
      break;
    case 4:
      text.resize(at);
      break;
    case 5:
      text.insert(at, 1, random.pick("\"()"sv));
      break;
    case 6:
      put_after_refill(text, at);
      break;
    case 7:
      text.insert(at, "#");
      break;
    default:
      insert_long_word(random, text);
  }
}

void put_after_refill(std::string &text, std::size_t at) {
  const std::size_t beyond = at % buffer_size;
  if (beyond != 0) text.insert(0, buffer_size - beyond, ' ');
}

Tokens random_tokens(Random &random, std::size_t most) {
  Tokens tokens;
  for (std::size_t left = random.below(most + 1); left > 0; --left)
    tokens.push_back(random_token(random));
  return tokens;
}

std::string random_special_name(Random &random) {
  constexpr std::string_view names[] = {
      "KZCISYSTEMVARIABLES",
      "kzcisystemvariables",
      "KZCI",
      "kzci",
      "K",
      "KZCIS",
      "KzciSystem",
      "",
      "KZCISYSTEMVARIABLES1",
      "KZCISYSTEMVARIABLES\0"sv,
      "KZCISYSTEMVARIABLES\0tail"sv,
      "a\0b"sv,
      "a\0c"sv,
      "\0"sv,
      "KZCIX",
      "DESCRIPTION",
      "a",
  };
  return std::string(random.pick(names));
}

}  // namespace support
