#include "check/check_selected.h"

#include <algorithm>

#include "check/check_file.h"
#include "check/check_once.h"
#include "check/ignores.h"

namespace kztns {
namespace {

// Comments tell findings apart by their places, so all of them have to be kept for a
// while; of a rule with more, the rest count as not ignored.
constexpr std::size_t most_before_ignores = 100'000;

void leave_out_more_than(std::size_t most, CheckReport &report) {
  std::array<std::size_t, rule_count> counts = {};
  std::erase_if(report.findings, [&](const Finding &finding) {
    const auto rule = static_cast<std::size_t>(finding.rule);
    if (++counts[rule] <= most) return false;
    ++report.left_out[rule][static_cast<std::size_t>(finding.severity)];
    return true;
  });
}

void leave_out_rules(const RuleSet &disabled, CheckReport &report) {
  const auto is_disabled = [&](const Finding &finding) {
    return disabled[static_cast<std::size_t>(finding.rule)];
  };
  std::erase_if(report.findings, is_disabled);
  for (std::size_t i = 0; i < rule_count; ++i)
    if (disabled[i]) report.left_out[i] = {};
}

// check_once or check_file.
using Check = CheckReport (*)(const NamesText &, const CheckRequest &);

// The report of a file with comments that ignore something.
CheckReport check_ignoring(Check check, const NamesText &text, const CheckRequest &request,
                           const Ignores &ignores) {
  CheckRequest all = request;
  all.with_entries = true;
  all.most_of_a_rule = std::max(request.most_of_a_rule, most_before_ignores);
  CheckReport report = check(text, all);
  ignores.apply(report);
  leave_out_more_than(request.most_of_a_rule, report);
  if (!request.with_entries) report.entries.clear();
  return report;
}

CheckReport check_with(Check check, const NamesText &text, const CheckRequest &request,
                       const RuleSet &disabled) {
  const Ignores ignores(text);
  CheckReport report =
      ignores.empty() ? check(text, request) : check_ignoring(check, text, request, ignores);
  Findings findings(text, request.most_of_a_rule, report);
  ignores.report_unknown(findings);
  sort(report.findings);
  if (disabled.any()) leave_out_rules(disabled, report);
  return report;
}

}  // namespace

CheckReport check_selected(const NamesText &text, const CheckRequest &request,
                           const RuleSet &disabled) {
  return check_with(check_file, text, request, disabled);
}

CheckReport check_selected_once(const NamesText &text, const CheckRequest &request,
                                const RuleSet &disabled) {
  return check_with(check_once, text, request, disabled);
}

}  // namespace kztns
