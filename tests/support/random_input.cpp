#include "random_input.h"

#include <cctype>
#include <span>

#include "keys.h"

namespace support {
namespace {

using namespace std::string_view_literals;

// In the reserved entry, keys that name no system variable are passed over.
constexpr std::string_view other_variables[] = {"ANYTHING", "A_KEY_LONGER_THAN_ANY_WORD",
                                                "DESCRIPTION"};

constexpr std::string_view integers[] = {
    "0",
    "-0",
    "1",
    "007",
    "+5",
    "-5",
    " 8",
    "\t-8",
    "2147483647",
    "2147483648",
    "1048575",
    "1048577",
    "-1",
    "\t +17",
    "4294967295",
    "4294967296",
    "100",
    "000000",
    "9223372036854775807",
    "-9223372036854775808",
    "9223372036854775808",
    "18446744073709551615",
};

constexpr std::string_view plain_characters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-/:,;<@+*";
constexpr std::string_view odd_characters = " \t\r\n\v()=##\0\xFFz09'\\%"sv;

constexpr std::size_t longest_key = 256;

std::string random_characters(Random &random, std::size_t length, bool odd) {
  std::string text;
  while (text.size() < length)
    text += odd && random.one_in(2) ? random.pick(odd_characters) : random.pick(plain_characters);
  return text;
}

std::string random_text(Random &random, const Taste &taste, std::size_t limit) {
  // Some are just beyond the limit, which the longest key sets for most.
  if (limit < longest_key) return random_characters(random, random.between(1, limit + 1), false);
  std::size_t length = random.between(1, 12);
  if (random.one_in(16)) length = random.between(0, taste.longest_text);
  if (random.one_in(40)) length = taste.longest_text;
  return random_characters(random, length, taste.odd_texts && random.one_in(4));
}

// A leading part of one of the words; seldom the empty one.
std::string random_word(Random &random, std::span<const Word> words, const Taste &taste) {
  const std::string_view word = random.pick(words).text;
  if (taste.odd_texts && random.one_in(30)) return "";
  return std::string(word.substr(0, random.between(1, word.size())));
}

// Appends tokens of the grammar.
class Composer {
 public:
  Composer(Random &random, const Taste &taste, Tokens &tokens)
      : random_(random), taste_(taste), tokens_(tokens) {
    tokens_.reserve(usual_size);
  }

  void description() {
    begin("DESCRIPTION");
    bool has_list = false;
    bool has_data = false;
    for (std::size_t left = random_.between(1, 4); left > 0; --left) {
      const Key *key = nullptr;
      // A bare address stands before any list, and connect data stand once.
      do {
        key = &pick(Place::description);
      } while ((has_list && key->word == "ADDRESS") || (has_data && key->word == "CONNECT_DATA"));
      has_list = has_list || key->word == "ADDRESS" || key->word == "ADDRESS_LIST";
      has_data = has_data || key->word == "CONNECT_DATA";
      write(*key);
    }
    add(TokenKind::close, ")");
  }

  void variable() {
    if (!random_.one_in(4)) return write(pick(Place::system_variables));
    begin(random_.pick(other_variables));
    add(TokenKind::text, random_text(random_, taste_, longest_key));
    add(TokenKind::close, ")");
  }

  void name(const std::string &text) {
    add(TokenKind::name, text);
    add(TokenKind::equal, "=");
  }

 private:
  void add(TokenKind kind, std::string_view text) { tokens_.push_back({kind, std::string(text)}); }

  void begin(std::string_view key) {
    add(TokenKind::open, "(");
    add(TokenKind::key_word, key);
    add(TokenKind::equal, "=");
  }

  // Blocks come twice as often as values, which makes deeper trees.
  const Key &pick(Place place) {
    const Key *key = &random_.pick(keys_of(place));
    if (key->takes != Takes::block) key = &random_.pick(keys_of(place));
    return *key;
  }

  void write(const Key &key) {
    begin(key.word);
    write_value(key);
    add(TokenKind::close, ")");
  }

  void write_value(const Key &key) {
    switch (key.takes) {
      case Takes::block:
        for (std::size_t left = random_.between(1, 3); left > 0; --left) write(pick(key.opens));
        return;
      case Takes::word:
        return add(TokenKind::word, random_word(random_, key.words, taste_));
      case Takes::integer:
        return add(TokenKind::integer, random_integer(random_));
      case Takes::text:
        return add(TokenKind::text, key.words.empty()
                                        ? random_text(random_, taste_, key.limit)
                                        : random_case(random_, random_.pick(key.words).text));
    }
  }

  static constexpr std::size_t usual_size = 96;

  Random &random_;
  const Taste &taste_;
  Tokens &tokens_;
};

}  // namespace

std::string random_integer(Random &random) {
  if (random.one_in(3)) return std::string(random.pick(integers));
  // Shifted, so that all lengths are common; at most 2^63 - 1.
  const std::string digits = std::to_string(random.next() >> random.between(1, 63));
  return random.one_in(4) ? '-' + digits : digits;
}

std::string random_case(Random &random, std::string_view word) {
  std::string out(word);
  std::uint64_t bits = random.next();
  for (char &c : out) {
    const int byte = static_cast<unsigned char>(c);
    c = static_cast<char>((bits & 1) != 0 ? std::tolower(byte) : std::toupper(byte));
    bits >>= 1;
  }
  return out;
}

std::string random_name(Random &random, std::size_t number) {
  constexpr std::string_view beginnings[] = {"sales", "a", "Db.world", "my db", "x-1_", "10.0.0."};
  return std::string(random.pick(beginnings)) + std::to_string(number);
}

Tokens random_description(Random &random, const Taste &taste) {
  Tokens tokens;
  Composer(random, taste, tokens).description();
  return tokens;
}

Entry random_entry(Random &random, const std::string &name, const Taste &taste,
                   std::size_t most_blocks) {
  Entry entry{name, {}};
  Composer composer(random, taste, entry.tokens);
  composer.name(name);
  for (std::size_t left = random.between(1, most_blocks); left > 0; --left) composer.description();
  return entry;
}

Entry random_reserved_entry(Random &random, const std::string &name, const Taste &taste) {
  Entry entry{name, {}};
  Composer composer(random, taste, entry.tokens);
  composer.name(name);
  for (std::size_t left = random.between(1, 6); left > 0; --left) composer.variable();
  return entry;
}

}  // namespace support
