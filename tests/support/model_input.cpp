#include "model_input.h"

namespace model {
namespace {

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

Kind kind_of(char c) {
  if (c == '(') return Kind::open;
  if (c == ')') return Kind::close;
  return c == '=' ? Kind::equal : Kind::word;
}

bool ends_word(char c) { return is_blank(c) || kind_of(c) != Kind::word; }

}  // namespace

bool Input::skip_space() {
  bool comment = false;
  for (; at_ < text_.size(); ++at_) {
    const char c = text_[at_];
    // A zero byte ends a comment, but is no part of it.
    if (comment && (c == '\n' || c == '\0')) comment = false;
    if (!comment && c == '#') comment = true;
    if (!comment && !is_blank(c)) return true;
  }
  return false;
}

Step Input::expect(Kind kind) {
  if (!skip_space()) return Step::end;
  if (kind_of(text_[at_]) != kind) return Step::wrong;
  last_ = kind;
  if (kind == Kind::word) return read_word();
  ++at_;
  return Step::good;
}

Step Input::read_word() {
  std::size_t length = 0;
  bool quoted = false;
  for (; at_ < text_.size(); ++at_) {
    const char c = text_[at_];
    if (length == word_limit || (!quoted && ends_word(c))) {
      held_length_ = length;
      return Step::good;
    }
    if (c == '"') {
      quoted = !quoted;
      continue;
    }
    held_[length++] = c;
    // The longest word may not be the last thing in its slice of the text.
    const std::size_t behind = at_ + 1;
    if (length == word_limit && (behind % slice == 0 || behind == text_.size())) {
      at_ = behind;
      return Step::wrong;
    }
  }
  return Step::end;
}

bool Input::skip_block() {
  std::size_t depth = 1;
  while (at_ < text_.size()) {
    const char c = text_[at_++];
    if (c == '(') ++depth;
    if (c == ')' && --depth == 0) return true;
  }
  return false;
}

}  // namespace model
