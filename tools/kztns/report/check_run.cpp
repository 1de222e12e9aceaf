#include "report/check_run.h"

namespace kztns {

RunTotals totals_of(const CheckReport &report) {
  RunTotals totals;
  totals.verdicts = report.verdicts;
  totals.severities = severities_of(report);
  for (const Finding &finding : report.findings) {
    if (finding.applied_among == Applicability::safe) ++totals.fixes.safe;
    if (finding.applied_among == Applicability::unsafe) ++totals.fixes.unsafe;
  }
  for (std::size_t i = 0; i < rule_count; ++i) {
    const auto rule = static_cast<Rule>(i);
    if (row_of(rule).fixes != FixKinds::none && left_out(report, rule) > 0)
      totals.fixes.complete = false;
  }
  return totals;
}

RunTotals totals_of(const CheckRun &run) {
  RunTotals all;
  for (const CheckReport &report : run.reports) {
    const RunTotals one = totals_of(report);
    for (std::size_t i = 0; i < verdict_count; ++i) all.verdicts[i] += one.verdicts[i];
    for (std::size_t i = 0; i < severity_count; ++i) all.severities[i] += one.severities[i];
    all.fixes.safe += one.fixes.safe;
    all.fixes.unsafe += one.fixes.unsafe;
    all.fixes.complete &= one.fixes.complete;
  }
  return all;
}

void place_edits(const NamesText &text, CheckReport &report) {
  for (Finding &finding : report.findings)
    for (const Edit &edit : finding.fix.edits)
      finding.places.push_back({text.position(edit.begin), text.position(edit.end),
                                text.character_column(edit.begin),
                                text.character_column(edit.end)});
}

}  // namespace kztns
