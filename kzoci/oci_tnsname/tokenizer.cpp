// From characters to tokens.
//
//   token   := "(" | ")" | "=" | key
//   key     := { character | quoted }        up to a blank, "(", ")" or "="
//   quoted  := '"' { any but '"' } '"'
//   blank   := space | tab | line feed | carriage return
//   comment := "#" { any but line feed and zero byte }     only where a token may begin
//
// Blanks and comments may precede every token.
#include "tokenizer.h"

#include <cstddef>

#include "character_class.h"
#include "key_run.h"
#include "log.h"
#include "set_to_zero.h"

namespace kzoci::tns {

void begin_parse(KZCITnsParseParams *params, int mode) {
  constexpr std::size_t after_buffer = offsetof(KZCITnsParseParams, tns_key);
  set_to_zero(reinterpret_cast<char *>(params) + after_buffer, sizeof *params - after_buffer);
  params->mode = mode;
}

sword refill(KZCITnsParseParams *params, const Message<> &refill_failed) {
  const sword status = KZCITnsCheckBuffer(params);
  if (status == success) return success;
  if (params->is_eof == 1) {
    KZ_LOG(message::input_ended);
    return no_data;
  }
  KZ_LOG(refill_failed);
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
bool is_at_token(const KZCITnsParseParams &params) {
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

// A key that is being read into tns_key, across any number of refills.
struct KeyInProgress {
  ub4 length = 0;
  KZCITnsParseStatus quoting = TNS_PARSE_NORMAL;
};

// Moves characters of the buffer into the key; true at the key's terminator,
// false when the buffer or the room for the key is exhausted.
bool take_key_characters(KZCITnsParseParams &params, KeyInProgress &key) {
  Window window(params);
  bool terminated = false;
  const ub4 run = move_key_run<KeyBlock>(params.tns_key + key.length, max_key - key.length,
                                         window.at, static_cast<ub4>(window.end - window.at));
  window.at += run;
  key.length += run;
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
    const sword status = need_character(parse_params, message::blank_refill_failed);
    if (status != success) return status;
  } while (!pass_blanks(*parse_params));
  return success;
}

namespace {

[[gnu::noinline]] sword read_key(KZCITnsParseParams *params) {
  KeyInProgress key;
  for (bool complete = false; !complete;) {
    const sword status = need_character(params, message::refill_failed);
    if (status != success) return status;
    complete = take_key_characters(*params, key) || params->buffer_pos < params->buffer_len;
    // A key that fills its room is cut when more characters are at hand, and
    // refused when they would have to be read first.
    if (!complete && key.length == max_key) {
      KZ_LOG(message::key_too_long, key.length, max_key);
      return failure;
    }
  }
  finish_key(params, key.length);
  return success;
}

}  // namespace

sword KZCITnsParseKey(KZCITnsParseParams *parse_params) {
  if (parse_params == nullptr) return invalid_handle;
  return take_short_key(parse_params) ? success : read_key(parse_params);
}

namespace {

// Most tokens that come here follow blanks. What they do not need is in separate functions, so
// that the code for them stays short.

[[gnu::noinline]] sword refuse_token(KZCITnsTokenType expect_type, KZCITnsTokenType type) {
  KZ_LOG(message::other_token, expect_type, type);
  return failure;
}

sword take_key(KZCITnsParseParams *params) {
  return reported(KZCITnsParseKey(params), message::key_failed);
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

// The long way to a token: over comments and refills.
[[gnu::noinline]] sword take_token_after_blanks(KZCITnsParseParams *params,
                                                KZCITnsTokenType expect_type) {
  const sword status = KZCITnsParseBlank(params);
  if (status == success) return take_token(params, expect_type);
  KZ_LOG(message::blank_failed, status);
  return status;
}

// The token that comes next.
inline sword next_token(KZCITnsParseParams *params, KZCITnsTokenType expect_type) {
  pass_plain_blanks(*params);
  return is_at_token(*params) ? take_token(params, expect_type)
                              : take_token_after_blanks(params, expect_type);
}

}  // namespace

sword KZCITnsParse(KZCITnsParseParams *parse_params, KZCITnsTokenType expect_type) {
  if (parse_params == nullptr) return invalid_handle;
  return next_token(parse_params, expect_type);
}

// Flatten makes of it one function, in which only the noinline ones remain calls.
[[gnu::flatten]] sword kzoci::tns::parse_token(KZCITnsParseParams *params, KZCITnsTokenType type) {
  return reported(next_token(params, type), message::token_failed);
}
