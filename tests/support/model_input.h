// The tokens of a text, as a builder asks for them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace model {

enum class Kind { equal, open, close, word };

enum class Step { good, wrong, end };

inline constexpr std::size_t slice = 1024;      // the text is handed over in parts of this size
inline constexpr std::size_t word_limit = 256;  // the longest word

class Input {
 public:
  explicit Input(std::string_view text) : text_(text) {}

  // Consumes the next token if it is of this kind.
  Step expect(Kind kind);

  // Passes over blanks and comments; false at the end of the text.
  bool skip_space();

  // Consumes characters up to the ")" that closes one open "("; false at the
  // end of the text. Quotes and comments do not matter.
  bool skip_block();

  // The kind of the last token that was consumed, even if it was a word that
  // could not be read to its end.
  Kind last() const { return last_; }

  // The text of the last word. A word that could not be read to its end stands
  // over the beginning of the word before, whose length holds on.
  std::string_view word() const { return std::string_view(held_).substr(0, held_length_); }

 private:
  Step read_word();

  std::string_view text_;
  std::size_t at_ = 0;
  Kind last_ = Kind::equal;
  std::string held_ = std::string(word_limit, '\0');
  std::size_t held_length_ = 0;
};

}  // namespace model
