#include "fixes/key_fixes.h"

#include "fixes/bare_items.h"
#include "fixes/block_fixes.h"
#include "fixes/file_fixes.h"
#include "fixes/foreign_keys.h"
#include "fixes/value_fixes.h"
#include "text/characters.h"
#include "text/escape.h"
#include "text/words.h"

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
  const std::optional<WrittenItem> item = item_at(place.text(), place.item()->open);
  return !item || place.holds_what_counts({item->value, item->end});
}

// Whether the item at fault is a remark; if so, it becomes a comment.
bool mend_remark(const FaultPlace &place, Diagnosis &diagnosis) {
  const std::optional<WrittenItem> item = item_at(place.text(), place.item()->open);
  if (!item || !place.is_remark(*item)) return false;
  diagnosis.remedy = "make a comment of it";
  diagnosis.fix = place.commented_out(*item);
  return true;
}

// Another key instead of the one at fault, which is at a place; removes the item when that
// one is written already, and nothing is given up with it.
Fix renamed(const FaultPlace &place, Span at, std::string_view key, Applicability applicability) {
  const Key *const row = key_named(place.block(), key);
  const bool fits = row != nullptr && (may_repeat(*row) || set_by(place, key).empty());
  if (!fits) return holds_what_counts(place) ? Fix() : place.removal(place.item()->open);
  return {applicability, {{at.begin, at.end, std::string(key)}}};
}
Fix renamed(const FaultPlace &place, std::string_view key, Applicability applicability) {
  return renamed(place, place.item()->key, key, applicability);
}

// Whether a fix writes another key, and does not remove the item.
bool renames(const FaultPlace &place, const Fix &fix) {
  return fix && fix.edits[0].begin == place.item()->key.begin;
}

// The value of the item at fault; absent where it is no single word.
std::optional<Span> value_at(const FaultPlace &place) {
  const std::optional<WrittenItem> item = item_at(place.text(), place.item()->open);
  return item ? word_of(place.text(), *item) : std::nullopt;
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
  const std::optional<WrittenItem> item = item_at(place.text(), place.item()->open);
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

Fix foreign_fix(const FaultPlace &place, std::string_view name, const ForeignKey &key) {
  const Offset open = place.item()->open;
  switch (key.treatment) {
    case ForeignTreatment::drop:
      return holds_what_counts(place) ? Fix() : place.removal(open, Applicability::safe);
    case ForeignTreatment::lose:
      return holds_what_counts(place) ? Fix() : place.removal(open);
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
      return unwrapped(place, name);
    default:
      return {};
  }
}

// A key that is written as two words: CONNECT DATA, HO=ST.
struct SplitKey {
  Span span;
  std::string_view key;
};

std::optional<SplitKey> split_key(const FaultPlace &place) {
  const Span first = place.item()->key;
  Offset next = pass_blanks(place.text(), first.end);
  if (place.text().substr(next).starts_with('=')) next = pass_blanks(place.text(), next + 1);
  const Span second = {next, end_of_word(place.text(), next)};
  const bool is_key = place.text().substr(pass_blanks(place.text(), second.end)).starts_with('=');
  const std::string begin(place.slice(first));
  for (const char *const link : {"_", ""}) {
    const Key *const key =
        key_named(place.block(), begin + link + std::string(place.slice(second)));
    if (key != nullptr && is_key) return SplitKey{{first.begin, second.end}, key->word};
  }
  return std::nullopt;
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
  const Offset next = pass_blanks(place.text(), place.item()->key.end);
  return next < place.text().size() && place.text()[next] != ')';
}

bool may_be_given_up(const FaultPlace &place) {
  return !place.lacks_what_counts() && !holds_what_counts(place);
}

// Whether the key is written otherwise than it has to be; if so, it is mended.
bool mend_form_of_key(const FaultPlace &place, Diagnosis &diagnosis) {
  if (mend_split_key(place, diagnosis)) return true;
  if (const std::optional<Offset> colon = colon_after_key(place)) {
    diagnosis.remedy = "put \"=\" instead of \":\"";
    diagnosis.fix = safe_fix({{*colon, end_of_foreign_equal(place.text(), *colon), "="}});
    return true;
  }
  return false;
}

bool is_removed(const ForeignKey &key) {
  return key.treatment == ForeignTreatment::drop || key.treatment == ForeignTreatment::lose;
}

void mend_foreign_key(const FaultPlace &place, std::string_view name, const ForeignKey &key,
                      Diagnosis &diagnosis) {
  // What is told of any key that no entry has fits a list with something else in it.
  const bool is_other_list = key.treatment == ForeignTreatment::unwrap &&
                             place.block() == Block::entry && !is_list_of_descriptions(place);
  if (is_other_list) return;
  diagnosis.remedy = remedy_of(key);
  if (key.treatment == ForeignTreatment::refuse) return;
  if (is_removed(key) && mend_remark(place, diagnosis)) return;
  diagnosis.fix = foreign_fix(place, name, key);
  const bool may_be_on = key.treatment == ForeignTreatment::drop_off;
  if (!renames(place, diagnosis.fix) && !may_be_on)
    diagnosis.fix = without_first_of_joined(place).value_or(std::move(diagnosis.fix));
  const bool has_target = !key.target.empty() && key_named(place.block(), key.target) != nullptr;
  const std::string_view setter = has_target ? set_by(place, key.target) : "";
  if (is_number(place, key.target) && value_has_unit(place))
    diagnosis.remedy = remedy_of(key, "it takes a number alone, in the connection layer's unit");
  if (!setter.empty())
    diagnosis.remedy = "remove the item: " + excerpt(setter) + " is set here, too";
}

}  // namespace

bool mend_split_key(const FaultPlace &place, Diagnosis &diagnosis) {
  const std::optional<SplitKey> split = split_key(place);
  if (!split) return false;
  diagnosis.remedy = "did you mean " + std::string(split->key) + "?";
  diagnosis.fix = renamed(place, split->span, split->key, Applicability::unsafe);
  return true;
}

void mend_unknown_key(const FaultPlace &place, std::string_view name, Diagnosis &diagnosis) {
  if (mend_form_of_key(place, diagnosis)) return;
  const std::string_view word = place.trace().key_word_of(*place.item());
  if (const ForeignKey *const foreign = foreign_key(word))
    return mend_foreign_key(place, name, *foreign, diagnosis);
  if (is_refused(word)) {
    diagnosis.remedy = "connections are not encrypted, and use no proxy";
    return;
  }
  const std::string_view near = near_key(word, place.block());
  if (!is_item(place))
    diagnosis.remedy = row_of(Rule::missing_key).remedy;
  else if (!near.empty())
    diagnosis.fix = renamed(place, near, Applicability::unsafe);
  else if (may_be_given_up(place) && !mend_remark(place, diagnosis))
    diagnosis.fix = place.removal(place.item()->open);
}

}  // namespace kztns
