#include "check/fixability.h"

#include <algorithm>
#include <map>

namespace kztns {
namespace {

// The one of two that may do less.
Applicability weaker(Applicability left, Applicability right) {
  if (left == Applicability::none || right == Applicability::none) return Applicability::none;
  return left == Applicability::unsafe ? left : right;
}

// Whether the entry around a place is refused for it.
bool refuses_entry(const Finding &finding) {
  const Concern concern = row_of(finding.rule).concern;
  const bool is_of_entry = concern == Concern::entry || concern == Concern::parentheses;
  return finding.severity == Severity::error && (is_of_entry || finding.in_entry);
}

}  // namespace

bool is_mended_with_entry(const Finding &finding) {
  return row_of(finding.rule).concern == Concern::entry;
}

bool is_mended_first(const Finding &finding) {
  return finding.fix.first || finding.rule == Rule::byte_order_mark ||
         finding.rule == Rule::cr_line_ends || finding.rule == Rule::odd_bytes;
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
    if (!finding.fix || !is_mended_with_entry(finding)) continue;
    const auto entry = of_entries.find(entry_of(finding));
    if (entry != of_entries.end())
      finding.applied_among = weaker(finding.applied_among, entry->second);
  }
}

}  // namespace kztns
