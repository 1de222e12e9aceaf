#include "findings.h"

#include <algorithm>

namespace kztns {

std::string_view name_of(Verdict verdict) {
  constexpr std::string_view names[] = {"ok", "refused", "unreachable", "shadowed", "reserved"};
  return names[static_cast<std::size_t>(verdict)];
}

bool Findings::wanted(Rule rule) { return wanted(rule, text_of(rule).severity); }

bool Findings::wanted(Rule rule, Severity severity) {
  const auto index = static_cast<std::size_t>(rule);
  ++report_.severities[static_cast<std::size_t>(severity)];
  if (++counts_[index] <= most_of_a_rule) return true;
  ++report_.left_out[index];
  return false;
}

void Findings::add(Draft draft) {
  const Severity severity = text_of(draft.rule).severity;
  add(std::move(draft), severity);
}

void Findings::add(Draft draft, Severity severity) {
  Finding finding = {};
  finding.rule = draft.rule;
  finding.severity = severity;
  finding.at = draft.at;
  finding.position = text_.position(draft.at);
  finding.character = text_.character_column(draft.at);
  finding.entry = draft.entry;
  finding.path = std::move(draft.path);
  finding.text = std::move(draft.text);
  finding.remedy = draft.remedy.empty() ? text_of(draft.rule).remedy : std::move(draft.remedy);
  finding.source = text_.line_around(draft.at, finding.caret);
  report_.findings.push_back(std::move(finding));
}

void Findings::sort() {
  std::stable_sort(report_.findings.begin(), report_.findings.end(),
                   [](const Finding &left, const Finding &right) { return left.at < right.at; });
}

}  // namespace kztns
