#include "check/findings.h"

#include <algorithm>

namespace kztns {

bool Findings::count(Rule rule, Severity severity) {
  const auto index = static_cast<std::size_t>(rule);
  if (++counts_[index] <= most_) return true;
  ++report_.left_out[index][static_cast<std::size_t>(severity)];
  return false;
}

void Findings::keep(Rule rule, Severity severity, NewFinding found) {
  Finding finding = {};
  finding.rule = rule;
  finding.severity = severity;
  finding.at = in_text(found.at);
  finding.position = text_.position(finding.at);
  finding.character = text_.character_column(finding.at);
  finding.entry = found.entry;
  finding.in_entry = found.in_entry;
  finding.path = std::move(found.path);
  finding.text = std::move(found.text);
  finding.remedy = found.remedy.empty() ? row_of(rule).remedy : std::move(found.remedy);
  finding.fix = std::move(found.fix);
  if (copy_ != nullptr) finding.fix.to_origin(*copy_);
  finding.source = text_.line_around(finding.at, finding.caret);
  if (found.related) finding.related = text_.origin(in_text(*found.related));
  places_.emplace(rule, finding.at);
  report_.findings.push_back(std::move(finding));
}

void Findings::append(Rule rule, Offset at, std::string_view words) {
  const auto found = std::find_if(
      report_.findings.begin(), report_.findings.end(),
      [&](const Finding &finding) { return finding.rule == rule && finding.at == at; });
  if (found != report_.findings.end()) found->text += words;
}

void sort(std::vector<Finding> &findings) {
  std::stable_sort(findings.begin(), findings.end(),
                   [](const Finding &left, const Finding &right) { return left.at < right.at; });
}

}  // namespace kztns
