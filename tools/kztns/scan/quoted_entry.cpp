#include "scan/quoted_entry.h"

#include <algorithm>

#include "scan/item_text.h"
#include "scan/item_words.h"
#include "text/characters.h"
#include "text/words.h"

namespace kztns {
namespace {

// What ends a name in other notations, too.
constexpr std::string_view name_ends = " \t\r\n()=\":,;#";

// Reads the characters of one line.
class Line {
 public:
  Line(std::string_view text, Offset at) : text_(text.substr(0, end_of_line(text, at))), at_(at) {}

  Offset at() const { return at_; }
  std::string_view rest() const { return text_.substr(at_); }

  bool take(char c) {
    if (!rest().starts_with(c)) return false;
    ++at_;
    return true;
  }

  // Which quote it was; a zero byte for none.
  char take_quote() { return take('"') ? '"' : take('\'') ? '\'' : '\0'; }

  void pass_blanks() {
    while (!rest().empty() && is_blank(text_[at_])) ++at_;
  }

  // In these quotes; a zero byte for none.
  Span take_name(char quote) {
    const Offset begin = at_;
    const std::string_view name = text_.substr(at_, longest_token);
    const std::size_t closed = quote == '\0' ? name.npos : name.find(quote);
    at_ += static_cast<Offset>(std::min({name.find_first_of(name_ends), closed, name.size()}));
    return {begin, at_};
  }

  // "=", ":" or ":="
  bool take_equal() {
    const bool colon = take(':');
    return take('=') || colon;
  }

  // "(...)", without escapes
  std::optional<Span> take_block() {
    const Offset begin = at_;
    if (!rest().starts_with('(')) return std::nullopt;
    const std::optional<Offset> end = end_of_item(text_, begin);
    if (!end || text_.substr(begin, *end - begin).find('\\') != std::string_view::npos)
      return std::nullopt;
    at_ = *end;
    return Span{begin, at_};
  }

 private:
  std::string_view text_;
  Offset at_;
};

}  // namespace

std::optional<QuotedEntry> quoted_entry_at(std::string_view text, Offset at) {
  Line line(text, at);
  const char name_quote = line.take_quote();
  const Span name = line.take_name(name_quote);
  const bool is_open = name_quote != '\0' && !line.take(name_quote);
  line.pass_blanks();
  if (name.begin == name.end || !line.take_equal()) return std::nullopt;
  line.pass_blanks();
  const char value_quote = line.take_quote();
  const auto value = line.take_block();
  // All that is opened is closed, and something is.
  const char open_quote = is_open ? name_quote : value_quote;
  if (!value || is_open == (value_quote != '\0') || !line.take(open_quote)) return std::nullopt;
  if (!line.take(',')) line.take(';');
  QuotedEntry entry = {name, *value, line.at()};
  line.pass_blanks();
  const bool is_key = static_cast<bool>(item_word(text.substr(name.begin, name.end - name.begin)));
  const bool ends = line.rest().empty() || line.rest().starts_with('#');
  return ends && !is_key ? std::optional(entry) : std::nullopt;
}

}  // namespace kztns
