#include "scan/tokens.h"

#include "scan/written_entries.h"
#include "text/characters.h"

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
  bool in_quotes = false;
  for (; at_ < text_.size(); ++at_) {
    const char c = text_[at_];
    if (c == '"') in_quotes = !in_quotes;
    if (!in_quotes && word_ends.find(c) != std::string_view::npos) break;
  }
  return {kind, {begin, at_}};
}

}  // namespace kztns
