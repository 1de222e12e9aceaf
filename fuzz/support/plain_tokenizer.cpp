#include "plain_tokenizer.h"

#include <algorithm>
#include <cstring>

#include "check.h"

namespace fuzz {
namespace {

constexpr sword success = 0;
constexpr sword failure = -1;
constexpr sword no_data = 100;

constexpr std::size_t slice = 1024;
constexpr std::size_t max_key = 256;

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool ends_key(char c) { return is_blank(c) || c == '(' || c == ')' || c == '='; }

KZCITnsTokenType type_of(char c) {
  if (c == '(') return TNS_LEFT_PARENTHESES;
  if (c == ')') return TNS_RIGHT_PARENTHESES;
  return c == '=' ? TNS_EQUAL_SIGN : TNS_KEY;
}

}  // namespace

sword PlainTokenizer::check_buffer() {
  if (at_ < loaded_) return success;
  if (!is_eof_ && loaded_ < text_.size()) {
    loaded_ = std::min(loaded_ + slice, text_.size());
    return success;
  }
  is_eof_ = true;
  return failure;
}

sword PlainTokenizer::parse_blank() {
  while (has_character()) {
    const char c = text_[at_];
    if (is_comment_ && (c == '\n' || c == '\0')) {
      is_comment_ = false;
    } else if (is_comment_ || is_blank(c)) {
      ++at_;
    } else if (c == '#') {
      is_comment_ = true;
    } else {
      return success;
    }
  }
  return no_data;
}

sword PlainTokenizer::parse_key() {
  bool quoted = false;
  std::size_t length = 0;
  for (bool complete = false; !complete;) {
    if (length == max_key && at_ == loaded_) return failure;
    if (!has_character()) return no_data;
    const char c = text_[at_];
    complete = length == max_key || (!quoted && ends_key(c));
    if (complete) continue;
    if (c == '"')
      quoted = !quoted;
    else
      key_[length++] = c;
    ++at_;
  }
  key_length_ = length;
  return success;
}

sword PlainTokenizer::parse(KZCITnsTokenType expected) {
  const sword status = parse_blank();
  if (status != success) return status;
  if (type_of(text_[at_]) != expected) return failure;
  last_token_ = expected;
  if (expected == TNS_KEY) return parse_key();
  ++at_;
  return success;
}

sword PlainTokenizer::service_skip() {
  constexpr char reserved[] = "KZCISYSTEMVARIABLES";
  if (std::memcmp(key_, reserved, std::min(key_length_, sizeof reserved)) == 0) {
    is_eof_ = true;
    return success;
  }
  const sword status = parse(TNS_LEFT_PARENTHESES);
  if (status != success) return status;
  for (std::size_t depth = 1; has_character();) {
    const char c = text_[at_++];
    if (c == '(') ++depth;
    if (c == ')' && --depth == 0) return success;
  }
  return no_data;
}

void PlainTokenizer::check_state(const KZCITnsParseParams &params) const {
  check(params.buffer_pos <= params.buffer_len && params.buffer_len <= slice,
        "position %u in a buffer of %u", params.buffer_pos, params.buffer_len);
  const std::size_t at_hand = params.buffer_len - params.buffer_pos;
  check(at_hand == loaded_ - at_, "%zu characters at hand at position %zu, should be %zu", at_hand,
        at_, loaded_ - at_);
  check(std::memcmp(params.tns_buffer + params.buffer_pos, text_.data() + at_, at_hand) == 0,
        "other characters at hand at position %zu", at_);
  check(params.is_eof == (is_eof_ ? 1 : 0), "is_eof is %d at position %zu", params.is_eof, at_);
  check(params.is_comment == (is_comment_ ? 1 : 0), "is_comment is %d at position %zu",
        params.is_comment, at_);
  check(params.tns_token_type == last_token_, "last token %d at position %zu",
        params.tns_token_type, at_);
  check(params.tns_key_len == key_length_, "key of %u characters at position %zu",
        params.tns_key_len, at_);
  check(std::memcmp(params.tns_key, key_, sizeof key_) == 0, "another key at position %zu", at_);
}

}  // namespace fuzz
