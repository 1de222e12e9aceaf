// From characters to tokens.
//
//   token   := "(" | ")" | "=" | key
//   key     := { character | quoted }        up to a blank, "(", ")" or "="
//   quoted  := '"' { any but '"' } '"'
//   blank   := space | tab | line feed | carriage return
//   comment := "#" { any but line feed }     only where a token may begin
//
// Blanks and comments may stand before every token.
#include "tokenizer.h"

#include <bit>
#include <cstddef>
#include <cstring>

#include "character_class.h"
#include "log.h"
#include "word_of_memory.h"

namespace kzoci::tns {

void begin_parse(KZCITnsParseParams *params, int mode) {
  constexpr std::size_t behind_buffer = sizeof params->tns_buffer;
  static_assert(offsetof(KZCITnsParseParams, tns_key) == behind_buffer);
  std::memset(params->tns_key, 0, sizeof *params - behind_buffer);
  params->mode = mode;
}

sword refill(KZCITnsParseParams *params, const char *failure_text) {
  const sword status = KZCITnsCheckBuffer(params);
  if (status == success) return success;
  if (params->is_eof == 1) {
    KZ_LOG_DEBUG("reach eof");
    return no_data;
  }
  KZ_LOG_ERROR("%s", failure_text);
  return status;
}

namespace {

constexpr ub4 max_key = sizeof(KZCITnsParseParams::tns_key);

// The part of the buffer that is still to be consumed. Working on local pointers
// and storing the position once is what makes reading fast.
struct Window {
  const char *at;
  const char *end;

  explicit Window(const KZCITnsParseParams &params)
      : at(params.tns_buffer + params.buffer_pos), end(params.tns_buffer + params.buffer_len) {}

  void store(KZCITnsParseParams &params) const {
    params.buffer_pos = static_cast<ub4>(at - params.tns_buffer);
  }
};

// Whether buffer_pos is on a character that begins a token.
bool stands_at_token(const KZCITnsParseParams &params) {
  return params.buffer_pos < params.buffer_len && params.is_comment != 1 &&
         !is_any_of(params.tns_buffer[params.buffer_pos], blank | comment_sign);
}

// Consumes the rest of a comment. A line feed or a zero byte ends it and is left.
void pass_comment(KZCITnsParseParams &params, Window &window) {
  while (window.at != window.end && *window.at != '\n' && *window.at != '\0') ++window.at;
  if (window.at != window.end) params.is_comment = 0;
}

// Consumes blanks and comments of the buffer; true when another character is
// at buffer_pos, false at the buffer's end.
bool pass_blanks(KZCITnsParseParams &params) {
  Window window(params);
  if (params.is_comment == 1) pass_comment(params, window);
  for (; window.at != window.end && is_any_of(*window.at, blank | comment_sign); ++window.at) {
    if (*window.at != '#') continue;
    params.is_comment = 1;
    pass_comment(params, window);
    if (window.at == window.end || *window.at == '\0') break;
  }
  window.store(params);
  return window.at != window.end;
}

// A key on its way into tns_key; it may run across any number of refills.
struct KeyInProgress {
  ub4 length = 0;
  KZCITnsParseStatus quoting = TNS_PARSE_NORMAL;
};

// How many of the eight characters, from the first on, are beyond doubt ordinary
// characters of a key: from '*' to 0x7F, "=" excepted. Looking at seven bits, bit
// 7 of a byte of from_star is set from '*' on, that of other_than_equal for any
// byte but "=".
ub4 ordinary_characters(std::uint64_t word) {
  const std::uint64_t from_star = (word & each(0x7F)) + each(0x80 - '*');
  const std::uint64_t other_than_equal = ((word ^ each('=')) & each(0x7F)) + each(0x7F);
  const std::uint64_t ordinary_bytes = from_star & other_than_equal & ~word & each(0x80);
  return static_cast<ub4>(std::countr_zero(ordinary_bytes ^ each(0x80))) / 8;
}

// Moves a run of ordinary characters, eight at a time, while both sides have room
// for eight. What stands in the key behind them stays: a shorter key leaves the
// end of the one before.
void take_run(char *tns_key, Window &window, ub4 &length) {
  constexpr std::ptrdiff_t width = sizeof(std::uint64_t);
  while (window.end - window.at >= width && length + width <= max_key) {
    char *const to = tns_key + length;
    const std::uint64_t word = load_word(window.at);
    const ub4 count = ordinary_characters(word);
    store_word(to, blend(word, load_word(to), count));
    window.at += count;
    length += count;
    if (count < width) return;
  }
}

// Moves characters of the buffer into the key; true at the key's terminator,
// false when the buffer or the room for the key is exhausted.
bool take_key_characters(KZCITnsParseParams &params, KeyInProgress &key) {
  Window window(params);
  bool terminated = false;
  take_run(params.tns_key, window, key.length);
  for (; key.length < max_key && window.at != window.end; ++window.at) {
    const char c = *window.at;
    if (is_any_of(c, quote)) {
      key.quoting = key.quoting == TNS_PARSE_QUOTE ? TNS_PARSE_NORMAL : TNS_PARSE_QUOTE;
      continue;
    }
    terminated = key.quoting == TNS_PARSE_NORMAL && is_any_of(c, key_terminator);
    if (terminated) break;
    params.tns_key[key.length++] = c;
  }
  window.store(params);
  return terminated;
}

}  // namespace
}  // namespace kzoci::tns

using namespace kzoci::tns;

sword KZCITnsParseBlank(KZCITnsParseParams *parse_params) {
  if (parse_params == nullptr) return invalid_handle;
  do {
    const sword status = need_character(parse_params, "fail to call KZCITnsCheckBuffer");
    if (status != success) return status;
  } while (!pass_blanks(*parse_params));
  return success;
}

sword KZCITnsParseKey(KZCITnsParseParams *parse_params) {
  if (parse_params == nullptr) return invalid_handle;
  KeyInProgress key;
  for (bool complete = false; !complete;) {
    const sword status = need_character(parse_params, "fail to call kzci_tns_check buffer");
    if (status != success) return status;
    complete = take_key_characters(*parse_params, key) ||
               parse_params->buffer_pos < parse_params->buffer_len;
    // A key that fills its room is cut when more characters are at hand, and
    // refused when they would have to be read first.
    if (!complete && key.length == max_key) {
      KZ_LOG_ERROR("key size:%u bigger than %u", key.length, max_key);
      return failure;
    }
  }
  parse_params->tns_key_len = key.length;
  KZ_LOG_DEBUG("get key size:%u, key:%.*s", key.length, static_cast<int>(key.length),
               parse_params->tns_key);
  return success;
}

namespace {

// What a parenthesis or an equal sign does not need stands in functions of its
// own: most tokens are such, and the way to them stays short.

[[gnu::noinline]] sword refuse_token(KZCITnsTokenType expect_type, KZCITnsTokenType type) {
  KZ_LOG_WARN("expect token type is %d, but get %d", expect_type, type);
  return failure;
}

[[gnu::noinline]] sword take_key(KZCITnsParseParams *params) {
  const sword status = KZCITnsParseKey(params);
  if (status != success) KZ_LOG_ERROR("fail to call parse key, status:%d", status);
  return status;
}

// Consumes the token at buffer_pos if it has the expected type.
inline sword take_token(KZCITnsParseParams *params, KZCITnsTokenType expect_type) {
  const KZCITnsTokenType type = token_type(params->tns_buffer[params->buffer_pos]);
  if (type != expect_type) return refuse_token(expect_type, type);
  params->tns_token_type = type;
  if (type == TNS_KEY) return take_key(params);
  ++params->buffer_pos;
  return success;
}

[[gnu::noinline]] sword take_token_behind_blanks(KZCITnsParseParams *params,
                                                 KZCITnsTokenType expect_type) {
  const sword status = KZCITnsParseBlank(params);
  if (status == success) return take_token(params, expect_type);
  KZ_LOG_WARN("fail to call parse blank, status:%d", status);
  return status;
}

}  // namespace

sword KZCITnsParse(KZCITnsParseParams *parse_params, KZCITnsTokenType expect_type) {
  if (parse_params == nullptr) return invalid_handle;
  return stands_at_token(*parse_params) ? take_token(parse_params, expect_type)
                                        : take_token_behind_blanks(parse_params, expect_type);
}
