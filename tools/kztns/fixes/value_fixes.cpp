#include "fixes/value_fixes.h"

#include <algorithm>
#include <chrono>

#include "fixes/address_fixes.h"
#include "fixes/bare_items.h"
#include "fixes/file_fixes.h"
#include "fixes/foreign_keys.h"
#include "scan/tokens.h"
#include "text/characters.h"
#include "text/spelling.h"
#include "text/words.h"

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

// "(KEY = a, KEY = b)": whether several items in one pair of parentheses are the fault; if so, it
// is mended.
bool mend_joined_items(const FaultPlace &place, Diagnosis &diagnosis) {
  if (!place.item()->has_value) return false;
  const std::vector<BareItem> items =
      bare_items(place.text(), place.item()->key.begin,
                 [&](std::string_view key) { return may_be_in(place.block(), key); });
  if (items.size() < 2 ||
      !place.text().substr(pass_blanks(place.text(), items.back().separated)).starts_with(')'))
    return false;
  std::vector<Edit> edits = separated(place.text(), items);
  if (edits.empty()) return false;
  diagnosis.fix = unsafe_fix(std::move(edits));
  diagnosis.remedy = "put each item in parentheses of its own";
  return true;
}

// Whether a text with blanks or signs may be what is meant. A host of that kind is none: its
// entry would be served, and no server found.
bool may_have_any_character(const Key &key) {
  return key.value.kind == ValueKind::text && key.type != LB_HOST && key.type != LB_PORT;
}

// What to do about a value that goes on after its first word.
std::string remedy_of_more(const Key &key) {
  const auto remedy = [](Rule rule) { return std::string(row_of(rule).remedy); };
  if (key.value.kind == ValueKind::integer) return remedy(Rule::bad_number);
  if (key.type == LB_HOST) return remedy(Rule::placeholder);
  if (key.type == LB_PORT) return remedy(Rule::bad_port);
  return {};
}

using std::chrono::milliseconds;

// Zero for a word that is no unit of time.
milliseconds unit_named(std::string_view word) {
  if (is_one_of(word, {"ms", "msec"})) return milliseconds(1);
  if (is_one_of(word, {"s", "sec", "secs", "second", "seconds"})) return std::chrono::seconds(1);
  if (is_one_of(word, {"m", "min"})) return std::chrono::minutes(1);
  if (is_one_of(word, {"h"})) return std::chrono::hours(1);
  return {};
}

// The unit of a key's number; zero where it is that of the connection layer, which nobody knows
// here.
milliseconds unit_of(const Key &key) {
  return key.type == LB_SLOWSQL_FLUSH_SECOND ? std::chrono::seconds(1) : milliseconds();
}

// A number of one unit as one of another; empty where that is no whole number.
std::string converted(std::string_view digits, milliseconds from, milliseconds to) {
  constexpr std::size_t most_digits = 9;  // longer ones might not fit
  if (to == milliseconds() || digits.size() > most_digits) return {};
  const milliseconds time = std::stol(std::string(digits)) * from;
  return time % to == milliseconds() ? std::to_string(time / to) : "";
}

// The digits that a value begins with, and a sign before them; empty where it begins otherwise.
std::string_view number_before_unit(std::string_view value) {
  const std::size_t sign = value.starts_with('-') || value.starts_with('+') ? 1 : 0;
  std::size_t end = sign;
  while (end < value.size() && is_digit(value[end])) ++end;
  return end > sign ? value.substr(0, end) : std::string_view();
}

// A number with blanks around it, or one with a unit of time after it.
Fix fix_of_number(const Key &key, std::string_view text, Span span) {
  const std::string_view value = trimmed(text);
  const std::string digits(number_before_unit(value));
  if (digits.empty()) return {};
  const std::string_view unit = trimmed(value.substr(digits.size()));
  if (unit.empty() && value.size() < text.size()) return safe_fix({{span.begin, span.end, digits}});
  std::string number = converted(digits, unit_named(unit), unit_of(key));
  if (unit_named(unit) == milliseconds() || number.empty()) return {};
  return unsafe_fix({{span.begin, span.end, std::move(number)}});
}

// A value that goes on to the ")" on its line: in quotes, or the number that it begins with.
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
  if (!may_have_any_character(*key) || holds_item(value)) return {};
  if (ends_quoted) return unsafe_fix({{begin, begin, "\""}});
  if (const std::string_view inner = in_foreign_quotes(value); !inner.empty())
    return unsafe_fix({{begin, end, '"' + std::string(inner) + '"'}});
  return {applicability, {{begin, begin, "\""}, {end, end, "\""}}};
}

void mend_unquoted_value(const FaultPlace &place, Diagnosis &diagnosis) {
  if (mend_joined_items(place, diagnosis)) return;
  diagnosis.fix = whole_value(place, Applicability::safe);
  if (const Key *const key = place.trace().row_of(*place.item()))
    diagnosis.remedy = remedy_of_more(*key);
}

// The end of the line or the first ")" on it. A quote right before that opens nothing.
Fix closed_quote(const FaultPlace &place, Offset quote) {
  const std::string_view text = place.text();
  const std::size_t stop = std::min(text.find_first_of(")\r\n", quote + 1), text.size());
  const std::size_t last = text.find_last_not_of(" \t", stop - 1);
  if (last <= quote) return unsafe_fix({{quote, quote + 1, {}}});
  const auto end = static_cast<Offset>(last + 1);
  return unsafe_fix({{end, end, "\""}});
}

Fix without_quotes(const FaultPlace &place, Offset quote) {
  const std::size_t close = place.text().find('"', quote + 1);
  if (close == std::string_view::npos) return {};
  const auto end = static_cast<Offset>(close);
  return safe_fix({{quote, quote + 1, {}}, {end, end + 1, {}}});
}

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
  if (at >= place.text().size() || place.text()[at] != ':') return std::nullopt;
  return pass_blanks(place.text(), end_of_foreign_equal(place.text(), at));
}

bool is_value(const FaultPlace &place, const Key &key, Offset at) {
  if (key.value.kind == ValueKind::block) return place.text().substr(at).starts_with('(');
  const Offset end = end_of_word(place.text(), at);
  return end > at && place.text().substr(pass_blanks(place.text(), end)).starts_with(')');
}

// "(ADDRESS HOST = h)": an item in a block without parentheses of its own, or with one of them.
Fix with_block(const FaultPlace &place, const Key &block, const WrittenItem &written) {
  const Offset word = place.fault().at;
  const auto is_of_block = [&](Offset at) {
    const std::string_view key = place.text().substr(at, end_of_word(place.text(), at) - at);
    return key_named(block.value.opens, key) != nullptr;
  };
  const Offset equal = pass_blanks(place.text(), end_of_word(place.text(), word));
  if (!is_of_block(word) || !place.text().substr(equal).starts_with('=')) return {};
  Fix fix = unsafe_fix({{word, word, "= ("}});
  const Offset next = pass_blanks(place.text(), written.end);
  const bool goes_on = place.text().substr(next).starts_with('(') &&
                       is_of_block(pass_blanks(place.text(), next + 1));
  if (!goes_on) fix.edits.push_back({written.end, written.end, ")"});
  return fix;
}

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
  const bool fits = is_block ? place.text().substr(place.fault().at).starts_with('(')
                             : word_of(place.text(), *written).has_value();
  if (fits) return safe_fix({{item.key.end, item.key.end, " ="}});
  if (is_block) return with_block(place, *key, *written);
  const bool is_empty = pass_blanks(place.text(), item.key.end) + 1 == written->end;
  return is_empty ? place.removal(item.open) : Fix();
}

// "((KEY = ...))": the outer parentheses of the items say nothing.
Fix without_outer_parentheses(const FaultPlace &place, Offset open) {
  const std::optional<WrittenItem> outer = item_at(place.text(), open);
  const std::vector<WrittenItem> inner = items_from(place.text(), open + 1);
  if (!outer || inner.empty()) return {};
  const bool only_items = pass_blanks(place.text(), inner.back().end) + 1 == outer->end;
  return {only_items ? Applicability::safe : Applicability::unsafe,
          {{open, open + 1, {}}, {outer->end - 1, outer->end, {}}}};
}

// "(=KEY = value)"
Fix without_early_equal(const FaultPlace &place) {
  const Offset at = place.fault().at;
  if (!place.text().substr(at).starts_with('=')) return {};
  const Offset key = pass_blanks(place.text(), at + 1);
  const Offset end = end_of_word(place.text(), key);
  const bool is_item = key_named(place.block(), place.slice({key, end})) != nullptr &&
                       place.text().substr(pass_blanks(place.text(), end)).starts_with('=');
  return is_item ? unsafe_fix({{at, at + 1, {}}}) : Fix();
}

// The key of the block in which people write some items; empty for none.
std::string_view key_of_block(const FaultPlace &place, const std::vector<WrittenItem> &items) {
  for (const auto &[item, block] : {std::pair("ADDRESS", "ADDRESS_LIST"),
                                    {"HOST", "ADDRESS"},
                                    {"PORT", "ADDRESS"},
                                    {"SERVICE_NAME", "CONNECT_DATA"}})
    if (place.is_set(items, item)) return block;
  return {};
}

// "( = (HOST = h)(PORT = 1))": the block without its key.
bool mend_block_without_key(const FaultPlace &place, Offset open, Diagnosis &diagnosis) {
  const Offset at = place.fault().at;
  const std::optional<WrittenItem> item = item_at(place.text(), open);
  if (!item || !place.text().substr(at).starts_with('=') ||
      !place.holds_what_counts({at, item->end}))
    return false;
  const std::vector<WrittenItem> items = items_from(place.text(), at + 1);
  const std::string_view key = key_of_block(place, items);
  if (!key.empty() && key_named(place.block(), key) != nullptr) {
    diagnosis.fix = unsafe_fix({{at, at, std::string(key) + " "}});
    diagnosis.remedy = "write (" + std::string(key) + " = ...)";
  }
  return true;
}

// Whether an item without a key may be removed: "()" says nothing, and another one may be what the
// block lacks.
bool may_be_removed(const FaultPlace &place, Offset open) {
  const std::optional<WrittenItem> item = item_at(place.text(), open);
  if (!item) return false;
  const Span span = {item->open, item->end};
  if (place.slice(span).find('=') == std::string_view::npos) return true;
  const bool is_value = items_from(place.text(), place.fault().at + 1).empty();
  return !(is_value && place.lacks_what_counts()) && !place.holds_what_counts(span);
}

// "()" says nothing; more than that is lost.
void mend_missing_key(const FaultPlace &place, Diagnosis &diagnosis) {
  const std::size_t last = place.text().find_last_not_of(blanks, place.fault().at - 1);
  if (last == std::string_view::npos || place.text()[last] != '(') return;
  const auto open = static_cast<Offset>(last);
  diagnosis.fix = without_early_equal(place);
  if (diagnosis.fix) {
    diagnosis.remedy = "remove \"=\"";
    return;
  }
  diagnosis.fix = without_outer_parentheses(place, open);
  if (diagnosis.fix) {
    diagnosis.remedy = "remove the outer parentheses";
    return;
  }
  if (mend_block_without_key(place, open, diagnosis) || !may_be_removed(place, open)) return;
  diagnosis.fix = place.removal(open);
  if (!diagnosis.fix) return;
  const Edit &removal = diagnosis.fix.edits[0];
  if (place.slice({removal.begin, removal.end}).find('=') == std::string_view::npos)
    diagnosis.fix.applicability = Applicability::safe;
}

// "(KEY = (value))"
Fix without_inner_parentheses(const FaultPlace &place) {
  const std::optional<WrittenItem> item = item_at(place.text(), place.item()->open);
  if (!item) return {};
  const std::vector<WrittenItem> inner = place.children(*item);
  if (inner.size() != 1 || inner[0].key.end != inner[0].value) return {};
  if (pass_blanks(place.text(), inner[0].key.end) + 1 != inner[0].end) return {};
  return unsafe_fix({{inner[0].open, inner[0].end, std::string(place.key_of(inner[0]))}});
}

}  // namespace

bool has_unit(std::string_view value) {
  const std::string_view digits = number_before_unit(value);
  return !digits.empty() && unit_named(trimmed(value.substr(digits.size()))) != milliseconds();
}

void mend_value(const FaultPlace &place, Diagnosis &diagnosis) {
  switch (diagnosis.rule) {
    case Rule::no_block:
      diagnosis.fix = written_descriptor(place, diagnosis.at);
      return;
    case Rule::quoted_entry:
      diagnosis.fix = without_quotes(place, diagnosis.at);
      return;
    case Rule::unclosed_quote:
      diagnosis.fix = closed_quote(place, diagnosis.at);
      return;
    case Rule::missing_key:
      return mend_missing_key(place, diagnosis);
    default:
      break;
  }
  if (place.item() == nullptr) return;
  switch (diagnosis.rule) {
    case Rule::unquoted_value:
      return mend_unquoted_value(place, diagnosis);
    case Rule::comment_in_value:
      diagnosis.fix = whole_value(place, Applicability::unsafe);
      return;
    case Rule::bad_word:
      if (!mend_joined_items(place, diagnosis)) diagnosis.fix = switched_word(place);
      return;
    case Rule::bad_number:
      if (!mend_joined_items(place, diagnosis))
        diagnosis.fix =
            fix_of_number(*place.trace().row_of(*place.item()), place.value(), place.item()->value);
      return;
    case Rule::bad_protocol:
      if (!mend_joined_items(place, diagnosis)) mend_protocol(place, diagnosis);
      return;
    case Rule::missing_equal:
      diagnosis.fix = with_equal(place);
      return;
    case Rule::missing_value:
    case Rule::empty_block:
      diagnosis.fix = place.removal(place.item()->open);
      return;
    case Rule::block_for_value:
      diagnosis.fix = without_inner_parentheses(place);
      return;
    case Rule::value_for_block:
      diagnosis.fix = written_address_block(place);
      return;
    default:
      return;
  }
}

}  // namespace kztns
