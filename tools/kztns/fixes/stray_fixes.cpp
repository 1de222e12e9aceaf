#include "fixes/stray_fixes.h"

#include <algorithm>

#include "fixes/bare_items.h"
#include "fixes/file_fixes.h"
#include "fixes/foreign_keys.h"
#include "kzoci/platform/letter_case.h"
#include "scan/item_words.h"
#include "scan/stray_text.h"
#include "scan/tokens.h"
#include "text/characters.h"
#include "text/words.h"

namespace kztns {
namespace {

struct Brackets {
  std::string_view open;
  std::string_view close;
};

constexpr Brackets other_brackets[] = {
    {"{", "}"}, {"[", "]"}, {"\xEF\xBC\x88", "\xEF\xBC\x89"}};  // the last ones are full-width

ItemWord word_at(std::string_view text, Offset at) {
  return item_word(text.substr(at, end_of_word(text, at) - at));
}

bool stands_at(std::string_view text, Offset at, char sign) {
  return at < text.size() && text[at] == sign;
}

class StrayText {
 public:
  StrayText(const FaultPlace &place, Diagnosis &diagnosis)
      : place_(place), text_(place.text()), diagnosis_(diagnosis), at_(place.fault().at) {}

  bool mend() {
    if (at_ >= text_.size() || (place_.item() == nullptr && !is_of_entry())) return false;
    switch (diagnosis_.rule) {
      case Rule::unquoted_value:
      case Rule::missing_value:
      case Rule::bad_protocol:
      case Rule::bad_word:
      case Rule::bad_number:
        return mend_signs(begin_of_value());
      case Rule::no_block:
      case Rule::value_for_block:
      case Rule::missing_close:
        return mend_continuations() || mend_signs(at_) || mend_separators() || mend_diff() ||
               mend_comment() || mend_brackets() || mend_repeated_name() || mend_bare_items() ||
               mend_words();
      default:
        return false;
    }
  }

 private:
  bool is_of_entry() const { return diagnosis_.rule == Rule::no_block; }
  bool is_between_items() const { return diagnosis_.rule == Rule::missing_close; }

  // Where the value of the item at fault begins as it is written, signs at its beginning included.
  Offset begin_of_value() const {
    const std::optional<WrittenItem> item = item_at(text_, place_.item()->open);
    return item ? pass_blanks(text_, item->value) : static_cast<Offset>(text_.size());
  }

  bool mended(std::string remedy, Fix fix) {
    diagnosis_.remedy = std::move(remedy);
    diagnosis_.fix = std::move(fix);
    return true;
  }

  // Where the text goes on after some characters; the end where it has only those.
  Offset after(std::string_view characters, Offset at) const {
    return static_cast<Offset>(std::min(text_.find_first_not_of(characters, at), text_.size()));
  }

  std::string remedy_of_removal(Offset at, Offset end) const {
    return "remove " + quoted(excerpt(trimmed(text_.substr(at, end - at))));
  }

  // Whether the word at a place ends a line on which a shell would go on.
  bool is_continuation(Span word) const {
    if (place_.slice(word) != "\\") return false;
    const std::size_t next = text_.find_first_not_of(blanks_of_line, word.end);
    return next == std::string_view::npos || text_[next] == '\n';
  }

  Edit without_blanks_before(Span word) const {
    const std::size_t last = text_.substr(0, word.begin).find_last_not_of(" \t");
    return {static_cast<Offset>(last + 1), word.end, {}};
  }

  // All of the entry at once: who writes one writes them on each line.
  bool mend_continuations() {
    std::vector<Edit> edits;
    std::int64_t depth = 0;
    TokenReader tokens(text_, at_);
    for (Token token = tokens.next(); token.kind != TokenKind::end; token = tokens.next()) {
      if (is_continuation(token.span))
        edits.push_back(without_blanks_before(token.span));
      else if (edits.empty() || (is_of_entry() && depth == 0 && token.kind != TokenKind::open))
        break;
      if (token.kind == TokenKind::open) ++depth;
      if (token.kind == TokenKind::close) --depth;
    }
    if (edits.empty()) return false;
    return mended("remove \"\\\": an entry goes on by itself", safe_fix(std::move(edits)));
  }

  // "==" and "=>", which other notations have for "=": after each key of the entry.
  bool mend_signs(Offset at) {
    const Offset end = after("=>", at);
    if (begins_line(text_, at) && text_[at] == '>') return false;  // of a quoted mail
    if (end == at || is_between_items() || !begins_value(pass_blanks(text_, end))) return false;
    Fix fix = safe_fix({});
    std::int64_t depth = 0;
    Token before[2] = {{TokenKind::open, {at, at}}, {TokenKind::word, {at, at}}};
    Token token = {TokenKind::equal, {at, at}};
    TokenReader tokens(text_, at);
    while (token.kind != TokenKind::end) {
      const bool after_key = token.kind == TokenKind::equal && before[1].kind == TokenKind::word &&
                             before[0].kind == TokenKind::open;
      if (token.kind == TokenKind::open) ++depth;
      if (token.kind == TokenKind::close) --depth;
      before[0] = std::exchange(before[1], token);
      token = tokens.next();
      if (after_key && is_sign_of_equal(token)) {
        add_removal_of_signs(token.span.begin, fix);
        while (token.kind != TokenKind::end && token.span.begin < fix.edits.back().end)
          token = tokens.next();
      }
      const bool entry_ends = is_of_entry() && depth == 0 && token.kind != TokenKind::open;
      if (entry_ends && token.span.begin >= end) break;
    }
    return mended(remedy_of_removal(at, end), std::move(fix));
  }

  bool is_sign_of_equal(const Token &token) const {
    return token.kind == TokenKind::equal ||
           (token.kind == TokenKind::word && text_[token.span.begin] == '>');
  }

  // The blanks after them, too, where there are some before them. A ">" may belong to a value that
  // touches it.
  void add_removal_of_signs(Offset at, Fix &fix) const {
    const Offset end = after("=>", at);
    const Offset next = after("=> \t", at);
    fix.edits.push_back({at, is_blank(text_[at - 1]) ? next : end, {}});
    const bool touches = end < text_.size() && !is_blank(text_[end]) && text_[end] != '(';
    if (touches && text_[end - 1] == '>') fix.applicability = Applicability::unsafe;
  }

  bool begins_value(Offset at) const {
    return stands_at(text_, at, '(') || (!is_of_entry() && end_of_word(text_, at) > at);
  }

  // Commas and semicolons between items. What comes after a semicolon on its line is a comment to
  // other readers, and all of a line that begins with it.
  bool mend_separators() {
    const Offset end = after(",;", at_);
    const Offset next = pass_blanks(text_, end);
    if (end == at_ || !(stands_at(text_, next, '(') || stands_at(text_, next, ')'))) return false;
    const bool may_be_comment = text_[at_] == ';' && next < end_of_line(text_, at_);
    if (may_be_comment && begins_line(text_, at_)) return false;
    const Applicability applicability =
        may_be_comment ? Applicability::unsafe : Applicability::safe;
    return mended(remedy_of_removal(at_, end), {applicability, {{at_, end, {}}}});
  }

  // Lines that a diff takes out, before those that it puts in. Where there is no fix, none that
  // removes the "-" alone may be made: the lines would count.
  bool mend_diff() {
    std::vector<Edit> edits;
    Offset line = at_;
    for (; line < text_.size() && is_in_diff(line, '-'); line = end_of_line(text_, line) + 1)
      edits.push_back({line, line, "# "});
    if (edits.empty() || line >= text_.size() || !is_in_diff(line, '+')) return false;
    return mended("remove the lines that begin with \"-\": those with \"+\" replace them",
                  is_balanced(line - 1) ? unsafe_fix(std::move(edits)) : Fix());
  }

  bool is_in_diff(Offset at, char sign) const {
    return (at == 0 || text_[at - 1] == '\n') && text_[at] == sign &&
           !text_.substr(at + 1).starts_with(sign);
  }

  bool mend_comment() {
    if (end_of_long_comment(text_, at_)) return mend_long_comment();
    if (!is_foreign_comment(text_.substr(at_, 2))) return false;
    const Offset end = end_of_line(text_, at_);
    const Offset next = pass_comments(text_, end);
    const bool goes_on = stands_at(text_, next, '(') || stands_at(text_, next, ')');
    if (!goes_on || !is_balanced(end)) return false;
    return mended("begin the comment with \"#\"", safe_fix({{at_, at_, "# "}}));
  }

  // Where there is no fix, none that removes the words of the comment may be made: the items in it
  // would count.
  bool mend_long_comment() {
    const Offset end = *end_of_long_comment(text_, at_);
    return mended("begin each line of the comment with \"#\"",
                  is_balanced(end) ? fix_of_long_comment(text_, at_) : Fix());
  }

  // Whether the parentheses up to a place match: lookups count those of comments.
  bool is_balanced(Offset end) const {
    std::int64_t depth = 0;
    for (const char c : text_.substr(at_, end - at_)) {
      depth += c == '(' ? 1 : c == ')' ? -1 : 0;
      if (depth < 0) return false;
    }
    return depth == 0;
  }

  // "{KEY = ...}"
  bool mend_brackets() {
    for (const Brackets &brackets : other_brackets) {
      if (!text_.substr(at_).starts_with(brackets.open)) continue;
      Offset key = at_ + static_cast<Offset>(brackets.open.size());
      key = pass_blanks(text_, key);
      std::vector<Edit> edits = parentheses_for(brackets);
      if (!word_at(text_, key) || edits.empty()) return false;
      return mended("write parentheses instead of brackets", unsafe_fix(std::move(edits)));
    }
    return false;
  }

  // For the bracket at fault, those in it and its partner; empty when it has none.
  std::vector<Edit> parentheses_for(const Brackets &brackets) const {
    std::vector<Edit> edits;
    std::size_t depth = 0;
    const auto take = [&](Offset at, std::string_view bracket, const char *parenthesis) {
      if (!text_.substr(at).starts_with(bracket)) return false;
      edits.push_back({at, at + static_cast<Offset>(bracket.size()), parenthesis});
      return true;
    };
    // Open ones that go deeper are of other entries.
    constexpr std::size_t most = 100;
    for (Offset at = at_; at < text_.size() && depth < most; ++at) {
      if (text_[at] == '"') at = end_of_quotes(at);
      if (text_[at] == '#') at = end_of_line(text_, at);
      if (at >= text_.size()) break;
      if (take(at, brackets.open, "(")) ++depth;
      if (take(at, brackets.close, ")") && --depth == 0) return edits;
    }
    return {};
  }

  // The second quote of a pair, or the end.
  Offset end_of_quotes(Offset at) const {
    return static_cast<Offset>(std::min(text_.find('"', at + 1), text_.size() - 1));
  }

  // "NAME = NAME = (...)"
  bool mend_repeated_name() {
    const Offset end = end_of_word(text_, at_);
    const Offset equal = pass_blanks(text_, end);
    if (!is_of_entry() || end == at_ || !stands_at(text_, equal, '=')) return false;
    const Offset value = pass_blanks(text_, equal + 1);
    std::string_view before = trimmed(text_.substr(0, at_));
    const bool has_comment = text_.substr(at_, value - at_).find('#') != std::string_view::npos;
    if (!stands_at(text_, value, '(') || has_comment || !before.ends_with('=')) return false;
    before.remove_suffix(1);
    before = trimmed(before);
    const std::string_view name = text_.substr(at_, end - at_);
    if (!before.ends_with(name)) return false;
    before.remove_suffix(name.size());
    if (!before.empty() && !is_blank(before.back())) return false;
    return mended(remedy_of_removal(at_, equal + 1), safe_fix({{at_, value, {}}}));
  }

  // "KEY = VALUE" without both parentheses, where an item is due, and others after it.
  bool mend_bare_items() {
    const std::vector<BareItem> items = bare_items(text_, at_, [&](std::string_view key) {
      return is_dropped(key) || may_be_here(item_word(key));
    });
    if (items.empty()) return false;
    const Offset next = pass_blanks(text_, items.back().separated);
    const bool before_item = is_between_items() && stands_at(text_, next, '(');
    if (next < text_.size() && text_[next] != ')' && !before_item) return false;
    std::vector<Edit> edits = {{at_, at_, "("}};
    for (Edit &edit : separated(text_, items)) edits.push_back(std::move(edit));
    if (items.size() > 1 && edits.size() == 1) return false;
    const Offset end = items.back().separated;
    if (edits.back().end == end && edits.back().text.empty())
      edits.back().text += ')';
    else
      edits.push_back({end, end, ")"});
    return mended(
        items.size() == 1 ? "put the item in parentheses" : "put the items in parentheses",
        unsafe_fix(std::move(edits)));
  }

  // Whether an item of that key belongs to the block that is due here.
  bool may_be_here(ItemWord word) const {
    if (is_of_entry()) return opens_block(word);
    Content around = content_of(place_.block());
    if (!is_between_items()) around = placement_of({place_.item()->type}, around).content;
    return placement_of(word, around).fit == Fit::good;
  }

  // Words that are no item become a comment, and signs alone are removed. Before a first item words
  // may be its value, "(ADDRESS = h (", and in an address its host or port.
  bool mend_words() {
    const std::size_t sign = text_.find_first_of("()=\"#", at_);
    // A diff takes out a line that begins with "-".
    if (sign == std::string_view::npos || is_in_diff(at_, '-')) return false;
    const auto end = static_cast<Offset>(sign);
    if (end == at_) return mend_remark();
    const bool before_item = text_[end] == '(';
    if (!before_item && !(text_[end] == ')' && is_between_items())) return false;
    if (!is_between_items() && !opens_block(word_at(text_, pass_blanks(text_, end + 1))))
      return false;
    if (has_key(end) || is_comment() || (is_between_items() && lacks_host_or_port())) return false;
    const std::string_view words = trimmed(text_.substr(at_, end - at_));
    // "db:@(DESCRIPTION": no words, but another notation.
    const bool touches_block = is_of_entry() && before_item && !is_blank(text_[end - 1]);
    if (touches_block || std::none_of(words.begin(), words.end(), is_of_word))
      return mended(remedy_of_removal(at_, end), unsafe_fix({{at_, end, {}}}));
    return mended(remedy_of_comment(words),
                  fix_of_part(text_, at_, at_ + static_cast<Offset>(words.size())));
  }

  // "1521 (default)"
  bool mend_remark() {
    const std::optional<WrittenItem> item = item_at(text_, at_);
    if (!item || !is_between_items() || !place_.is_remark(*item) || lacks_host_or_port())
      return false;
    return mended(remedy_of_comment(place_.slice({at_, item->end})), place_.commented_out(*item));
  }

  // Signs alone say nothing.
  static bool is_of_word(char c) {
    const char capital = kzoci::capital(c);
    return is_digit(c) || ('A' <= capital && capital <= 'Z') || (c & 0x80) != 0;
  }

  static std::string remedy_of_comment(std::string_view words) {
    return "make a comment of " + quoted(excerpt(words));
  }

  // Of other readers.
  bool is_comment() const {
    return is_foreign_comment(text_.substr(at_, 2)) || text_.substr(at_).starts_with("/*");
  }

  bool lacks_host_or_port() const {
    const std::vector<WrittenItem> items = place_.items_of(place_.frame());
    return place_.block() == Block::address &&
           !(place_.is_set(items, "HOST") && place_.is_set(items, "PORT"));
  }

  // Whether one of the words is a key, "PORT: 1" for example: an item without parentheses.
  bool has_key(Offset end) const {
    TokenReader tokens(text_.substr(0, end), at_);
    for (Token token = tokens.next(); token.kind != TokenKind::end; token = tokens.next()) {
      const std::string_view word = place_.slice(token.span);
      if (item_word(word.substr(0, word.find(':')))) return true;
    }
    return false;
  }

  const FaultPlace &place_;
  std::string_view text_;
  Diagnosis &diagnosis_;
  Offset at_;
};

}  // namespace

bool mend_stray_text(const FaultPlace &place, Diagnosis &diagnosis) {
  return StrayText(place, diagnosis).mend();
}

}  // namespace kztns
