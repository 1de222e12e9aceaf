#include "fixes/missing_key_fixes.h"

#include "text/characters.h"

namespace kztns {
namespace {

// "((KEY = ...))": the outer parentheses of the items say nothing.
Fix without_outer_parentheses(const FaultPlace &place, Offset open) {
  const std::optional<WrittenItem> outer = item_at(place.text(), open);
  const std::vector<WrittenItem> inner = items_from(place.text(), open + 1);
  if (!outer || inner.empty()) return {};
  const bool only_items = place.after_blanks(inner.back().end) + 1 == outer->end;
  return {only_items ? Applicability::safe : Applicability::unsafe,
          {{open, open + 1, {}}, {outer->end - 1, outer->end, {}}}};
}

// "(=KEY = value)"
Fix without_early_equal(const FaultPlace &place) {
  const Offset at = place.fault().at;
  if (!place.has_sign(at, '=')) return {};
  const Span key = place.word_at(place.after_blanks(at + 1));
  const bool is_item = key_named(place.block(), place.slice(key)) != nullptr &&
                       place.has_sign(place.after_blanks(key.end), '=');
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

// "( = (HOST = h)(PORT = 1))": the block gets its key. Where that is not known, it stays.
std::optional<Mending> mend_block_without_key(const FaultPlace &place, Offset open) {
  const Offset at = place.fault().at;
  const std::optional<WrittenItem> item = item_at(place.text(), open);
  if (!item || !place.has_sign(at, '=') || !place.holds_what_counts({at, item->end}))
    return std::nullopt;
  const std::string key(key_of_block(place, items_from(place.text(), at + 1)));
  if (key_named(place.block(), key) == nullptr) return Mending();
  return Mending{unsafe_fix({{at, at, key + " "}}), "write (" + key + " = ...)"};
}

// Whether an item without a key may be removed: "()" says nothing, and another one may be what the
// block lacks.
bool may_be_removed(const FaultPlace &place, Offset open) {
  const std::optional<WrittenItem> item = item_at(place.text(), open);
  if (!item) return false;
  if (place.is_remark(*item)) return true;
  const bool is_value = items_from(place.text(), place.fault().at + 1).empty();
  return !(is_value && place.lacks_what_counts()) &&
         !place.holds_what_counts({item->open, item->end});
}

// Safe for "()"; more than that is given up.
Fix without_item(const FaultPlace &place, Offset open) {
  if (!may_be_removed(place, open)) return {};
  Fix fix = place.removal(open);
  if (!fix) return {};
  const Edit &removal = fix.edits[0];
  if (place.slice({removal.begin, removal.end}).find('=') == std::string_view::npos)
    fix.applicability = Applicability::safe;
  return fix;
}

}  // namespace

Mending mend_missing_key(const FaultPlace &place) {
  const std::size_t last = place.text().find_last_not_of(blanks, place.fault().at - 1);
  const auto open = static_cast<Offset>(last);
  if (last == std::string_view::npos || !place.has_sign(open, '(')) return {};
  if (Fix fix = without_early_equal(place)) return {std::move(fix), "remove \"=\""};
  if (Fix fix = without_outer_parentheses(place, open))
    return {std::move(fix), "remove the outer parentheses"};
  if (auto mending = mend_block_without_key(place, open)) return *std::move(mending);
  return {without_item(place, open)};
}

}  // namespace kztns
