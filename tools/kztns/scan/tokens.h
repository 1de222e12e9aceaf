// The tokens of a names file, as the module reads them but for the length of words.
#pragma once

#include <string_view>

#include "trace/build_trace.h"

namespace kztns {

enum class TokenKind { open, close, equal, word, end };

struct Token {
  TokenKind kind;
  Span span;
};

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

}  // namespace kztns
