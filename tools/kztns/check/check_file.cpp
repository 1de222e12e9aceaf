#include "check/check_file.h"

#include <algorithm>
#include <set>
#include <utility>

#include "check/apply_fixes.h"
#include "check/check_once.h"
#include "check/fixability.h"
#include "text/edited_text.h"
#include "text/utf_16.h"
#include "text/words.h"

namespace kztns {
namespace {

// Walks through a file that is mended after each walk.
class FurtherChecks {
 public:
  FurtherChecks(const NamesText &text, const CheckRequest &request, CheckReport &report)
      : request_(request), report_(report), edited_(text.text()), text_(edited_, text) {
    for (const Finding &finding : report.findings) known_.insert(finding.at);
  }

  void run() {
    std::vector<Edit> edits = edits_of(report_.findings);
    if (is_complete()) keep_first(edits);
    for (int walks = 1; walks < most_walks && !edits.empty() && is_complete(); ++walks) {
      edited_.apply(edits);
      CheckReport found = check_once(text_, request_);
      edits = edits_of(found.findings);
      for (Finding &finding : found.findings)
        if (name_as_written(found.starts, finding)) add(std::move(finding));
    }
  }

 private:
  // Each walk comes past what stopped the one before.
  static constexpr int most_walks = 16;

  // What comes first ends the lookups: what else is told is what the next walk finds.
  void keep_first(std::vector<Edit> &edits) {
    std::vector<Finding> first = report_.findings;
    std::erase_if(first, [](const Finding &finding) { return !finding.fix.first; });
    std::vector<Edit> of_first = edits_of(first);
    if (of_first.empty()) return;
    edits = std::move(of_first);
    report_.findings = std::move(first);
    known_.clear();
    for (const Finding &finding : report_.findings) known_.insert(finding.at);
  }

  // A file with more findings than are shown is not mended by reading them.
  bool is_complete() const {
    for (std::size_t i = 0; i < rule_count; ++i)
      if (left_out(report_, static_cast<Rule>(i)) > 0) return false;
    return true;
  }

  // Of the entries that something else keeps lookups from it is told once.
  bool is_consequence(Rule rule) const {
    return rule == Rule::unreachable || (rule == Rule::after_reserved && has(rule));
  }

  bool has(Rule rule) const {
    return std::any_of(report_.findings.begin(), report_.findings.end(),
                       [&](const Finding &finding) { return finding.rule == rule; });
  }

  // Whether what is at a place of the copy is in the text, too.
  bool is_written(Offset at) const {
    const std::vector<EditedText::Kept> &kept = edited_.kept();
    const auto after = std::upper_bound(
        kept.begin(), kept.end(), at,
        [](Offset place, const EditedText::Kept &part) { return place < part.at; });
    return after != kept.begin() && at < std::prev(after)->at + std::prev(after)->length;
  }

  // Gives a finding in an entry that a fix has made of another one the name of that; false for one
  // about the entry's own name, which nobody wrote.
  bool name_as_written(const std::vector<Offset> &starts, Finding &finding) const {
    auto start = std::upper_bound(starts.begin(), starts.end(), finding.at);
    if (finding.entry.empty() || start == starts.begin() || is_written(*--start)) return true;
    if (finding.at == *start) return false;
    while (start != starts.begin() && !is_written(*start)) --start;
    const std::string_view text = edited_.text();
    finding.entry = text.substr(*start, end_of_word(text, *start) - *start);
    return true;
  }

  void add(Finding finding) {
    finding.at = edited_.origin(finding.at);
    if (is_consequence(finding.rule) || !known_.insert(finding.at).second) return;
    finding.fix.to_origin(edited_);
    report_.findings.push_back(std::move(finding));
  }

  const CheckRequest &request_;
  CheckReport &report_;
  EditedText edited_;
  NamesText text_;
  std::set<Offset> known_;  // where something is told already
};

// Of what is converted the places are those of the converted text, as editors show it. Its
// findings have no fixes: those would be of another text.
void add_findings_of_converted(const NamesText &text, const CheckRequest &request,
                               CheckReport &report) {
  const NamesText converted(utf_8_of_utf_16(text.text()));
  CheckReport found = check_file(converted, request);
  for (Finding &finding : found.findings) {
    finding.fix = {};
    report.findings.push_back(std::move(finding));
  }
  for (std::size_t i = 0; i < rule_count; ++i)
    for (std::size_t severity = 0; severity < severity_count; ++severity)
      report.left_out[i][severity] += found.left_out[i][severity];
}

}  // namespace

CheckReport check_file(const NamesText &text, const CheckRequest &request) {
  CheckReport report = check_once(text, request);
  if (is_utf_16(text.text()))
    add_findings_of_converted(text, request, report);
  else if (report.lookups_end || report.splits)
    FurtherChecks(text, request, report).run();
  sort(report.findings);
  settle_fixes(report);
  return report;
}

}  // namespace kztns
