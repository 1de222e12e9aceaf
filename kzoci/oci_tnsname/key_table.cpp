// The key words and their identifiers.
#include <array>
#include <cstdint>
#include <string_view>

#include "grammar.h"
#include "log.h"
#include "status.h"
#include "word_of_memory.h"

using namespace kzoci::tns;

namespace {

constexpr ub4 longest_key_word = 20;

// Up to 24 characters, eight a word, zeros after them.
using TextWords = std::array<std::uint64_t, 3>;
static_assert(longest_key_word <= sizeof(TextWords));

// The words of what a function makes of each character.
template <class Function>
constexpr TextWords words_of(std::string_view text, Function function) {
  TextWords words{};
  for (std::size_t i = 0; i < text.size(); ++i)
    words[i / 8] |= std::uint64_t{function(text[i])} << (8 * (i % 8));
  return words;
}

constexpr unsigned char as_byte(char c) { return static_cast<unsigned char>(c); }

// The bits that distinguish a character: for a letter, all but the one in which
// small letters differ from capitals.
constexpr unsigned char all_but_case(char c) { return 'A' <= c && c <= 'Z' ? 0xDF : 0xFF; }

struct KeyWord {
  std::string_view text;
  KZCILBKeyType type;
  TextWords words;
  TextWords mask;

  // tns_key has room for more than the longest key word, so that whole words can be
  // loaded; what follows the key is masked.
  bool is_spelt(const char *tns_key) const {
    const auto differs = [&](std::size_t i) {
      return ((load_word(tns_key + 8 * i) ^ words[i]) & mask[i]) != 0;
    };
    return !differs(0) && (text.size() <= 8 || (!differs(1) && !differs(2)));
  }
};

constexpr KeyWord make_key_word(std::string_view text, KZCILBKeyType type) {
  return {text, type, words_of(text, as_byte), words_of(text, all_but_case)};
}

// Whether an earlier row of the grammar has the same word.
constexpr bool repeats_word(std::size_t row) {
  for (std::size_t i = 0; i < row; ++i)
    if (std::string_view(grammar[i].word) == grammar[row].word) return true;
  return false;
}

constexpr std::size_t number_of_words = [] {
  std::size_t number = 0;
  for (std::size_t row = 0; row < rows_of_grammar; ++row) number += !repeats_word(row);
  return number;
}();

// The words of the grammar in the order of their lengths; those of one length in the
// grammar's order.
constexpr auto tns_keys = [] {
  std::array<KeyWord, number_of_words> words{};
  std::size_t taken = 0;
  for (std::size_t length = 1; length <= longest_key_word; ++length)
    for (std::size_t row = 0; row < rows_of_grammar; ++row) {
      const std::string_view word = grammar[row].word;
      if (word.size() == length && !repeats_word(row))
        words[taken++] = make_key_word(word, grammar[row].type);
    }
  return words;
}();
static_assert(tns_keys.back().text.size() == longest_key_word,
              "longest_key_word is the length of the longest word of the grammar");

// Number of key words of each length.
constexpr auto count_of_length = [] {
  std::array<ub4, longest_key_word + 1> sizes{};
  for (const KeyWord &word : tns_keys) ++sizes[word.text.size()];
  return sizes;
}();

// Index of the first key word of each length.
constexpr auto first_of_length = [] {
  std::array<ub4, longest_key_word + 1> first{};
  for (ub4 length = 1; length <= longest_key_word; ++length)
    first[length] = first[length - 1] + count_of_length[length - 1];
  return first;
}();

// A lookup compares only against the words of the key's own length.
KZCILBKeyType key_type_of(const char *key, ub4 length) {
  const KeyWord *const first = tns_keys.data() + first_of_length[length];
  for (const KeyWord *word = first; word != first + count_of_length[length]; ++word)
    if (word->is_spelt(key)) return word->type;
  return LB_ERROR_KEY;
}

}  // namespace

sword KZCITnsGetKeyType(KZCITnsParseParams *parse_params) {
  if (parse_params == nullptr) return invalid_handle;
  const ub4 length = parse_params->tns_key_len;
  if (length > longest_key_word) {
    parse_params->key_type = LB_ERROR_KEY;
    KZ_LOG(message::too_long_for_key_word, static_cast<int>(length),
           static_cast<int>(longest_key_word));
    return success;
  }
  parse_params->key_type = key_type_of(parse_params->tns_key, length);
  if (parse_params->key_type != LB_ERROR_KEY)
    KZ_LOG(message::key_word_found, parse_params->key_type);
  else
    KZ_LOG(message::no_key_word, length, static_cast<int>(length), parse_params->tns_key);
  return success;
}
