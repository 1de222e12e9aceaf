#include "scan/entry_tokens.h"

#include <algorithm>

#include "text/characters.h"

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
        // A zero byte ends a comment, too.
        pass(end_of(text_.find_first_of(std::string_view("\n\0", 2), at_)));
      } else {
        if (!is_sign(c) && depth_ <= 0 && opened_) break;
        if (tokens_.size() == most_entry_tokens || !take(c)) return std::nullopt;
      }
    }
    tokens_.push_back({'\0', false, at_, at_, column_, indentation_});
    return std::move(tokens_);
  }

 private:
  Offset end_of(std::size_t found) const {
    return static_cast<Offset>(std::min(found, text_.size()));
  }

  bool take(char c) {
    const Offset end = is_sign(c) ? at_ + 1 : end_of_word();
    if (end == 0) return false;
    if (!in_line_) indentation_ = column_;
    tokens_.push_back({is_sign(c) ? c : 'w', !in_line_, at_, end, column_, indentation_});
    depth_ += c == '(' ? 1 : c == ')' ? -1 : 0;
    opened_ = opened_ || c == '(';
    pass(end);
    return true;
  }

  // 0 for one whose quotes are not closed.
  Offset end_of_word() const {
    bool in_quotes = false;
    Offset at = at_;
    for (; at < text_.size(); ++at) {
      if (text_[at] == '"') in_quotes = !in_quotes;
      if (!in_quotes && (is_blank(text_[at]) || is_sign(text_[at]))) break;
    }
    return in_quotes ? 0 : at;
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
