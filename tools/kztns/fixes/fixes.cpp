#include "fixes/fixes.h"

#include "fixes/address_fixes.h"
#include "fixes/block_fixes.h"
#include "fixes/fault_place.h"
#include "fixes/invisible_fixes.h"
#include "fixes/key_fixes.h"
#include "fixes/misplaced_fixes.h"
#include "fixes/missing_key_fixes.h"
#include "fixes/stray_fixes.h"
#include "fixes/value_fixes.h"
#include "scan/commented_items.h"

namespace kztns {
namespace {

// Whether the fault and its item lie before the entry's end: the library may read on into
// the next one.
bool is_within(const FaultPlace &place) {
  const std::size_t end = place.text().size();
  const Offset at = place.diagnosis().at;
  if (place.rule() == Rule::unclosed_quote) return at < end;
  const Item *const item = place.item();
  return place.fault().at <= end && at <= end &&
         (item == nullptr || (item->key.end <= end && item->value.end <= end));
}

Mending mend_empty_block(const FaultPlace &place) {
  const Offset open = place.item()->open;
  const auto item = commented_item(place.text(), open, {});
  if (!item) return {place.removal(open)};
  std::string remedy = "uncomment " + excerpt(key_text(place.text(), *item));
  remedy += " at " + place.subject().text.place(*item);
  return {{}, std::move(remedy)};
}

Mending mend_item(const FaultPlace &place) {
  switch (place.rule()) {
    case Rule::unknown_key:
      return mend_unknown_key(place);
    case Rule::misplaced_key:
      return mend_misplaced_key(place);
    case Rule::second_address:
      return {with_address_lists(place)};
    case Rule::second_connect_data:
      return {with_one_connect_data(place)};
    case Rule::missing_equal:
      if (auto mending = mend_split_key(place)) return *std::move(mending);
      return {with_equal(place)};
    case Rule::missing_close:
      return mend_late_close(place);
    case Rule::empty_block:
      return mend_empty_block(place);
    case Rule::missing_value:
      return {place.removal(place.item()->open)};
    case Rule::value_for_block:
      return {written_address_block(place)};
    case Rule::block_for_value:
      return {without_inner_parentheses(place)};
    case Rule::comment_in_value:
    case Rule::unquoted_value:
    case Rule::bad_word:
    case Rule::bad_number:
    case Rule::bad_protocol:
      return mend_refused_value(place);
    default:
      return {};
  }
}

Mending mend(const FaultPlace &place) {
  if (auto mending = mend_stray_text(place)) return *std::move(mending);
  switch (place.rule()) {
    case Rule::no_block:
      return {written_descriptor(place)};
    case Rule::quoted_entry:
      return {without_quotes(place)};
    case Rule::unclosed_quote:
      return {closed_quote(place)};
    case Rule::missing_key:
      return mend_missing_key(place);
    default:
      return place.item() == nullptr ? Mending() : mend_item(place);
  }
}

}  // namespace

Diagnosis diagnose_with_fix(const Subject &subject, const Trace &trace, std::string_view name) {
  Diagnosis diagnosis = diagnose(subject, trace, name);
  const FaultPlace place(subject, trace, diagnosis, name);
  if (!is_within(place)) return diagnosis;
  if (auto invisible = diagnose_invisible(place)) return *std::move(invisible);
  Mending mending = mend(place);
  if (!mending.remedy.empty()) diagnosis.remedy = std::move(mending.remedy);
  diagnosis.fix = std::move(mending.fix);
  return diagnosis;
}

}  // namespace kztns
