#include "model_input.h"

#include <algorithm>

#include "model_words.h"

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
  if (!ended_) log_.debug("read data mode=", static_cast<int>(source_));
  if (ended_ || taken_over_ == text_.size()) {
    ended_ = true;
    log_.debug("reach eof");
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

Step Input::key() {
  const Step step = read_word();
  if (step != Step::good) log_.error("fail to call parse key, status:", status_of(step));
  return step;
}

Step Input::token(Kind kind) {
  if (skip_space() == Step::end) {
    log_.warn("fail to call parse blank, status:", status_of(Step::end));
    return Step::end;
  }
  const Kind met = kind_of(text_[at_]);
  if (met != kind) {
    log_.warn("expect token type is ", static_cast<int>(kind), ", but get ", static_cast<int>(met));
    return Step::wrong;
  }
  last_ = kind;
  if (kind == Kind::word) return key();
  ++at_;
  return Step::good;
}

Step Input::expect(Kind kind) {
  const Step step = token(kind);
  if (step != Step::good) log_.warn("fail to call KZCITnsParse, status:", status_of(step));
  return step;
}

Step Input::next() { return skip_space() == Step::end ? Step::end : expect(kind_of(text_[at_])); }

Step Input::read_word() {
  std::size_t length = 0;
  for (bool quoted = false; has_character(); ++at_) {
    const char c = text_[at_];
    if (length == word_limit || (!quoted && ends_word(c))) {
      held_length_ = length;
      log_.debug("get key size:", length, ", key:", printed(word()));
      return Step::good;
    }
    if (c == '"')
      quoted = !quoted;
    else
      held_[length++] = c;
    // The longest word may not be the last thing in its slice of the text.
    if (length < word_limit || at_ + 1 < taken_over_) continue;
    ++at_;
    log_.error("key size:", length, " bigger than ", word_limit);
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
