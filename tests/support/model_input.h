// The tokens of a text, once more and made to be obviously right: it has the whole text and
// looks at one character at a time.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "kzoci/platform/types.h"
#include "model_log.h"

namespace model {

// In the order of their numbers in the log.
enum class Kind { equal, open, close, word };

enum class Step { good, wrong, end };

constexpr sword status_of(Step step) {
  if (step == Step::good) return 0;
  return step == Step::wrong ? -1 : 100;
}

// Where the text comes from, by the number in the log.
enum class Source { file = 1, literal = 2 };

inline constexpr std::size_t slice = 1024;      // the text is passed in parts of this size
inline constexpr std::size_t word_limit = 256;  // the longest word

class Input {
 public:
  explicit Input(std::string_view text, Log log = Log(nullptr), Source source = Source::literal)
      : text_(text), log_(log), source_(source) {}

  // Consumes the next token if it is of this kind.
  Step expect(Kind kind);

  // Consumes the next token, of whatever kind.
  Step next();

  // Passes over blanks and comments; end at the end of the text.
  Step skip_space();

  // Consumes characters up to the ")" that closes one open "("; false at the
  // end of the text. Quotes and comments do not matter.
  bool skip_block();

  // Consumes a word from the next character on.
  Step read_word();

  // Whether there is a next character; takes over the next part of the text for it.
  bool has_character();

  // Nothing is taken over any more.
  void end() { ended_ = true; }

  // The kind of the last token that was consumed, even if it was a word that
  // could not be read to its end.
  Kind last() const { return last_; }

  // The text of the last word. A word that could not be read to its end stands
  // over the beginning of the word before, whose length holds on.
  std::string_view word() const { return std::string_view(held_).substr(0, held_length_); }

  // All that is held of words, beyond the last one's length too.
  const std::string &held() const { return held_; }

  std::size_t position() const { return at_; }
  std::string_view at_hand() const { return text_.substr(at_, taken_over_ - at_); }
  bool has_ended() const { return ended_; }
  bool in_comment() const { return comment_; }

 private:
  Step token(Kind kind);
  Step key();

  std::string_view text_;
  Log log_;
  Source source_;
  std::size_t at_ = 0;
  std::size_t taken_over_ = 0;
  bool ended_ = false;
  bool comment_ = false;
  Kind last_ = Kind::equal;
  std::string held_ = std::string(word_limit, '\0');
  std::size_t held_length_ = 0;
};

}  // namespace model
