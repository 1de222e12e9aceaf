#include "check/check_file.h"

#include <algorithm>
#include <set>
#include <utility>

#include "check/apply_fixes.h"
#include "check/conflicts.h"
#include "check/entry_faults.h"
#include "check/entry_warnings.h"
#include "check/file_rules.h"
#include "check/fixability.h"
#include "fixes/file_fixes.h"
#include "kzoci/oci_tnsname/reserved_entry.h"
#include "rules/parentheses.h"
#include "scan/half_comment.h"
#include "scan/item_text.h"
#include "scan/item_words.h"
#include "scan/left_over.h"
#include "scan/skip_mismatches.h"
#include "scan/stray_text.h"
#include "text/utf_16.h"
#include "text/words.h"

namespace kztns {
namespace {

// Reports each entry's own faults as it is built.
class EntryChecker : public EntryVisitor {
 public:
  EntryChecker(const NamesText &text, const CheckRequest &request, Findings &findings)
      : text_(text), request_(request), findings_(findings), faults_(text, findings) {}

  void visit(const EntryView &view) override {
    if (request_.visit) request_.visit(view);
    if (utf_16_) return;
    if (view.service == nullptr && view.trace.is_system_variables() &&
        view.name != kzoci::tns::reserved_name)
      return;  // the name is to blame
    if (is_told_already(view) || report_half_comment(view) || report_left_over(view) ||
        report_read_on(view))
      return;
    if (view.trace.fault().kind != FaultKind::none) report_fault(view);
    if (view.service != nullptr || view.trace.fault().kind == FaultKind::none)
      report_entry_warnings(view.trace, view.name, findings_);
  }

  void progress(Offset at) override { request_.progress(at); }

  // The finding about the last entry, when its fault ends the lookups too.
  const std::optional<Diagnosis> &reported_stop() const { return reported_stop_; }

  // Where what ends lookups is told with the entry before: what comes after parentheses that match
  // too early, items outside of a description, what is left of other entries.
  const std::vector<Span> &told_ranges() const { return told_ranges_; }

 private:
  // Of the names of a list one is enough; a comment of other readers is no entry; one that stands
  // in another entry is told with that.
  bool is_told_already(const EntryView &view) {
    const bool comment = view.stop != nullptr && view.stop->kind == StopKind::no_open &&
                         is_foreign_comment(view.name);
    if (faults_.is_inserted(view.entry.at)) return true;
    if (!view.entry.in_list) return comment;
    return std::exchange(list_, view.entry.body) == view.entry.body;
  }

  // Whether the fault ends the lookups of other names too.
  bool ends_lookups_too(const EntryView &view) const {
    if (view.stop == nullptr) return false;
    return view.stop->kind == StopKind::no_open ||
           (view.stop->kind == StopKind::never_balanced &&
            !end_if_led_astray(text_.text(), view.entry.body, faults_.range().end));
  }

  // The items of an entry that is refused, when lookups that pass over the first one meet
  // another one that belongs in its description, or whose key is mended as its first fault.
  std::optional<Span> loose_items(const EntryView &view, const Diagnosis &first_fault) const {
    if (view.service != nullptr) return std::nullopt;
    const std::string_view text = std::string_view(text_.text()).substr(0, faults_.range().end);
    const auto first = end_of_first_block(text, view.entry.body);
    if (!first) return std::nullopt;
    const Offset next = pass_blanks(text, *first);
    const bool is_fault = first_fault.fix && first_fault.at == pass_blanks(text, next + 1);
    if (!is_fault && !is_item_of_description(text, next)) return std::nullopt;
    const auto end = end_of_items(text, view.entry.body);
    return end && !end_if_led_astray(text, view.entry.body, *end)
               ? std::optional<Span>({view.entry.body, *end})
               : std::nullopt;
  }

  static bool is_item_of_description(std::string_view text, Offset open) {
    return placement_of(key_after(text, open), content_of(Block::description)).fit == Fit::good;
  }

  // Whether the fault leaves no name to read after the entry.
  bool loses_next_name(const EntryView &view, const Diagnosis &diagnosis) const {
    if (!closes_early(diagnosis.rule) || !view.entry.reached || view.stop != nullptr) return false;
    const auto met = no_name_after(text_.text(), view.entry.body);
    return met && diagnosis.at <= *met;
  }

  // To the library the block is part of this entry, and so are its faults.
  bool report_half_comment(const EntryView &view) {
    if (view.trace.is_system_variables()) return false;  // which has items without a block
    const bool built = view.service != nullptr;
    const Offset limit = built ? view.entry.end : faults_.enter(view).end;
    const auto half = find_half_comment(text_.text(), view.entry.body, limit);
    if (!half) return false;
    const EntryRange range = built ? faults_.enter(view) : faults_.range();
    const auto end = end_of_rest(std::string_view(text_.text()).substr(0, range.end), half->rest);
    const std::string_view name =
        std::string_view(text_.text()).substr(half->name.begin, half->name.end - half->name.begin);
    NewFinding found = {half->rest,
                        view.name,
                        {},
                        "read as part of this entry: the name of the block, " +
                            quoted(excerpt(name)) + ", is in a comment at " +
                            findings_.place(half->name.begin)};
    if (end) found.fix = fix_of_lines(text_.text(), half->rest, *end);
    found.related = half->name.begin;
    told_ranges_.push_back({half->comment, end.value_or(range.end)});
    report_rest(view, Rule::half_comment, built && range.last ? Severity::warning : Severity::error,
                std::move(found));
    return true;
  }

  bool report_left_over(const EntryView &view) {
    if (view.service != nullptr || view.trace.is_system_variables()) return false;
    const auto rest = find_left_over(text_.text(), view.entry.body, faults_.enter(view).end);
    if (!rest) return false;
    NewFinding found = {.at = rest->begin,
                        .entry = view.name,
                        .text = "read as part of this entry, which is complete before it"};
    found.fix = fix_of_lines(text_.text(), rest->begin, rest->end);
    told_ranges_.push_back({rest->begin - 1, rest->end});
    report_rest(view, Rule::left_over, Severity::error, std::move(found));
    return true;
  }

  // The library built it with text of later entries.
  bool report_read_on(const EntryView &view) {
    if (view.service == nullptr || !view.trace.has_value_over_items()) return false;
    const EntryRange range = faults_.enter(view);
    const auto fault = faults_.report_alone(view);
    if (fault) told_ranges_.push_back({*fault, range.end});
    return fault.has_value();
  }

  void report_rest(const EntryView &view, Rule rule, Severity severity, NewFinding found) {
    const bool may_end_lookups = view.service == nullptr || !faults_.range().last;
    if (view.entry.reached && may_end_lookups) reported_stop_ = {rule, found.at, found.text};
    findings_.add(rule, severity, std::move(found));
  }

  std::string consequence(const Stop *stop) const {
    if (stop == nullptr || stop->kind == StopKind::no_open) return {};
    return "; lookups of later names read on to the end of the file at " +
           text_.place(text_.size());
  }

  void report_fault(const EntryView &view) {
    const Diagnosis first = faults_.first_of(view);
    std::string consequence_of_first;
    const std::optional<Span> loose = loose_items(view, first);
    if (loose) told_ranges_.push_back(*loose);
    const bool met_loose = loose && view.entry.reached && view.stop == nullptr;
    if (ends_lookups_too(view) || loses_next_name(view, first) || met_loose) {
      reported_stop_ = {first.rule, first.at, first.text};
      consequence_of_first = consequence(view.stop);
    }
    if (closes_early(first.rule)) told_ranges_.push_back({first.at, faults_.range().end});
    faults_.report(view, first, consequence_of_first);
  }

  const NamesText &text_;
  bool utf_16_ = is_utf_16(text_.text());
  const CheckRequest &request_;
  Findings &findings_;
  EntryFaults faults_;
  Offset list_ = 0;  // the body of the last list of names
  std::optional<Diagnosis> reported_stop_;
  std::vector<Span> told_ranges_;
};

void list_entries(const NamesText &text, const FileScan &scan, CheckReport &report) {
  report.entries.reserve(scan.entries().size());
  for (const Entry &entry : scan.entries())
    report.entries.push_back(
        {std::string(scan.name(entry)), text.position(entry.at), entry.verdict});
}

// Walks through a file that is mended after each walk.
class FurtherChecks {
 public:
  FurtherChecks(const NamesText &text, const CheckRequest &request, CheckReport &report)
      : request_(request), report_(report), edited_(text.text()), text_(edited_, text) {
    for (const Finding &finding : report.findings) known_.insert(finding.at);
  }

  void run() {
    std::vector<Edit> edits = edits_of(report_.findings);
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
