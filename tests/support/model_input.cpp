#include "model_input.h"

#include <algorithm>

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

bool Input::has_character() {
  if (at_ < taken_over_) return true;
  if (ended_ || taken_over_ == text_.size()) {
    ended_ = true;
    return false;
  }
  taken_over_ = std::min(taken_over_ + slice, text_.size());
  return true;
}

Step Input::skip_space() {
  for (; has_character(); ++at_) {
    const char c = text_[at_];
    // A zero byte ends a comment, but is no part of it.
    if (comment_ && (c == '\n' || c == '\0')) comment_ = false;
    if (!comment_ && c == '#') comment_ = true;
    if (!comment_ && !is_blank(c)) return Step::good;
  }
  return Step::end;
}

Step Input::expect(Kind kind) {
  if (skip_space() == Step::end) return Step::end;
  if (kind_of(text_[at_]) != kind) return Step::wrong;
  last_ = kind;
  if (kind == Kind::word) return read_word();
  ++at_;
  return Step::good;
}

Step Input::next() { return skip_space() == Step::end ? Step::end : expect(kind_of(text_[at_])); }

Step Input::read_word() {
  std::size_t length = 0;
  for (bool quoted = false; has_character(); ++at_) {
    const char c = text_[at_];
    if (length == word_limit || (!quoted && ends_word(c))) {
      held_length_ = length;
      return Step::good;
    }
    if (c == '"')
      quoted = !quoted;
    else
      held_[length++] = c;
    // The longest word may not be the last thing in its slice of the text.
    if (length < word_limit || at_ + 1 < taken_over_) continue;
    ++at_;
    return Step::wrong;
  }
  return Step::end;
}

bool Input::skip_block() {
  for (std::size_t depth = 1; has_character();) {
    const char c = text_[at_++];
    if (c == '(') ++depth;
    if (c == ')' && --depth == 0) return true;
  }
  return false;
}

}  // namespace model
