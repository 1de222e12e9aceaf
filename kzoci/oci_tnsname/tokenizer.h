// The short ways to the next token, inline, for builders and for passing over entries;
// tokenizer.cpp has the long ones.
#pragma once

#include <cstdint>

#include "character_class.h"
#include "key_run.h"
#include "kzoci/oci_tnsname.h"
#include "log.h"
#include "messages.h"
#include "status.h"

namespace kzoci::tns {

// Makes a parse state with nothing read. The buffer is filled before it is read and
// need not be zero; the key must be, since messages print what older keys left.
void begin_parse(KZCITnsParseParams *params, int mode);

// Reads more input. At its end it logs so and returns no_data; on any other
// failure it logs refill_failed.
sword refill(KZCITnsParseParams *params, const Message<> &refill_failed);

// Makes sure that a character is at hand.
inline sword need_character(KZCITnsParseParams *params, const Message<> &refill_failed) {
  return params->buffer_pos < params->buffer_len ? success : refill(params, refill_failed);
}

// The character of a parenthesis or an equal sign.
constexpr char sign_character(KZCITnsTokenType sign) {
  if (sign == TNS_EQUAL_SIGN) return '=';
  return sign == TNS_LEFT_PARENTHESES ? '(' : ')';
}

// Consumes the parenthesis or equal sign of this type, never a key, if it is the next character.
inline bool take_sign(KZCITnsParseParams *params, KZCITnsTokenType sign) {
  if (params->buffer_pos >= params->buffer_len || params->is_comment == 1 ||
      params->tns_buffer[params->buffer_pos] != sign_character(sign))
    return false;
  params->tns_token_type = sign;
  ++params->buffer_pos;
  return true;
}

// Ends the reading of a key into tns_key.
inline void finish_key(KZCITnsParseParams *params, ub4 length) {
  params->tns_key_len = length;
  KZ_LOG(message::key_read, length, static_cast<int>(length), params->tns_key);
}

// Consumes the key at buffer_pos if it is a short one: of ordinary characters only, and
// followed by its terminator within the buffer, as most are.
inline bool take_short_key(KZCITnsParseParams *params) {
  const ub4 at = params->buffer_pos;
  if (std::uint64_t{at} + KeyBlock::width >= params->buffer_len) return false;
  const char *const key = params->tns_buffer + at;
  const ub4 length = KeyBlock::ordinary(key);
  if (length == 0 || !is_any_of(key[length], key_terminator)) return false;
  KeyBlock::move(params->tns_key, key, length);
  params->buffer_pos = at + length;
  finish_key(params, length);
  return true;
}

// Consumes the token of this type if it is the next character, or a short key there. Most
// tokens are, so this short way to them is inline.
inline bool take_at_once(KZCITnsParseParams *params, KZCITnsTokenType type) {
  if (type != TNS_KEY) return take_sign(params, type);
  if (params->is_comment == 1 || !take_short_key(params)) return false;
  params->tns_token_type = TNS_KEY;
  return true;
}

// Consumes blanks of the buffer as far as no comment is among them.
inline void pass_plain_blanks(KZCITnsParseParams &params) {
  if (params.is_comment == 1) return;
  ub4 at = params.buffer_pos;
  while (at < params.buffer_len && is_any_of(params.tns_buffer[at], blank)) ++at;
  params.buffer_pos = at;
}

// KZCITnsParse, with its failure logged.
sword parse_token(KZCITnsParseParams *params, KZCITnsTokenType type);

// Consumes a token of this type; a failure is logged and its status returned.
inline sword expect(KZCITnsParseParams *params, KZCITnsTokenType type) {
  return take_at_once(params, type) ? success : parse_token(params, type);
}

// The same where blanks usually precede the token.
inline sword expect_after_blanks(KZCITnsParseParams *params, KZCITnsTokenType type) {
  pass_plain_blanks(*params);
  return expect(params, type);
}

}  // namespace kzoci::tns
