#include "fixes/key_fixes.h"

#include <algorithm>
#include <initializer_list>

#include "fixes/bare_items.h"
#include "fixes/block_fixes.h"
#include "fixes/file_fixes.h"
#include "fixes/foreign_fixes.h"
#include "fixes/number_fixes.h"
#include "scan/item_words.h"
#include "text/characters.h"
#include "text/escape.h"
#include "text/spelling.h"

namespace kztns {
namespace {

// The key of the item that sets the same as a key in the block at fault; empty for none.
std::string_view set_by(const FaultPlace &place, std::string_view key) {
  for (const WrittenItem &item : place.items_of(place.frame()))
    if (place.is_set({item}, key)) return place.key_of(item);
  return {};
}

// Whether a block may have several items of a key, and each counts.
bool may_repeat(const Key &key) {
  return key.value.kind == ValueKind::block &&
         (key.value.opens == Block::description || key.value.opens == Block::address_list ||
          key.value.opens == Block::address);
}

// Whether something in the item at fault is not given up with it.
bool holds_what_counts(const FaultPlace &place) {
  const std::optional<WrittenItem> item = place.written_item();
  return !item || place.holds_what_counts({item->value, item->end});
}

// A remark becomes a comment.
std::optional<Mending> mend_remark(const FaultPlace &place) {
  const std::optional<WrittenItem> item = place.written_item();
  if (!item || !place.is_remark(*item)) return std::nullopt;
  return Mending{place.commented_out(*item), "make a comment of it"};
}

// The value of the item at fault; absent where it is no single word.
std::optional<Span> value_at(const FaultPlace &place) {
  const std::optional<WrittenItem> item = place.written_item();
  return item ? word_of(place.text(), *item) : std::nullopt;
}

// Whether the item at fault tells the kind of server process.
bool is_kind_of_process(const FaultPlace &place) {
  const std::optional<Span> value = value_at(place);
  return is_one_of(place.slice(place.item()->key), {"SERVER"}) && value &&
         is_one_of(unquoted(place.slice(*value)), {"DEDICATED", "SHARED", "POOLED"});
}

// Whether an item has one of some keys, or becomes it when its own is mended.
bool may_become(const FaultPlace &place, const WrittenItem &item,
                std::initializer_list<std::string_view> keys) {
  const std::string_view word = place.key_of(item);
  const ForeignKey *const foreign = foreign_key(word);
  const std::string_view target =
      foreign != nullptr ? foreign->target : near_key(word, place.block());
  return is_one_of(word, keys) || is_one_of(target, keys);
}

// Whether the item at fault may be the host or the service of its block: no other item is.
bool may_be_what_lacks(const FaultPlace &place) {
  if (is_kind_of_process(place)) return false;
  const auto lacks = [&](std::initializer_list<std::string_view> keys) {
    const std::vector<WrittenItem> items = place.items_of(place.frame());
    return std::none_of(items.begin(), items.end(), [&](const WrittenItem &item) {
      return item.open != place.item()->open && may_become(place, item, keys);
    });
  };
  if (place.block() == Block::address) return lacks({"HOST"});
  return place.block() == Block::connect_data && lacks({"SERVICE_NAME", "SID"});
}

bool may_be_removed(const FaultPlace &place) {
  return !holds_what_counts(place) && !may_be_what_lacks(place);
}

// Another key instead of the one at fault, which is at a place; removes the item when that
// one is written already, and nothing is given up with it.
Fix renamed(const FaultPlace &place, Span at, std::string_view key, Applicability applicability) {
  const Key *const row = key_named(place.block(), key);
  if (row == nullptr) return {};
  const bool is_free = may_repeat(*row) || set_by(place, key).empty();
  if (!is_free) return may_be_removed(place) ? place.removal(place.item()->open) : Fix();
  return {applicability, {{at.begin, at.end, std::string(key)}}};
}
Fix renamed(const FaultPlace &place, std::string_view key, Applicability applicability) {
  return renamed(place, place.item()->key, key, applicability);
}

// Whether a fix writes another key, and does not remove the item.
bool renames(const FaultPlace &place, const Fix &fix) {
  return fix && fix.edits[0].begin == place.item()->key.begin;
}

std::string_view switch_at(const FaultPlace &place) {
  const std::optional<Span> value = value_at(place);
  return value ? switch_word(unquoted(place.slice(*value))) : "";
}

Fix renamed_switch(const FaultPlace &place, std::string_view key) {
  const std::string_view word = switch_at(place);
  if (word.empty()) return place.removal(place.item()->open);
  Fix fix = renamed(place, key, Applicability::unsafe);
  const Span value = *value_at(place);
  if (renames(place, fix) && place.slice(value) != word)
    fix.edits.push_back({value.begin, value.end, std::string(word)});
  return fix;
}

// Whether the value of the item at fault is a number with a unit.
bool value_has_unit(const FaultPlace &place) {
  const std::optional<WrittenItem> item = place.written_item();
  return item && has_unit(trimmed(place.slice({item->value, item->end - 1})));
}

// A key of a number that other readers take with a unit, too: here it is another one, which
// the connection layer knows.
Fix renamed_number(const FaultPlace &place, std::string_view key) {
  Fix fix = renamed(place, key, Applicability::unsafe);
  return renames(place, fix) && value_has_unit(place) ? Fix() : fix;
}

bool is_number(const FaultPlace &place, std::string_view key) {
  const Key *const row = key_named(place.block(), key);
  return row != nullptr && row->value.kind == ValueKind::integer;
}

Fix fix_by_treatment(const FaultPlace &place, const ForeignKey &key) {
  const Offset open = place.item()->open;
  switch (key.treatment) {
    case ForeignTreatment::drop:
    case ForeignTreatment::lose:
      if (!may_be_removed(place)) return {};
      return place.removal(open, key.treatment == ForeignTreatment::drop ? Applicability::safe
                                                                         : Applicability::unsafe);
    case ForeignTreatment::rename:
      return renamed(place, key.target, Applicability::safe);
    case ForeignTreatment::rename_unsafe:
      return is_number(place, key.target) ? renamed_number(place, key.target)
                                          : renamed(place, key.target, Applicability::unsafe);
    case ForeignTreatment::rename_switch:
      return renamed_switch(place, key.target);
    case ForeignTreatment::drop_off:
      return switch_at(place) == "OFF" ? place.removal(open, Applicability::safe) : Fix();
    case ForeignTreatment::drop_address:
      return place.is_set(place.items_of(place.frame()), "HOST") ? Fix() : without_address(place);
    case ForeignTreatment::unwrap:
      return unwrapped(place);
    default:
      return {};
  }
}

// "(SERVER = DEDICATED, SERVICE_NAME = s)": removes the first one of several items in one pair of
// parentheses, which is at fault; no fix where a comment would be lost. Absent for a single item.
std::optional<Fix> without_first_of_joined(const FaultPlace &place) {
  const Span key = place.item()->key;
  const std::vector<BareItem> items =
      bare_items(place.text(), key.begin, [&](std::string_view word) {
        return key_named(place.block(), word) != nullptr || foreign_key(word) != nullptr;
      });
  if (items.size() < 2) return std::nullopt;
  const Span removed = {key.begin, items[1].span.begin};
  if (place.slice(removed).find('#') != std::string_view::npos) return Fix();
  return unsafe_fix({{removed.begin, removed.end, {}}});
}

// "(KEY:value)": where its ":" is.
std::optional<Offset> colon_after_key(const FaultPlace &place) {
  const std::string_view word = place.slice(place.item()->key);
  const std::size_t length = word.find(':');
  if (length == std::string_view::npos ||
      key_named(place.block(), word.substr(0, length)) == nullptr)
    return std::nullopt;
  return place.item()->key.begin + static_cast<Offset>(length);
}

// Whether more than a word is in the parentheses, which may be a value: "(PORT1521)".
bool is_item(const FaultPlace &place) {
  const Offset next = place.after_blanks(place.item()->key.end);
  return next < place.text().size() && !place.has_sign(next, ')');
}

bool may_be_given_up(const FaultPlace &place) {
  return !place.lacks_what_counts() && !holds_what_counts(place);
}

bool is_removed(const ForeignKey &key) {
  return key.treatment == ForeignTreatment::drop || key.treatment == ForeignTreatment::lose;
}

Fix fix_of_foreign_key(const FaultPlace &place, const ForeignKey &key) {
  Fix fix = fix_by_treatment(place, key);
  const bool may_be_on = key.treatment == ForeignTreatment::drop_off;
  if (renames(place, fix) || may_be_on) return fix;
  return without_first_of_joined(place).value_or(std::move(fix));
}

std::string remedy_of_foreign_key(const FaultPlace &place, const ForeignKey &key) {
  const bool has_target = !key.target.empty() && key_named(place.block(), key.target) != nullptr;
  const std::string_view setter = has_target ? set_by(place, key.target) : "";
  if (!setter.empty()) return "remove the item: " + excerpt(setter) + " is set here, too";
  if (!key.target.empty() && !has_target)
    return "write " + std::string(key.target) + " in " + places_of(item_word(key.target).type) +
           ": " + std::string(key.here);
  if (is_number(place, key.target) && value_has_unit(place))
    return remedy_of(key, "it takes a number alone, in the connection layer's unit");
  return remedy_of(key);
}

// "(ADDRESS = (SERVER = db1)(PORT = 1))" and "(CONNECT_DATA = (SERVER = sales))": the key of what
// the block lacks. Empty where SERVER may be the kind of server process.
std::string_view meant_by_server(const FaultPlace &place, const ForeignKey &key) {
  const std::optional<Span> value = value_at(place);
  if (key.word != "SERVER" || !value || !may_be_what_lacks(place)) return {};
  return place.block() == Block::address ? "HOST" : "SERVICE_NAME";
}

Mending mend_foreign_key(const FaultPlace &place, const ForeignKey &key) {
  // A word for a process may be misspelt, a host has no other meaning there.
  if (const std::string_view meant = meant_by_server(place, key); !meant.empty())
    return {meant == "HOST" ? renamed(place, meant, Applicability::unsafe) : Fix(),
            "did you mean " + std::string(meant) + "?"};
  // What is told of any key that no entry has fits a list with something else in it.
  const bool is_other_list = key.treatment == ForeignTreatment::unwrap &&
                             place.block() == Block::entry && !is_list_of_descriptions(place);
  if (is_other_list) return {};
  if (key.treatment == ForeignTreatment::refuse) return {{}, remedy_of(key)};
  if (is_removed(key))
    if (auto mending = mend_remark(place)) return *std::move(mending);
  return {fix_of_foreign_key(place, key), remedy_of_foreign_key(place, key)};
}

// A key that is written as two words, on one line or on two: CONNECT DATA, HO=ST.
struct SplitKey {
  Span span;
  std::string_view key;
};

std::optional<SplitKey> split_key(const FaultPlace &place) {
  const Span first = place.item()->key;
  Offset next = place.after_blanks(first.end);
  if (place.has_sign(next, '=')) next = place.after_blanks(next + 1);
  const Span second = place.word_at(next);
  const bool is_key = place.has_sign(place.after_blanks(second.end), '=');
  if (place.slice({first.end, second.begin}).find('#') != std::string_view::npos)
    return std::nullopt;  // a comment would be lost
  const std::string begin(place.slice(first));
  for (const char *const link : {"_", ""}) {
    const Key *const key =
        key_named(place.block(), begin + link + std::string(place.slice(second)));
    if (key != nullptr && is_key) return SplitKey{{first.begin, second.end}, key->word};
  }
  return std::nullopt;
}

}  // namespace

std::optional<Mending> mend_split_key(const FaultPlace &place) {
  const std::optional<SplitKey> split = split_key(place);
  if (!split) return std::nullopt;
  return Mending{renamed(place, split->span, split->key, Applicability::unsafe),
                 "did you mean " + std::string(split->key) + "?"};
}

Mending mend_unknown_key(const FaultPlace &place) {
  if (auto mending = mend_split_key(place)) return *std::move(mending);
  if (const std::optional<Offset> colon = colon_after_key(place))
    return {safe_fix({{*colon, end_of_foreign_equal(place.text(), *colon), "="}}),
            "put \"=\" instead of \":\""};
  const std::string_view word = place.trace().key_word_of(*place.item());
  if (const ForeignKey *const foreign = foreign_key(word)) return mend_foreign_key(place, *foreign);
  if (is_refused(word)) return {{}, "connections are not encrypted, and use no proxy"};
  if (!is_item(place)) return {{}, std::string(row_of(Rule::missing_key).remedy)};
  if (const std::string_view near = near_key(word, place.block()); !near.empty())
    return {renamed(place, near, Applicability::unsafe)};
  if (!may_be_given_up(place)) return {};
  if (auto mending = mend_remark(place)) return *std::move(mending);
  return {place.removal(place.item()->open)};
}

}  // namespace kztns
