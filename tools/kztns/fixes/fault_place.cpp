#include "fixes/fault_place.h"

#include <algorithm>

#include "fixes/file_fixes.h"
#include "fixes/foreign_fixes.h"
#include "scan/item_text.h"
#include "scan/tokens.h"
#include "text/spelling.h"

namespace kztns {
namespace {

// SERVICE_NAME and SID set one field.
bool sets_same(std::string_view left, std::string_view right) {
  const auto is_service = [](std::string_view word) {
    return equal_but_for_case(word, "SERVICE_NAME") || equal_but_for_case(word, "SID");
  };
  return equal_but_for_case(left, right) || (is_service(left) && is_service(right));
}

// Whether items of a key are never removed: servers, services, encryption and proxies.
bool must_stay(std::string_view key) {
  return is_refused(key) || is_one_of(key, {"HOST", "ADDRESS", "ADDRESS_LIST", "SERVICE_NAME",
                                            "SID", "CONNECT_DATA", "DESCRIPTION"});
}

// The comments of an item, each with the end of its line.
std::string comments_in(std::string_view item) {
  std::string comments;
  for_each_comment(item, 0, static_cast<Offset>(item.size()), [&](Offset begin, Offset end) {
    comments += ' ' + std::string(item.substr(begin, end - begin)) + '\n';
  });
  return comments;
}

}  // namespace

bool FaultPlace::has_key(const WrittenItem &item, std::string_view word) const {
  return equal_but_for_case(key_of(item), word);
}

const Item *FaultPlace::item() const {
  if (fault().item < 0) return nullptr;
  return &trace_.items()[static_cast<std::size_t>(fault().item)];
}

std::optional<WrittenItem> FaultPlace::written_item() const {
  return item() == nullptr ? std::nullopt : item_at(text_, item()->open);
}

std::optional<WrittenItem> FaultPlace::opener(const Frame &frame) const {
  if (frame.item < 0) return std::nullopt;
  return item_at(text_, trace_.items()[static_cast<std::size_t>(frame.item)].open);
}

std::vector<WrittenItem> FaultPlace::items_of(const Frame &frame) const {
  if (frame.item >= 0) {
    const std::optional<WrittenItem> item = opener(frame);
    return item ? children(*item) : std::vector<WrittenItem>();
  }
  return trace_.items().empty() ? std::vector<WrittenItem>()
                                : items_from(text_, trace_.items().front().open);
}

bool FaultPlace::is_set(const std::vector<WrittenItem> &items, std::string_view word) const {
  return std::any_of(items.begin(), items.end(),
                     [&](const WrittenItem &item) { return sets_same(key_of(item), word); });
}

bool FaultPlace::has_equal(const std::vector<WrittenItem> &items, const WrittenItem &other) const {
  const std::optional<Span> value = word_of(text_, other);
  return value && std::any_of(items.begin(), items.end(), [&](const WrittenItem &item) {
           const std::optional<Span> word = word_of(text_, item);
           return word && equal_but_for_case(key_of(item), key_of(other)) &&
                  slice(*word) == slice(*value);
         });
}

bool FaultPlace::holds_what_counts(Span span) const {
  TokenReader tokens(text_.substr(0, span.end), span.begin);
  Token before = {TokenKind::end, {}};
  for (Token token = tokens.next(); token.kind != TokenKind::end; token = tokens.next()) {
    if (before.kind == TokenKind::open && must_stay(slice(token.span))) return true;
    // Without parentheses, "KEY = a, KEY = b", keys follow commas.
    if (token.kind == TokenKind::equal && before.kind == TokenKind::word) {
      const std::string_view word = slice(before.span);
      if (must_stay(word.substr(word.find_last_of(",;") + 1))) return true;
    }
    before = token;
  }
  return false;
}

bool FaultPlace::lacks_what_counts() const {
  const std::vector<WrittenItem> items = items_of(frame());
  const auto has = [&](std::string_view key) { return is_set(items, key); };
  switch (block()) {
    case Block::entry:
      return !has("DESCRIPTION");
    case Block::description:
      return !(has("ADDRESS") || has("ADDRESS_LIST")) || !has("CONNECT_DATA");
    case Block::address_list:
      return !has("ADDRESS");
    case Block::address:
      return !has("HOST") || !has("PORT");
    case Block::connect_data:
      return !has("SERVICE_NAME");  // or SID
    default:
      return false;
  }
}

Fix FaultPlace::commented_out(const WrittenItem &remark) const {
  if (counted_end(text_, remark.open, remark.end) != remark.end) return {};
  return fix_of_part(text_, remark.open, remark.end);
}

Edit FaultPlace::without(Span span) const {
  return {span.begin, span.end, comments_in(slice(span))};
}

Fix FaultPlace::removal(Offset open, Applicability applicability) const {
  const std::optional<Span> span = item_to_remove(text_, open);
  if (!span) return {};
  return {applicability, {without(*span)}};
}

Fix FaultPlace::with_value(Applicability applicability, std::string_view value) const {
  const Span &old = item()->value;
  return {applicability, {{old.begin, old.end, std::string(value)}}};
}

std::string_view switch_word(std::string_view word) {
  for (const std::string_view on : {"ON", "YES", "TRUE", "1"})
    if (equal_but_for_case(word, on)) return "ON";
  for (const std::string_view off : {"OFF", "NO", "FALSE", "0"})
    if (equal_but_for_case(word, off)) return "OFF";
  return {};
}

}  // namespace kztns
