#include "scan/tokens.h"

#include "text/characters.h"
#include "text/words.h"

namespace kztns {
namespace {

TokenKind kind_of(char c) {
  switch (c) {
    case '(':
      return TokenKind::open;
    case ')':
      return TokenKind::close;
    case '=':
      return TokenKind::equal;
    default:
      return TokenKind::word;
  }
}

}  // namespace

Token TokenReader::next() {
  at_ = pass_blanks(text_, at_);
  const Offset begin = at_;
  if (begin >= text_.size()) return {TokenKind::end, {begin, begin}};
  const TokenKind kind = kind_of(text_[begin]);
  if (kind != TokenKind::word) return {kind, {begin, ++at_}};
  at_ = end_of_whole_word(text_, begin).at;
  return {kind, {begin, at_}};
}

}  // namespace kztns
