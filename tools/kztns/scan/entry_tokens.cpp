#include "scan/entry_tokens.h"

#include "text/characters.h"
#include "text/words.h"

namespace kztns {
namespace {

class Tokenizer {
 public:
  Tokenizer(std::string_view text, Offset body, Offset end)
      : text_(text.substr(0, end)), at_(body) {
    const std::size_t line = body == 0 ? std::string_view::npos : text_.rfind('\n', body - 1);
    for (Offset at = line == std::string_view::npos ? 0 : static_cast<Offset>(line) + 1; at < body;
         ++at)
      pass_column(text_[at]);
  }

  std::optional<std::vector<EntryToken>> run() {
    while (at_ < text_.size()) {
      const char c = text_[at_];
      if (is_blank(c)) {
        pass(at_ + 1);
      } else if (c == '#') {
        pass(end_of_comment(text_, at_));
      } else {
        if (!is_sign(c) && depth_ <= 0 && opened_) break;
        if (tokens_.size() == most_entry_tokens || !take(c)) return std::nullopt;
      }
    }
    tokens_.push_back({'\0', false, at_, at_, column_, indentation_});
    return std::move(tokens_);
  }

 private:
  bool take(char c) {
    const WordEnd end = is_sign(c) ? WordEnd{at_ + 1, true} : end_of_whole_word(text_, at_);
    if (!end.closed) return false;
    if (!in_line_) indentation_ = column_;
    tokens_.push_back({is_sign(c) ? c : 'w', !in_line_, at_, end.at, column_, indentation_});
    depth_ += c == '(' ? 1 : c == ')' ? -1 : 0;
    opened_ = opened_ || c == '(';
    pass(end.at);
    return true;
  }

  void pass(Offset to) {
    for (; at_ < to; ++at_) pass_column(text_[at_]);
  }

  void pass_column(char c) {
    if (c == '\n') {
      column_ = 0;
      in_line_ = false;
      return;
    }
    if (!in_line_ && !is_blank(c)) {
      indentation_ = column_;
      in_line_ = true;
    }
    column_ += c == '\t' ? 8 - column_ % 8 : 1;
  }

  std::string_view text_;
  Offset at_;
  std::uint32_t column_ = 0;
  std::uint32_t indentation_ = 0;
  bool in_line_ = false;  // whether the line has a token before this place
  bool opened_ = false;   // whether a "(" came
  std::int64_t depth_ = 0;
  std::vector<EntryToken> tokens_;
};

}  // namespace

std::optional<std::vector<EntryToken>> entry_tokens(std::string_view text, Offset body,
                                                    Offset end) {
  return Tokenizer(text, body, end).run();
}

}  // namespace kztns
