#include "fixes/value_fixes.h"

#include <algorithm>
#include <utility>

#include "fixes/address_fixes.h"
#include "fixes/bare_items.h"
#include "fixes/file_fixes.h"
#include "fixes/foreign_fixes.h"
#include "fixes/number_fixes.h"
#include "fixes/wrapped_value.h"
#include "scan/item_text.h"
#include "scan/stray_text.h"
#include "scan/tokens.h"
#include "text/characters.h"
#include "text/escape.h"
#include "text/spelling.h"

namespace kztns {
namespace {

bool is_key(std::string_view word) {
  return foreign_key(word) != nullptr ||
         std::any_of(std::begin(kzoci::tns::grammar), std::end(kzoci::tns::grammar),
                     [&](const Key &key) { return equal_but_for_case(word, key.word); });
}

// Whether another item seems to begin in a value, "h PORT = 1".
bool holds_item(std::string_view value) {
  TokenReader tokens(value);
  Token before = tokens.next();
  for (Token token = tokens.next(); token.kind != TokenKind::end; token = tokens.next()) {
    if (token.kind == TokenKind::equal && before.kind == TokenKind::word &&
        is_key(value.substr(before.span.begin, before.span.end - before.span.begin)))
      return true;
    before = token;
  }
  return false;
}

bool may_be_in(Block block, std::string_view word) {
  return key_named(block, word) != nullptr || foreign_key(word) != nullptr;
}

// "(KEY = a, KEY = b)": several items in one pair of parentheses.
std::optional<Mending> mend_joined_items(const FaultPlace &place) {
  if (!place.item()->has_value) return std::nullopt;
  const std::vector<BareItem> items =
      bare_items(place.text(), place.item()->key.begin,
                 [&](std::string_view key) { return may_be_in(place.block(), key); });
  if (items.size() < 2 || !place.has_sign(place.after_blanks(items.back().separated), ')'))
    return std::nullopt;
  std::vector<Edit> edits = separated(place.text(), items);
  if (edits.empty()) return std::nullopt;
  return Mending{unsafe_fix(std::move(edits)), "put each item in parentheses of its own"};
}

bool is_service(const Key &key) { return key.type == LB_SERVICE_NAME || key.type == LB_SID; }

// Hosts, ports and services have none: the entry would be served, and no server or service found.
bool may_have_blanks(const Key &key) {
  return key.value.kind == ValueKind::text && key.type != LB_HOST && key.type != LB_PORT &&
         key.type != LB_PROTOCOL && !is_service(key);
}

// Whether a text with blanks or signs may be what is meant.
bool may_be_whole(const Key &key, std::string_view value) {
  return may_have_blanks(key) || (is_service(key) && value.find_first_of(blanks) == value.npos);
}

// "(PORT = 1521 -- default)": what other readers take as a comment, and what is one here but hides
// the ")". Its words end before that.
std::optional<Span> comment_before_close(const FaultPlace &place, const Key &key) {
  const Offset at = place.after(blanks_of_line, place.item()->value.end);
  const std::string_view rest = place.text().substr(at, end_of_line(place.text(), at) - at);
  const bool is_comment =
      rest.starts_with('#') || rest.starts_with("/*") || is_foreign_comment(rest);
  const std::size_t end = rest.find_first_of("()\"");
  // A "#" in it would begin another one.
  if (!rest.starts_with('#') && rest.find('#') != rest.npos) return std::nullopt;
  if (!is_comment || end == rest.npos || rest[end] != ')' || may_have_blanks(key))
    return std::nullopt;
  return Span{at, at + static_cast<Offset>(trimmed(rest.substr(0, end)).size())};
}

std::optional<Mending> mend_comment_before_close(const FaultPlace &place, const Key &key) {
  const std::optional<Span> comment = comment_before_close(place, key);
  if (!comment) return std::nullopt;
  if (place.has_sign(comment->begin, '#'))
    return Mending{unsafe_fix({{comment->end, comment->end, "\n"}}),
                   "put the \")\" on a line of its own"};
  return Mending{fix_of_part(place.text(), comment->begin, comment->end),
                 "make a comment of " + quoted(excerpt(place.slice(*comment)))};
}

// What to do about a value that goes on after its first word.
std::string remedy_of_more(const Key &key) {
  const auto remedy = [](Rule rule) { return std::string(row_of(rule).remedy); };
  if (key.value.kind == ValueKind::integer) return remedy(Rule::bad_number);
  if (key.type == LB_HOST) return remedy(Rule::placeholder);
  if (key.type == LB_PORT) return remedy(Rule::bad_port);
  return {};
}

}  // namespace

Fix whole_value(const FaultPlace &place, Applicability applicability) {
  const Key *const key = place.trace().row_of(*place.item());
  const Offset begin = place.item()->value.begin;
  const std::string_view line =
      place.text().substr(begin, place.text().find_first_of("\r\n", begin) - begin);
  const std::size_t close = line.find(')');
  if (key == nullptr || close == std::string_view::npos) return {};
  const std::string_view value = trimmed(line.substr(0, close));
  const std::size_t sign = value.find_first_of("(\"");
  const bool ends_quoted = value.ends_with('"') && sign + 1 == value.size();
  if ((sign != std::string_view::npos && !ends_quoted) || value.size() >= longest_token) return {};
  const Offset end = begin + static_cast<Offset>(value.size());
  if (key->value.kind == ValueKind::integer) return fix_of_number(*key, value, {begin, end});
  if (!may_be_whole(*key, value) || holds_item(value)) return {};
  if (ends_quoted) return unsafe_fix({{begin, begin, "\""}});
  if (const std::string_view inner = in_foreign_quotes(value); !inner.empty())
    return unsafe_fix({{begin, end, '"' + std::string(inner) + '"'}});
  return {applicability, {{begin, begin, "\""}, {end, end, "\""}}};
}

// The end of the line or the first ")" on it. A quote right before that opens nothing.
Fix closed_quote(const FaultPlace &place) {
  const std::string_view text = place.text();
  const Offset quote = place.diagnosis().at;
  const std::size_t stop = std::min(text.find_first_of(")\r\n", quote + 1), text.size());
  const std::size_t last = text.find_last_not_of(" \t", stop - 1);
  if (last <= quote) return unsafe_fix({{quote, quote + 1, {}}});
  const auto end = static_cast<Offset>(last + 1);
  return unsafe_fix({{end, end, "\""}});
}

Fix without_quotes(const FaultPlace &place) {
  const Offset quote = place.diagnosis().at;
  const std::size_t close = place.text().find('"', quote + 1);
  if (close == std::string_view::npos) return {};
  const auto end = static_cast<Offset>(close);
  return safe_fix({{quote, quote + 1, {}}, {end, end + 1, {}}});
}

namespace {

Fix switched_word(const FaultPlace &place) {
  const std::vector<std::string_view> words = choices(*place.trace().row_of(*place.item()));
  const std::string_view value = trimmed(place.value());
  const std::string_view word = switch_word(value);
  if (std::find(words.begin(), words.end(), word) != words.end())
    return place.with_value(Applicability::safe, word);
  const std::string_view near = near_word(value, words);
  return near.empty() ? Fix() : place.with_value(Applicability::unsafe, near);
}

// "(KEY : value)" and "(KEY := value)": where the value is to begin.
std::optional<Offset> value_after_colon(const FaultPlace &place) {
  const Offset at = place.fault().at;
  if (!place.has_sign(at, ':')) return std::nullopt;
  return place.after_blanks(end_of_foreign_equal(place.text(), at));
}

bool is_value(const FaultPlace &place, const Key &key, Offset at) {
  if (key.value.kind == ValueKind::block) return place.has_sign(at, '(');
  const Span word = place.word_at(at);
  return !word.empty() && place.has_sign(place.after_blanks(word.end), ')');
}

// "(ADDRESS HOST = h)": an item in a block without parentheses of its own, or with one of them.
Fix with_block(const FaultPlace &place, const Key &block, const WrittenItem &written) {
  const Offset word = place.fault().at;
  const auto is_of_block = [&](Offset at) {
    return key_named(block.value.opens, place.slice(place.word_at(at))) != nullptr;
  };
  const Offset equal = place.after_blanks(place.word_at(word).end);
  if (!is_of_block(word) || !place.has_sign(equal, '=')) return {};
  Fix fix = unsafe_fix({{word, word, "= ("}});
  const Offset next = place.after_blanks(written.end);
  const bool goes_on = place.has_sign(next, '(') && is_of_block(place.after_blanks(next + 1));
  if (!goes_on) fix.edits.push_back({written.end, written.end, ")"});
  return fix;
}

}  // namespace

// Only "=" can stand between a key and what follows.
Fix with_equal(const FaultPlace &place) {
  const Item &item = *place.item();
  const Key *const key = place.trace().row_of(item);
  const std::optional<Offset> value = value_after_colon(place);
  if (key != nullptr && value && is_value(place, *key, *value))
    return {Applicability::safe, {equal_for_foreign(place.text(), place.fault().at)}};
  const std::optional<WrittenItem> written = item_at(place.text(), item.open);
  if (key == nullptr || !written) return {};
  const bool is_block = key->value.kind == ValueKind::block;
  const bool fits = is_block ? place.has_sign(place.fault().at, '(')
                             : word_of(place.text(), *written).has_value();
  if (fits) return safe_fix({{item.key.end, item.key.end, " ="}});
  if (is_block) return with_block(place, *key, *written);
  const bool is_empty = place.after_blanks(item.key.end) + 1 == written->end;
  return is_empty ? place.removal(item.open) : Fix();
}

Fix without_inner_parentheses(const FaultPlace &place) {
  const std::optional<WrittenItem> item = place.written_item();
  if (!item) return {};
  const std::vector<WrittenItem> inner = place.children(*item);
  if (inner.size() != 1 || inner[0].key.end != inner[0].value) return {};
  if (place.after_blanks(inner[0].key.end) + 1 != inner[0].end) return {};
  return unsafe_fix({{inner[0].open, inner[0].end, std::string(place.key_of(inner[0]))}});
}

Mending mend_refused_value(const FaultPlace &place) {
  if (auto mending = mend_joined_items(place)) return *std::move(mending);
  if (auto mending = mend_wrapped_value(place)) return *std::move(mending);
  const Key *const key = place.trace().row_of(*place.item());
  if (key == nullptr) return {};
  if (auto mending = mend_comment_before_close(place, *key)) return *std::move(mending);
  switch (place.rule()) {
    case Rule::bad_protocol:
      return mend_protocol(place);
    case Rule::bad_word:
      return {switched_word(place)};
    case Rule::bad_number:
      return {fix_of_number(*key, place.value(), place.item()->value)};
    default:
      break;
  }
  if (place.rule() == Rule::comment_in_value) return {whole_value(place, Applicability::unsafe)};
  Fix fix = whole_value(place, Applicability::safe);
  std::string remedy = !fix && is_service(*key) ? "write the service's name" : remedy_of_more(*key);
  return {std::move(fix), std::move(remedy)};
}

}  // namespace kztns
