// The tokens of a names file, as the module reads them but for the length of words.
#pragma once

#include <algorithm>
#include <string_view>

#include "text/words.h"

namespace kztns {

enum class TokenKind { open, close, equal, word, end };

struct Token {
  TokenKind kind;
  Span span;
};

// How many more parentheses are open after a token.
inline int depth_change(const Token &token) {
  if (token.kind == TokenKind::open) return 1;
  return token.kind == TokenKind::close ? -1 : 0;
}

class TokenReader {
 public:
  // Reads from a place outside of words and comments on.
  explicit TokenReader(std::string_view text, Offset from = 0) : text_(text), at_(from) {}

  // The next one; at the end of the text an empty one of kind end.
  Token next();

 private:
  std::string_view text_;
  Offset at_;
};

// Calls visit(begin, end) for the comments between the tokens of a part of a text, which begins
// outside of both.
template <class Visit>
void for_each_comment(std::string_view text, Offset from, Offset to, const Visit &visit) {
  TokenReader tokens(text.substr(0, to), from);
  for (bool more = true; more;) {
    const Token token = tokens.next();
    more = token.kind != TokenKind::end;
    for (Offset at = from; at < token.span.begin;) {
      if (text[at] != '#') {
        ++at;
        continue;
      }
      const Offset end = std::min(end_of_comment(text, at), token.span.begin);
      visit(at, end);
      at = end;
    }
    from = token.span.end;
  }
}

}  // namespace kztns
