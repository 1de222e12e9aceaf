#include "plain_tokenizer.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "check.h"

namespace fuzz {
namespace {

using model::Kind;
using model::status_of;

constexpr std::pair<KZCITnsTokenType, Kind> kinds[] = {{TNS_EQUAL_SIGN, Kind::equal},
                                                       {TNS_LEFT_PARENTHESES, Kind::open},
                                                       {TNS_RIGHT_PARENTHESES, Kind::close},
                                                       {TNS_KEY, Kind::word}};

Kind kind_of(KZCITnsTokenType type) {
  for (const auto &[token, kind] : kinds)
    if (token == type) return kind;
  return Kind::word;
}

}  // namespace

sword PlainTokenizer::check_buffer() { return input_.has_character() ? 0 : -1; }

sword PlainTokenizer::parse_blank() { return status_of(input_.skip_space()); }

sword PlainTokenizer::parse_key() { return status_of(input_.read_word()); }

sword PlainTokenizer::parse(KZCITnsTokenType expected) {
  return status_of(input_.expect(kind_of(expected)));
}

sword PlainTokenizer::service_skip() {
  constexpr char reserved[] = "KZCISYSTEMVARIABLES";
  if (std::memcmp(key().data(), reserved, std::min(key().size(), sizeof reserved)) == 0) {
    input_.end();
    return 0;
  }
  const sword status = parse(TNS_LEFT_PARENTHESES);
  if (status != 0) return status;
  return input_.skip_block() ? 0 : 100;
}

void PlainTokenizer::check_state(const KZCITnsParseParams &params) const {
  const std::size_t at = position();
  check(params.buffer_pos <= params.buffer_len && params.buffer_len <= model::slice,
        "position %u in a buffer of %u", params.buffer_pos, params.buffer_len);
  const std::string_view seen(params.tns_buffer + params.buffer_pos,
                              params.buffer_len - params.buffer_pos);
  check(seen.size() == input_.at_hand().size(),
        "%zu characters at hand at position %zu, should be %zu", seen.size(), at,
        input_.at_hand().size());
  check(seen == input_.at_hand(), "other characters at hand at position %zu", at);
  check(params.is_eof == (input_.has_ended() ? 1 : 0), "is_eof is %d at position %zu",
        params.is_eof, at);
  check(params.is_comment == (input_.in_comment() ? 1 : 0), "is_comment is %d at position %zu",
        params.is_comment, at);
  check(kind_of(params.tns_token_type) == input_.last(), "last token %d at position %zu",
        params.tns_token_type, at);
  check(params.tns_key_len == key().size(), "key of %u characters at position %zu",
        params.tns_key_len, at);
  static_assert(sizeof params.tns_key == model::word_limit);
  check(std::memcmp(params.tns_key, input_.held().data(), sizeof params.tns_key) == 0,
        "another key at position %zu", at);
}

}  // namespace fuzz
