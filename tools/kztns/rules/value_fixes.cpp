#include "rules/value_fixes.h"

#include <algorithm>
#include <cctype>

#include "rules/block_fixes.h"
#include "rules/foreign_keys.h"
#include "scan/tokens.h"
#include "scan/written_entries.h"
#include "text/spelling.h"

namespace kztns {
namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::size_t longest_token = 256;

bool is_one_of(std::string_view word, std::initializer_list<std::string_view> words) {
  return std::any_of(words.begin(), words.end(),
                     [&](std::string_view other) { return equal_but_for_case(word, other); });
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") + 1 - first);
}

std::string_view value_of(const FaultPlace &place) {
  return place.item() == nullptr ? "" : place.trace().value_of(*place.item());
}

Fix with_value(const FaultPlace &place, Applicability applicability, std::string_view value) {
  const Span &old = place.item()->value;
  return {applicability, {{old.begin, old.end, std::string(value)}}};
}

// What stands for an invisible character that is meant as a blank, or as nothing.
std::optional<std::string_view> visible_instead(std::string_view odd) {
  if (is_one_of(odd, {"\xEF\xBB\xBF", "\xE2\x80\x8B"})) return "";
  const bool control = odd.size() == 1 && odd[0] != '\xA0';
  if (control && odd != "\f" && odd != "\v") return std::nullopt;
  return " ";
}

// Puts blanks for invisible characters in a word, those in quotes excepted.
bool make_visible(std::string_view word, Offset at, std::vector<Edit> &edits) {
  for (std::size_t from = 0; from < word.size();) {
    const std::string_view odd = odd_character(word.substr(from));
    if (odd.empty()) return true;
    const std::size_t place = static_cast<std::size_t>(odd.data() - word.data());
    from = place + odd.size();
    if (std::count(word.begin(), word.begin() + static_cast<std::ptrdiff_t>(place), '"') % 2 != 0)
      continue;
    const auto instead = visible_instead(odd);
    if (!instead) return false;
    const Offset begin = at + static_cast<Offset>(place);
    edits.push_back({begin, begin + static_cast<Offset>(odd.size()), std::string(*instead)});
  }
  return true;
}

Fix all_visible(const FaultPlace &place) {
  const std::vector<Item> &items = place.trace().items();
  const Offset from = items.empty() ? place.fault().at : items.front().open;
  std::vector<Edit> edits;
  TokenReader tokens(place.text(), from);
  for (Token token = tokens.next(); token.kind != TokenKind::end; token = tokens.next())
    if (token.kind == TokenKind::word &&
        !make_visible(place.slice(token.span), token.span.begin, edits))
      return {};
  return edits.empty() ? Fix() : safe_fix(std::move(edits));
}

// A number with blanks around it (safe), or with a unit after it.
Fix number(std::string_view text, Span span) {
  const std::string_view value = trimmed(text);
  const std::size_t sign = value.starts_with('-') || value.starts_with('+') ? 1 : 0;
  const auto end =
      std::find_if_not(value.begin() + static_cast<std::ptrdiff_t>(sign), value.end(), is_digit);
  const std::string digits(value.begin(), end);
  if (digits.size() == sign) return {};
  const std::string_view unit = trimmed(value.substr(digits.size()));
  if (unit.empty() && value.size() < text.size()) return safe_fix({{span.begin, span.end, digits}});
  if (is_one_of(unit, {"ms", "msec", "s", "sec", "secs", "second", "seconds", "m", "min", "h"}))
    return unsafe_fix({{span.begin, span.end, digits}});
  return {};
}

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

// A value that goes on to the ")" on its line: in quotes, or the number that it begins with.
Fix whole_value(const FaultPlace &place, Applicability applicability) {
  const Key *const key = place.trace().row_of(*place.item());
  const Offset begin = place.item()->value.begin;
  const std::string_view line =
      place.text().substr(begin, place.text().find_first_of("\r\n", begin) - begin);
  const std::size_t close = line.find(')');
  if (key == nullptr || close == std::string_view::npos) return {};
  const std::string_view value = trimmed(line.substr(0, close));
  if (value.find_first_of("(\"") != std::string_view::npos || value.size() >= longest_token)
    return {};
  const Offset end = begin + static_cast<Offset>(value.size());
  if (key->value.kind == ValueKind::integer) return number(value, {begin, end});
  if (key->value.kind != ValueKind::text || holds_item(value)) return {};
  return {applicability, {{begin, begin, "\""}, {end, end, "\""}}};
}

// The end of the line or the first ")" on it.
Fix closed_quote(const FaultPlace &place, Offset quote) {
  const std::string_view text = place.text();
  const std::size_t stop = std::min(text.find_first_of(")\r\n", quote + 1), text.size());
  const std::size_t last = text.find_last_not_of(" \t", stop - 1);
  if (last <= quote) return {};
  const auto end = static_cast<Offset>(last + 1);
  return unsafe_fix({{end, end, "\""}});
}

Fix without_quotes(const FaultPlace &place, Offset quote) {
  const std::size_t close = place.text().find('"', quote + 1);
  if (close == std::string_view::npos) return {};
  const auto end = static_cast<Offset>(close);
  return safe_fix({{quote, quote + 1, {}}, {end, end + 1, {}}});
}

// HOST:PORT, the port a number; false for anything else.
bool split_address(std::string_view text, std::string_view &host, std::string_view &port) {
  const std::size_t colon = text.rfind(':');
  if (colon == std::string_view::npos || colon == 0) return false;
  host = text.substr(0, colon);
  port = text.substr(colon + 1);
  return !port.empty() && std::all_of(port.begin(), port.end(), is_digit) &&
         host.find_first_of(":/@\"'<>,") == std::string_view::npos;
}

std::string written_address(std::string_view host, std::string_view port) {
  return "(HOST = " + std::string(host) + ")(PORT = " + std::string(port) + ")";
}

// A descriptor for "host:port/service".
Fix descriptor(const FaultPlace &place, Offset at) {
  std::string_view word = place.text().substr(at);
  word = word.substr(0, word.find_first_of(blanks));
  const auto end = at + static_cast<Offset>(word.size());
  if (pass_blanks(place.text(), end) != place.text().size()) return {};
  if (word.starts_with("//")) word.remove_prefix(2);
  const std::size_t slash = word.find('/');
  std::string_view host;
  std::string_view port;
  if (slash == std::string_view::npos || !split_address(word.substr(0, slash), host, port))
    return {};
  const std::string_view service = word.substr(slash + 1);
  if (service.empty() || service.find_first_of("/:()=\"") != std::string_view::npos) return {};
  return unsafe_fix({{at, end,
                      "(DESCRIPTION = (ADDRESS = " + written_address(host, port) +
                          ")(CONNECT_DATA = (SERVICE_NAME = " + std::string(service) + ")))"}});
}

Fix switched_word(const FaultPlace &place) {
  const std::vector<std::string_view> words = choices(*place.trace().row_of(*place.item()));
  const std::string_view value = trimmed(value_of(place));
  const std::string_view word = switch_word(value);
  if (std::find(words.begin(), words.end(), word) != words.end())
    return with_value(place, Applicability::safe, word);
  const std::string_view near = near_word(value, words);
  return near.empty() ? Fix() : with_value(place, Applicability::unsafe, near);
}

void mend_protocol(const FaultPlace &place, Diagnosis &diagnosis) {
  const std::string_view protocol = value_of(place);
  if (is_one_of(protocol, {"TCPS", "WSS", "HTTPS"})) {
    diagnosis.remedy = "give an address that is served by TCP, if it may do without the encryption";
    return;
  }
  const bool misspelt = is_one_of(protocol, {"TCPIP", "TCP/IP", "TCP4", "TCP6"}) ||
                        !near_word(protocol, {"TCP"}).empty();
  if (misspelt) {
    diagnosis.remedy = "did you mean TCP?";
    diagnosis.fix = with_value(place, Applicability::unsafe, "TCP");
    return;
  }
  diagnosis.fix = without_address(place);
  diagnosis.remedy = diagnosis.fix ? "remove the address: another one is left"
                                   : "give an address that is served by TCP";
}

// Only "=" can stand between a key and what follows.
Fix with_equal(const FaultPlace &place) {
  const Item &item = *place.item();
  const Key *const key = place.trace().row_of(item);
  const std::optional<WrittenItem> written = item_at(place.text(), item.open);
  if (key == nullptr || !written) return place.removal(item.open);
  const bool is_block = key->value.kind == ValueKind::block;
  const bool fits = is_block ? place.text().substr(place.fault().at).starts_with('(')
                             : word_of(place.text(), *written).has_value();
  if (!fits) return place.removal(item.open);
  return safe_fix({{item.key.end, item.key.end, " ="}});
}

// "()" says nothing; more than that is lost.
Fix without_key(const FaultPlace &place) {
  const std::size_t open = place.text().find_last_not_of(blanks, place.fault().at - 1);
  if (open == std::string_view::npos || place.text()[open] != '(') return {};
  Fix fix = place.removal(static_cast<Offset>(open));
  if (fix &&
      place.slice({fix.edits[0].begin, fix.edits[0].end}).find('=') == std::string_view::npos)
    fix.applicability = Applicability::safe;
  return fix;
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

// "(ADDRESS = host:port)"
Fix address_block(const FaultPlace &place) {
  const std::optional<WrittenItem> item = item_at(place.text(), place.item()->open);
  const std::optional<Span> word = item ? word_of(place.text(), *item) : std::nullopt;
  std::string_view host;
  std::string_view port;
  if (!word || !place.has_key(*item, "ADDRESS") || !split_address(place.slice(*word), host, port))
    return {};
  return unsafe_fix({{word->begin, word->end, written_address(host, port)}});
}

}  // namespace

bool mend_invisible(const FaultPlace &place, Diagnosis &diagnosis) {
  if (diagnosis.rule == Rule::unclosed_quote || diagnosis.rule == Rule::unclosed_block)
    return false;
  TokenReader tokens(place.text(),
                     std::min<Offset>(place.fault().at, static_cast<Offset>(place.text().size())));
  const Token token = tokens.next();
  if (token.kind != TokenKind::word || token.span.begin != place.fault().at) return false;
  const std::string_view odd = odd_character(place.slice(token.span));
  Fix fix = odd.empty() ? Fix() : all_visible(place);
  if (!fix) return false;
  diagnosis.at = static_cast<Offset>(odd.data() - place.text().data());
  if (diagnosis.rule != Rule::odd_bytes)
    diagnosis.text = "the invisible character " + visible(odd) + " is no blank here";
  diagnosis.rule = Rule::odd_bytes;
  diagnosis.remedy = visible_instead(odd) == " " ? "write a blank instead" : "";
  diagnosis.fix = std::move(fix);
  return true;
}

void mend_value(const FaultPlace &place, Diagnosis &diagnosis) {
  switch (diagnosis.rule) {
    case Rule::no_block:
      diagnosis.fix = descriptor(place, diagnosis.at);
      return;
    case Rule::quoted_entry:
      diagnosis.fix = without_quotes(place, diagnosis.at);
      return;
    case Rule::unclosed_quote:
      diagnosis.fix = closed_quote(place, diagnosis.at);
      return;
    case Rule::missing_key:
      diagnosis.fix = without_key(place);
      return;
    default:
      break;
  }
  if (place.item() == nullptr) return;
  switch (diagnosis.rule) {
    case Rule::unquoted_value:
      diagnosis.fix = whole_value(place, Applicability::safe);
      return;
    case Rule::comment_in_value:
      diagnosis.fix = whole_value(place, Applicability::unsafe);
      return;
    case Rule::bad_word:
      diagnosis.fix = switched_word(place);
      return;
    case Rule::bad_number:
      diagnosis.fix = number(value_of(place), place.item()->value);
      return;
    case Rule::bad_protocol:
      return mend_protocol(place, diagnosis);
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
      diagnosis.fix = address_block(place);
      return;
    default:
      return;
  }
}

}  // namespace kztns
