#include "rules/fixability.h"

#include <algorithm>
#include <map>

namespace kztns {
namespace {

constexpr bool follows(Rule next, Rule rule) {
  return static_cast<int>(next) == static_cast<int>(rule) + 1;
}

// The rules about lookups stand between those about entries: a new one at either end of
// them has to be put on its side here.
static_assert(follows(Rule::byte_order_mark, Rule::unexplained),
              "is the rule between these two about an entry?");
static_assert(follows(Rule::duplicate, Rule::gave_up),
              "is the rule between these two about an entry?");

// The one of two that may do less.
Applicability weaker(Applicability left, Applicability right) {
  if (left == Applicability::none || right == Applicability::none) return Applicability::none;
  return left == Applicability::unsafe ? left : right;
}

// Whether the entry around a place is refused for it. Rules about lookups tell faults of
// entries, too, as those of a block: a surplus ")" for example.
bool refuses_entry(const Finding &finding) {
  return finding.severity == Severity::error &&
         (is_of_entry(finding.rule) || !finding.path.empty());
}

}  // namespace

FixKinds fix_kinds_of(Rule rule) {
  switch (rule) {
    case Rule::quoted_entry:
    case Rule::byte_order_mark:
    case Rule::utf_16:
    case Rule::cr_line_ends:
    case Rule::comma_list:
    case Rule::stray_comma:
    case Rule::paren_in_comment:
    case Rule::after_reserved:
    case Rule::abbreviated_word:
      return FixKinds::safe;
    case Rule::missing_value:
    case Rule::block_for_value:
    case Rule::value_for_block:
    case Rule::empty_block:
    case Rule::no_block:
    case Rule::comment_in_value:
    case Rule::bad_protocol:
    case Rule::second_connect_data:
    case Rule::unclosed_quote:
    case Rule::unclosed_block:
    case Rule::missing_open:
    case Rule::extra_open:
    case Rule::extra_close:
    case Rule::second_block:
    case Rule::paren_in_quotes:
    case Rule::lost_name:
      return FixKinds::unsafe;
    case Rule::unknown_key:
    case Rule::misplaced_key:
    case Rule::missing_equal:
    case Rule::missing_key:
    case Rule::unquoted_value:
    case Rule::bad_word:
    case Rule::bad_number:
    case Rule::second_address:
    case Rule::odd_bytes:
    case Rule::stray_text:
      return FixKinds::both;
    default:
      return FixKinds::none;
  }
}

bool is_of_entry(Rule rule) {
  return rule != Rule::unknown_rule && (rule < Rule::byte_order_mark || rule > Rule::gave_up);
}

bool is_of_parentheses(Rule rule) {
  switch (rule) {
    case Rule::missing_close:
    case Rule::no_block:
    case Rule::comment_in_value:
    case Rule::unclosed_quote:
    case Rule::unclosed_block:
    case Rule::missing_open:
    case Rule::extra_open:
    case Rule::quoted_entry:
      return true;
    default:
      return false;
  }
}

void settle_fixes(CheckReport &report) {
  const auto entry_of = [&](const Finding &finding) {
    return std::upper_bound(report.starts.begin(), report.starts.end(), finding.at) -
           report.starts.begin();
  };
  std::map<std::ptrdiff_t, Applicability> of_entries;
  for (const Finding &finding : report.findings) {
    if (!refuses_entry(finding)) continue;
    Applicability &all =
        of_entries.emplace(entry_of(finding), finding.fix.applicability).first->second;
    all = weaker(all, finding.fix.applicability);
  }
  for (Finding &finding : report.findings) {
    finding.applied_among = finding.fix.applicability;
    if (!finding.fix || !is_of_entry(finding.rule) || is_of_parentheses(finding.rule)) continue;
    const auto entry = of_entries.find(entry_of(finding));
    if (entry != of_entries.end())
      finding.applied_among = weaker(finding.applied_among, entry->second);
  }
}

}  // namespace kztns
