#include "check/conflicts.h"

#include <algorithm>
#include <map>
#include <utility>

namespace kztns {
namespace {

constexpr std::size_t marker_length = 7;
constexpr std::string_view marker_signs = "<|=>";

// The sign of which a line is a marker; 0 for another line.
char marker_sign(std::string_view line) {
  if (line.size() < marker_length || marker_signs.find(line[0]) == line.npos) return 0;
  if (line.find_first_not_of(line[0]) < marker_length) return 0;
  const std::string_view rest = line.substr(marker_length);
  const bool alone = rest.empty() || rest == "\r";
  return alone || (line[0] != '=' && rest[0] == ' ') ? line[0] : '\0';
}

bool is_changed_by(const Fix &fix, const Conflicts &conflicts) {
  return std::any_of(fix.edits.begin(), fix.edits.end(), [&](const Edit &edit) {
    return conflicts.touched_by(edit.begin, edit.end) != nullptr;
  });
}

}  // namespace

Conflicts::Conflicts(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    const char sign = marker_sign(text.substr(at, end - at));
    if (sign != 0) add_marker(sign, static_cast<Offset>(at), static_cast<Offset>(end));
    at = end + 1;
  }
}

// A line of "=" alone may be an ornament, and begins none.
void Conflicts::add_marker(char sign, Offset begin, Offset end) {
  if (sign == '<' || (sign == '>' && !open_))
    all_.push_back({begin, end});
  else if (open_)
    all_.back().end = end;
  else
    return;
  markers_.push_back({begin, end});
  open_ = sign != '>';
}

const Conflicts::Conflict *Conflicts::touched_by(Offset begin, Offset end) const {
  const auto first =
      std::lower_bound(all_.begin(), all_.end(), begin,
                       [](const Conflict &conflict, Offset place) { return conflict.end < place; });
  return first == all_.end() || end < first->begin ? nullptr : &*first;
}

bool Conflicts::is_in_marker(Offset at) const {
  const auto first =
      std::lower_bound(markers_.begin(), markers_.end(), at,
                       [](const Conflict &marker, Offset place) { return marker.end < place; });
  return first != markers_.end() && first->begin <= at;
}

void report_conflicts(const NamesText &text, Findings &findings, CheckReport &report) {
  const Conflicts conflicts(text.text());
  if (conflicts.all().empty()) return;
  std::map<Offset, Finding> told;  // of the markers, by the conflict's place
  std::vector<Finding> others;
  for (Finding &finding : report.findings) {
    const Conflicts::Conflict *const around = conflicts.touched_by(finding.at, finding.at);
    const bool fix_touches_one = is_changed_by(finding.fix, conflicts);
    if (around != nullptr || fix_touches_one) finding.fix = {};
    if (!conflicts.is_in_marker(finding.at)) {
      // Two versions, one after the other, are no entry.
      const bool is_of_both =
          finding.rule == Rule::stray_text || row_of(finding.rule).concern == Concern::parentheses;
      if (!is_of_both || (around == nullptr && !fix_touches_one))
        others.push_back(std::move(finding));
      continue;
    }
    told.emplace(around->begin, std::move(finding));
  }
  report.findings = std::move(others);
  for (const Conflicts::Conflict &conflict : conflicts.all()) {
    const Finding &of_marker = told[conflict.begin];
    findings.add(Rule::conflict_marker, {conflict.begin, of_marker.entry, of_marker.path,
                                         "version control conflict marker"});
  }
}

}  // namespace kztns
