#include "check/check_report.h"

namespace kztns {

SeverityCounts severities_of(const CheckReport &report) {
  SeverityCounts all = {};
  for (const SeverityCounts &counts : report.left_out)
    for (std::size_t i = 0; i < severity_count; ++i) all[i] += counts[i];
  for (const Finding &finding : report.findings) ++all[static_cast<std::size_t>(finding.severity)];
  return all;
}

}  // namespace kztns
