#include "check/check_once.h"

#include <algorithm>

#include "check/conflicts.h"
#include "check/entry_checker.h"
#include "check/file_rules.h"
#include "check/fixability.h"
#include "fixes/file_fixes.h"

namespace kztns {
namespace {

void list_entries(const NamesText &text, const FileScan &scan, CheckReport &report) {
  report.entries.reserve(scan.entries().size());
  for (const Entry &entry : scan.entries())
    report.entries.push_back(
        {std::string(scan.name(entry)), text.position(entry.at), entry.verdict});
}

}  // namespace

CheckReport check_once(const NamesText &text, const CheckRequest &request) {
  CheckReport report;
  report.file = request.file;
  Findings findings(text, request.most_of_a_rule, report);
  EntryChecker checker(text, request, findings);
  const FileScan scan(text, checker);
  apply_file_rules(scan, checker.reported_stop(), checker.told_ranges(), findings);
  report_conflicts(text, findings, report);
  for (const Entry &entry : scan.entries())
    ++report.verdicts[static_cast<std::size_t>(entry.verdict)];
  report.lookups_end = scan.stop().kind != StopKind::end || !scan.skip_mismatches().empty() ||
                       hiding_carriage_return(text.text()).has_value();
  report.splits = std::any_of(report.findings.begin(), report.findings.end(),
                              [](const Finding &finding) { return finding.fix.splits; });
  if (request.with_entries) list_entries(text, scan, report);
  if (!report.findings.empty())
    for (const Entry &entry : scan.entries()) report.starts.push_back(entry.at);
  sort(report.findings);
  settle_fixes(report);
  return report;
}

}  // namespace kztns
