#include "fixes/stray_fixes.h"

#include "fixes/bare_items.h"
#include "fixes/file_fixes.h"
#include "fixes/foreign_fixes.h"
#include "fixes/sign_fixes.h"
#include "scan/item_words.h"
#include "scan/stray_text.h"
#include "scan/tokens.h"
#include "text/characters.h"

namespace kztns {
namespace {

// Whether the parentheses from the fault up to a place match: lookups count those of comments.
bool is_balanced(const FaultPlace &place, Offset end) {
  std::int64_t depth = 0;
  for (const char c : place.slice({place.fault().at, end})) {
    depth += depth_change(c);
    if (depth < 0) return false;
  }
  return depth == 0;
}

bool is_in_diff(std::string_view text, Offset at, char sign) {
  return (at == 0 || text[at - 1] == '\n') && text[at] == sign &&
         !text.substr(at + 1).starts_with(sign);
}

// Lines that a diff takes out, before those that it puts in. Where there is no fix, none that
// removes the "-" alone may be made: the lines would count.
std::optional<Mending> mend_diff(const FaultPlace &place) {
  const std::string_view text = place.text();
  std::vector<Edit> edits;
  Offset line = place.fault().at;
  for (; line < text.size() && is_in_diff(text, line, '-'); line = end_of_line(text, line) + 1)
    edits.push_back({line, line, "# "});
  if (edits.empty() || line >= text.size() || !is_in_diff(text, line, '+')) return std::nullopt;
  return Mending{is_balanced(place, line - 1) ? unsafe_fix(std::move(edits)) : Fix(),
                 "remove the lines that begin with \"-\": those with \"+\" replace them"};
}

// "/* ... */". Where there is no fix, none that removes the words of the comment may be made: the
// items in it would count.
std::optional<Mending> mend_long_comment(const FaultPlace &place) {
  const Offset at = place.fault().at;
  const std::optional<Offset> end = end_of_long_comment(place.text(), at);
  if (!end) return std::nullopt;
  return Mending{is_balanced(place, *end) ? fix_of_long_comment(place.text(), at) : Fix(),
                 "begin each line of the comment with \"#\""};
}

// "-- ..." and the like, up to the end of the line.
std::optional<Mending> mend_line_comment(const FaultPlace &place) {
  const Offset at = place.fault().at;
  if (!is_foreign_comment(place.text().substr(at, 2))) return std::nullopt;
  const Offset end = end_of_line(place.text(), at);
  const Offset next = pass_comments(place.text(), end);
  const bool goes_on = place.has_sign(next, '(') || place.has_sign(next, ')');
  if (!goes_on || !is_balanced(place, end)) return std::nullopt;
  return Mending{safe_fix({{at, at, "# "}}), "begin the comment with \"#\""};
}

// Whether "NAME =" is the end of a text.
bool ends_with_name(std::string_view text, std::string_view name) {
  text = trimmed(text);
  if (!text.ends_with('=')) return false;
  text.remove_suffix(1);
  text = trimmed(text);
  if (!text.ends_with(name)) return false;
  text.remove_suffix(name.size());
  return text.empty() || is_blank(text.back());
}

// "NAME = NAME = (...)"
std::optional<Mending> mend_repeated_name(const FaultPlace &place) {
  const Offset at = place.fault().at;
  const Span name = place.word_at(at);
  const Offset equal = place.after_blanks(name.end);
  if (!place.is_before_blocks() || name.empty() || !place.has_sign(equal, '=')) return std::nullopt;
  const Offset value = place.after_blanks(equal + 1);
  const bool has_comment = place.slice({at, value}).find('#') != std::string_view::npos;
  if (!place.has_sign(value, '(') || has_comment ||
      !ends_with_name(place.text().substr(0, at), place.slice(name)))
    return std::nullopt;
  return Mending{safe_fix({{at, value, {}}}), remedy_of_removal(place.slice({at, equal + 1}))};
}

// Whether an item of that key belongs to the block that is due here.
bool may_be_here(const FaultPlace &place, ItemWord word) {
  if (place.is_before_blocks()) return opens_block(word);
  Content around = content_of(place.block());
  if (!place.is_after_item()) around = placement_of({place.item()->type}, around).content;
  return placement_of(word, around).fit == Fit::good;
}

// "KEY = VALUE" without both parentheses, where an item is due, and others after it.
std::optional<Mending> mend_bare_items(const FaultPlace &place) {
  const Offset at = place.fault().at;
  const std::vector<BareItem> items = bare_items(place.text(), at, [&](std::string_view key) {
    return is_dropped(key) || may_be_here(place, item_word(key));
  });
  if (items.empty()) return std::nullopt;
  const Offset next = place.after_blanks(items.back().separated);
  const bool before_item = place.is_after_item() && place.has_sign(next, '(');
  if (next < place.text().size() && !place.has_sign(next, ')') && !before_item) return std::nullopt;
  std::vector<Edit> edits = {{at, at, "("}};
  for (Edit &edit : separated(place.text(), items)) edits.push_back(std::move(edit));
  if (items.size() > 1 && edits.size() == 1) return std::nullopt;
  const Offset end = items.back().separated;
  if (edits.back().end == end && edits.back().text.empty())
    edits.back().text += ')';
  else
    edits.push_back({end, end, ")"});
  return Mending{unsafe_fix(std::move(edits)), items.size() == 1 ? "put the item in parentheses"
                                                                 : "put the items in parentheses"};
}

bool lacks_host_or_port(const FaultPlace &place) {
  const std::vector<WrittenItem> items = place.items_of(place.frame());
  return place.block() == Block::address &&
         !(place.is_set(items, "HOST") && place.is_set(items, "PORT"));
}

std::string remedy_of_comment(std::string_view words) {
  return "make a comment of " + quoted(excerpt(words));
}

// "1521 (default)"
std::optional<Mending> mend_remark_after_item(const FaultPlace &place) {
  const Offset at = place.fault().at;
  const std::optional<WrittenItem> item = item_at(place.text(), at);
  if (!item || !place.is_after_item() || !place.is_remark(*item) || lacks_host_or_port(place))
    return std::nullopt;
  return Mending{place.commented_out(*item), remedy_of_comment(place.slice({at, item->end}))};
}

// Whether a comment of other readers begins at the fault.
bool is_comment(const FaultPlace &place) {
  const std::string_view text = place.text().substr(place.fault().at);
  return is_foreign_comment(text.substr(0, 2)) || text.starts_with("/*");
}

// Whether one of some words is a key, "PORT: 1" for example: an item without parentheses.
bool holds_key(const FaultPlace &place, Span words) {
  TokenReader tokens(place.text().substr(0, words.end), words.begin);
  for (Token token = tokens.next(); token.kind != TokenKind::end; token = tokens.next()) {
    const std::string_view word = place.slice(token.span);
    if (item_word(word.substr(0, word.find(':')))) return true;
  }
  return false;
}

// Whether words between the fault and a "(" or ")" are no item and no part of one. Before a first
// item they may be its value, "(ADDRESS = h (", and in an address its host or port.
bool are_no_item(const FaultPlace &place, Span words) {
  if (!place.is_after_item()) {
    const ItemWord key = item_word(place.slice(place.word_at(place.after_blanks(words.end + 1))));
    // Words before a service's name are not that name.
    const bool has_service = place.is_set(items_from(place.text(), words.end), "SERVICE_NAME");
    const bool is_item = opens_block(key) || (key && has_service);
    if (!place.has_sign(words.end, '(') || !is_item) return false;
  }
  return !holds_key(place, words) && !is_comment(place) &&
         !(place.is_after_item() && lacks_host_or_port(place));
}

// Words that are no item become a comment, and signs alone are removed.
std::optional<Mending> mend_words(const FaultPlace &place) {
  const Offset at = place.fault().at;
  const std::size_t sign = place.text().find_first_of("()=\"#", at);
  // A diff takes out a line that begins with "-".
  if (sign == std::string_view::npos || is_in_diff(place.text(), at, '-')) return std::nullopt;
  const Span span = {at, static_cast<Offset>(sign)};
  if (span.empty()) return mend_remark_after_item(place);
  const bool before_item = place.has_sign(span.end, '(');
  if (!(before_item || place.has_sign(span.end, ')')) || !are_no_item(place, span))
    return std::nullopt;
  const std::string_view words = trimmed(place.slice(span));
  // "db:@(DESCRIPTION": no words, but another notation.
  const bool touches_block =
      place.is_before_blocks() && before_item && !is_blank(place.text()[span.end - 1]);
  if (touches_block || !has_word_character(words))
    return Mending{unsafe_fix({{at, span.end, {}}}), remedy_of_removal(words)};
  return Mending{fix_of_part(place.text(), at, at + static_cast<Offset>(words.size())),
                 remedy_of_comment(words)};
}

// Where the value of the item at fault begins as it is written, signs at its beginning included.
Offset begin_of_value(const FaultPlace &place) {
  const std::optional<WrittenItem> item = place.written_item();
  return item ? place.after_blanks(item->value) : static_cast<Offset>(place.text().size());
}

// Signs after the "=" that leads to what is at fault.
std::optional<Mending> mend_signs_at_fault(const FaultPlace &place) {
  return mend_equal_signs(place, place.fault().at);
}

using Maker = std::optional<Mending> (*)(const FaultPlace &);

// The first that has a mending is taken: what is written in one way only comes first, words last,
// since a comment or an item is made of words, too.
constexpr Maker makers[] = {
    mend_continuations, mend_signs_at_fault, mend_separators,    mend_diff,       mend_long_comment,
    mend_line_comment,  mend_brackets,       mend_repeated_name, mend_bare_items, mend_words};

}  // namespace

std::optional<Mending> mend_stray_text(const FaultPlace &place) {
  const bool has_place = place.item() != nullptr || place.is_before_blocks();
  if (place.fault().at >= place.text().size() || !has_place) return std::nullopt;
  switch (place.rule()) {
    case Rule::unquoted_value:
    case Rule::missing_value:
    case Rule::bad_protocol:
    case Rule::bad_word:
    case Rule::bad_number:
      return mend_equal_signs(place, begin_of_value(place));
    case Rule::no_block:
    case Rule::value_for_block:
    case Rule::missing_close:
      for (const Maker make : makers)
        if (auto mending = make(place)) return mending;
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

}  // namespace kztns
