// The key words and their identifiers.
#include <array>
#include <cstdint>
#include <string_view>

#include "kzoci/oci_tnsname.h"
#include "log.h"
#include "status.h"
#include "word_of_memory.h"

using namespace kzoci::tns;

namespace {

constexpr ub4 longest_key_word = 20;

// Up to 24 characters, eight a word, zeros behind them.
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

constexpr unsigned char itself(char c) { return static_cast<unsigned char>(c); }

// The bits that tell a character from others: for a letter, all but the one in
// which small letters differ from capitals.
constexpr unsigned char telling_bits(char c) { return 'A' <= c && c <= 'Z' ? 0xDF : 0xFF; }

struct KeyWord {
  std::string_view text;
  KZCILBKeyType type;
  TextWords words = words_of(text, itself);
  TextWords mask = words_of(text, telling_bits);

  // tns_key has room for more than the longest key word, so that whole words can be
  // loaded; what stands behind the key is masked.
  bool is_spelt(const char *tns_key) const {
    const auto differs = [&](std::size_t i) {
      return ((load_word(tns_key + 8 * i) ^ words[i]) & mask[i]) != 0;
    };
    return !differs(0) && !differs(1) && !differs(2);
  }
};

// In the order of their lengths; of one length the most frequent ones first.
constexpr KeyWord tns_keys[] = {
    {"SID", LB_SID},
    {"HOST", LB_HOST},
    {"PORT", LB_PORT},
    {"KZLB", LB_KZLB},
    {"NAME", LB_NAME},
    {"WEIGHT", LB_WEIGHT},
    {"ADDRESS", LB_ADDRESS},
    {"TIMEOUT", LB_TIMEOUT},
    {"KZ_MODE", LB_KZ_MODE},
    {"PROTOCOL", LB_PROTOCOL},
    {"DURATION", LB_DRUATION},
    {"LOG_SIZE", LB_LOG_SIZE},
    {"LOG_PATH", LB_LOG_PATH},
    {"LOG_LEVEL", LB_LOG_LEVEL},
    {"LOG_COUNT", LB_LOG_COUNT},
    {"RETRYTIMES", LB_RETRY_TIMES},
    {"DESCRIPTION", LB_DESCRIPTION},
    {"RETRY_TIMES", LB_RETRY_TIMES},
    {"RETRY_DELAY", LB_RETRY_DELAY},
    {"ADDRESS_LIST", LB_ADDRESS_LIST},
    {"CONNECT_DATA", LB_CONNECT_DATA},
    {"SERVICE_NAME", LB_SERVICE_NAME},
    {"KZLB_STRATEGY", LB_KZLB_STRATEGY},
    {"KZLB_BLACKLIST", LB_KZLB_BLACKLIST},
    {"REMOVE_STRATEGY", LB_REMOVE_STRATEGY},
    {"APPEND_STRATEGY", LB_APPEND_STRATEGY},
    {"USE_DEFAULT_SID", LB_USE_DEFAULT_SID},
    {"SESSION_VARIABLE", LB_SESSION_VARIABLE},
    {"SLOWSQL_THRESHOLD", LB_SLOWSQL_THRESHOLD},
    {"KZLB_READ_TIMEOUT", LB_READ_TIMEOUT},
    {"KZ_USER_EXTRA_INFO", LB_EXTRA_INFO},
    {"KZLB_RETRY_TIMEOUT", LB_KZLB_RETRY_TIMEOUT},
    {"KZLB_WRITE_TIMEOUT", LB_WRITE_TIMEOUT},
    {"KZLB_GROUP_STRATEGY", LB_KZLB_GROUP_STRATEGY},
    {"SLOWSQL_BUFFER_SIZE", LB_SLOWSQL_BUFFER_SIZE},
    {"KZLB_RETRY_ALL_DOWNS", LB_KZLB_RETRY_ALL_DOWNS},
    {"KZLB_CONNECT_TIMEOUT", LB_CONNECT_TIMEOUT},
    {"SLOWSQL_FLUSH_SECOND", LB_SLOWSQL_FLUSH_SECOND},
};

constexpr bool lengths_rise_to_the_longest() {
  std::size_t last = 0;
  for (const KeyWord &word : tns_keys) {
    if (word.text.size() < last) return false;
    last = word.text.size();
  }
  return last == longest_key_word;
}
static_assert(lengths_rise_to_the_longest());

// Number of key words of each length.
constexpr auto tns_key_array_size = [] {
  std::array<ub4, longest_key_word + 1> sizes{};
  for (const KeyWord &word : tns_keys) ++sizes[word.text.size()];
  return sizes;
}();

// Index of the first key word of each length.
constexpr auto tns_key_array = [] {
  std::array<ub4, longest_key_word + 1> rows{};
  for (ub4 length = 1; length <= longest_key_word; ++length)
    rows[length] = rows[length - 1] + tns_key_array_size[length - 1];
  return rows;
}();

// A lookup compares only against the words of the key's own length.
KZCILBKeyType key_type_of(const char *key, ub4 length) {
  const KeyWord *const first = tns_keys + tns_key_array[length];
  for (const KeyWord *word = first; word != first + tns_key_array_size[length]; ++word)
    if (word->is_spelt(key)) return word->type;
  return LB_ERROR_KEY;
}

}  // namespace

sword KZCITnsGetKeyType(KZCITnsParseParams *parse_params) {
  if (parse_params == nullptr) return invalid_handle;
  const ub4 length = parse_params->tns_key_len;
  if (length > longest_key_word) {
    parse_params->key_type = LB_ERROR_KEY;
    KZ_LOG_ERROR("parse_params tns_key_len:%d > %d", static_cast<int>(length),
                 static_cast<int>(longest_key_word));
    return success;
  }
  parse_params->key_type = key_type_of(parse_params->tns_key, length);
  if (parse_params->key_type != LB_ERROR_KEY)
    KZ_LOG_DEBUG("succ to find key, key is:%d", parse_params->key_type);
  else
    KZ_LOG_DEBUG("fail to find key, key size:%u, key str:%.*s", length, static_cast<int>(length),
                 parse_params->tns_key);
  return success;
}
