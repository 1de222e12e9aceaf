#include "rules/findings.h"

#include <algorithm>

namespace kztns {

bool Findings::wanted(Rule rule) { return wanted(rule, row_of(rule).severity); }

bool Findings::wanted(Rule rule, Severity severity) {
  const auto index = static_cast<std::size_t>(rule);
  ++report_.severities[static_cast<std::size_t>(severity)];
  if (++counts_[index] <= most_of_a_rule) return true;
  ++report_.left_out[index];
  return false;
}

void Findings::add(NewFinding found) {
  const Severity severity = row_of(found.rule).severity;
  add(std::move(found), severity);
}

void Findings::add(NewFinding found, Severity severity) {
  Finding finding = {};
  finding.rule = found.rule;
  finding.severity = severity;
  finding.at = found.at;
  finding.position = text_.position(found.at);
  finding.character = text_.character_column(found.at);
  finding.entry = found.entry;
  finding.path = std::move(found.path);
  finding.text = std::move(found.text);
  finding.remedy = found.remedy.empty() ? row_of(found.rule).remedy : std::move(found.remedy);
  finding.fix = std::move(found.fix);
  finding.source = text_.line_around(found.at, finding.caret);
  report_.findings.push_back(std::move(finding));
}

void Findings::sort() {
  std::stable_sort(report_.findings.begin(), report_.findings.end(),
                   [](const Finding &left, const Finding &right) { return left.at < right.at; });
}

}  // namespace kztns
