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

#include <array>

#include "log.h"
#include "status.h"

namespace kzoci::tns {

sword need_character(KZCITnsParseParams *params, const char *failure_text) {
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

constexpr bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

constexpr auto key_terminators = [] {
  std::array<bool, 256> table{};
  for (const char c : {' ', '\t', '\n', '\r', '(', ')', '='})
    table[static_cast<unsigned char>(c)] = true;
  return table;
}();

constexpr bool ends_key(char c) { return key_terminators[static_cast<unsigned char>(c)]; }

// Types of the tokens that begin with the characters "(" to "=".
constexpr auto token_classes = [] {
  std::array<KZCITnsTokenType, '=' - '(' + 1> classes{};
  classes.fill(TNS_KEY);
  classes['(' - '('] = TNS_LEFT_PARENTHESES;
  classes[')' - '('] = TNS_RIGHT_PARENTHESES;
  classes['=' - '('] = TNS_EQUAL_SIGN;
  return classes;
}();

constexpr KZCITnsTokenType token_class(char c) {
  return c < '(' || c > '=' ? TNS_KEY : token_classes[static_cast<std::size_t>(c - '(')];
}

// Consumes blanks and comments of the buffer; true when another character is
// at buffer_pos, false at the buffer's end.
bool pass_blanks(KZCITnsParseParams &params) {
  for (; params.buffer_pos < params.buffer_len; ++params.buffer_pos) {
    const char c = params.tns_buffer[params.buffer_pos];
    if (params.is_comment == 1 && c != '\n' && c != '\0') continue;
    params.is_comment = c == '#';
    if (!is_blank(c) && c != '#') return true;
  }
  return false;
}

// A key on its way into tns_key; it may run across any number of refills.
struct KeyInProgress {
  ub4 length = 0;
  KZCITnsParseStatus quoting = TNS_PARSE_NORMAL;
};

// Moves characters of the buffer into the key; true at the key's terminator,
// false when the buffer or the room for the key is exhausted.
bool take_key_characters(KZCITnsParseParams &params, KeyInProgress &key) {
  for (; key.length < max_key && params.buffer_pos < params.buffer_len; ++params.buffer_pos) {
    const char c = params.tns_buffer[params.buffer_pos];
    if (c == '"')
      key.quoting = key.quoting == TNS_PARSE_QUOTE ? TNS_PARSE_NORMAL : TNS_PARSE_QUOTE;
    else if (key.quoting == TNS_PARSE_NORMAL && ends_key(c))
      return true;
    else
      params.tns_key[key.length++] = c;
  }
  return false;
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

sword KZCITnsParse(KZCITnsParseParams *parse_params, KZCITnsTokenType expect_type) {
  if (parse_params == nullptr) return invalid_handle;
  sword status = KZCITnsParseBlank(parse_params);
  if (status != success) {
    KZ_LOG_WARN("fail to call parse blank, status:%d", status);
    return status;
  }
  const KZCITnsTokenType type = token_class(parse_params->tns_buffer[parse_params->buffer_pos]);
  if (type != expect_type) {
    KZ_LOG_WARN("expect token type is %d, but get %d", expect_type, type);
    return failure;
  }
  parse_params->tns_token_type = type;
  if (type != TNS_KEY) {
    ++parse_params->buffer_pos;
    return success;
  }
  status = KZCITnsParseKey(parse_params);
  if (status != success) KZ_LOG_ERROR("fail to call parse key, status:%d", status);
  return status;
}
