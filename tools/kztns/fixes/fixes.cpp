#include "fixes/fixes.h"

#include "fixes/block_fixes.h"
#include "fixes/fault_place.h"
#include "fixes/invisible_fixes.h"
#include "fixes/key_fixes.h"
#include "fixes/misplaced_fixes.h"
#include "fixes/stray_fixes.h"
#include "fixes/value_fixes.h"

namespace kztns {
namespace {

// Whether the fault and its item lie before the entry's end: the library may read on into
// the next one.
bool is_within(const FaultPlace &place, const Diagnosis &diagnosis) {
  const std::size_t end = place.text().size();
  if (diagnosis.rule == Rule::unclosed_quote) return diagnosis.at < end;
  const Item *const item = place.item();
  return place.fault().at <= end && diagnosis.at <= end &&
         (item == nullptr || (item->key.end <= end && item->value.end <= end));
}

void add_fix(const FaultPlace &place, std::string_view name, Diagnosis &diagnosis) {
  if (!is_within(place, diagnosis) || mend_invisible(place, diagnosis) ||
      mend_stray_text(place, diagnosis))
    return;
  switch (diagnosis.rule) {
    case Rule::unknown_key:
      return mend_unknown_key(place, name, diagnosis);
    case Rule::misplaced_key:
      return mend_misplaced_key(place, diagnosis);
    case Rule::second_address:
      return mend_second_address(place, diagnosis);
    case Rule::second_connect_data:
      return mend_second_connect_data(place, diagnosis);
    case Rule::missing_equal:
      if (mend_split_key(place, diagnosis)) return;
      [[fallthrough]];
    default:
      return mend_value(place, diagnosis);
  }
}

}  // namespace

Diagnosis diagnose_with_fix(const Subject &subject, const Trace &trace, std::string_view name) {
  Diagnosis diagnosis = diagnose(subject, trace, name);
  add_fix(FaultPlace(subject, trace), name, diagnosis);
  return diagnosis;
}

}  // namespace kztns
