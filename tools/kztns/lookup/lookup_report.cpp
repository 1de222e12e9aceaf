#include "lookup/lookup_report.h"

#include <cstring>

#include "check/entry_faults.h"
#include "check/entry_warnings.h"
#include "check/stop_causes.h"
#include "kzoci/oci_tnsname/reserved_entry.h"
#include "lookup/identifier_form.h"
#include "rules/diagnosis.h"
#include "rules/parentheses.h"
#include "scan/skip_mismatches.h"
#include "text/name_index.h"
#include "text/utf_16.h"
#include "text/words.h"

namespace kztns {
namespace {

Remark make_remark(const NamesText &text, Offset at, std::string words) {
  Remark remark;
  remark.position = text.position(at);
  remark.text = std::move(words);
  remark.source = text.line_around(at, remark.caret);
  return remark;
}

// With the rule's own remedy if there is no other.
Remark remark_about(const NamesText &text, Offset at, std::string words, Rule rule,
                    const std::string &remedy = {}) {
  Remark remark = make_remark(text, at, std::move(words));
  remark.remedy = remedy.empty() ? std::string(row_of(rule).remedy) : remedy;
  remark.rule = row_of(rule).id;
  return remark;
}

Remark remark_of(const NamesText &text, const Diagnosis &diagnosis) {
  const std::string path = diagnosis.path.empty() ? "" : diagnosis.path + ": ";
  return remark_about(text, diagnosis.at, path + diagnosis.text, diagnosis.rule, diagnosis.remedy);
}

Remark remark_of(const Finding &finding) {
  const std::string path = finding.path.empty() ? "" : finding.path + ": ";
  return {finding.position,        path + finding.text, finding.remedy,
          row_of(finding.rule).id, finding.source,      finding.caret};
}

std::vector<Remark> warnings_of(const NamesText &text, const Trace &trace, std::string_view name) {
  CheckReport report;
  Findings findings(text, Findings::most_of_a_rule, report);
  report_entry_warnings(trace, name, findings);
  sort(report.findings);
  std::vector<Remark> remarks;
  for (const Finding &finding : report.findings) remarks.push_back(remark_of(finding));
  return remarks;
}

// Looks out for the entry that a lookup of the name builds.
class NameVisitor : public EntryVisitor {
 public:
  NameVisitor(const NamesText &text, const std::string &name, LookupReport &report)
      : subject_{text, "file"}, ranges_(text), name_(name), report_(report) {}

  void visit(const EntryView &view) override {
    if (view.stop != nullptr && view.trace.fault().kind != FaultKind::none &&
        !end_if_led_astray(subject_.text.text(), view.entry.body, range_of(view).end))
      reported_stop_ = remark_of(view);
    if (report_.entry || !view.entry.reached) return;
    if (same_name(view.name, name_))
      take(view);
    else if (view.stop == nullptr)
      ++report_.passed;
  }

  void progress(Offset) override {}

  const std::optional<Remark> &reported_stop() const { return reported_stop_; }

 private:
  void take(const EntryView &view) {
    report_.entry = subject_.text.position(view.entry.at);
    if (view.service != nullptr)
      report_.warnings = warnings_of(subject_.text, view.trace, view.name);
    if (view.service == nullptr || view.trace.fault().kind != FaultKind::none) {
      const Remark remark = remark_of(view);
      if (view.service == nullptr)
        report_.fault = told_by_name(view, remark);
      else
        report_.warnings.push_back(remark);
    }
  }

  Remark remark_of(const EntryView &view) {
    const EntryRange range = range_of(view);
    const Subject subject = {subject_.text, subject_.noun, range.end};
    return kztns::remark_of(subject_.text, diagnose_entry(subject, view.trace, range, view.name));
  }

  EntryRange range_of(const EntryView &view) { return ranges_.range_of(view.entry.body); }

  // What is read as system variables only because of its name is reported so.
  Remark told_by_name(const EntryView &view, const Remark &remark) const {
    if (!view.trace.is_system_variables() || view.name == kzoci::tns::reserved_name) return remark;
    return remark_about(subject_.text, view.entry.at,
                        excerpt(view.name) + " is a prefix of " + kzoci::tns::reserved_name +
                            ", and is read as system variables",
                        Rule::reserved_part);
  }

  Subject subject_;
  EntryRanges ranges_;
  const std::string &name_;
  LookupReport &report_;
  std::optional<Remark> reported_stop_;
};

// What ends the lookup of a name that is not before it.
std::optional<Remark> remark_of_stop(const NamesText &text, const FileScan &scan,
                                     const NameVisitor &visitor) {
  switch (scan.stop().kind) {
    case StopKind::end:
      return std::nullopt;
    case StopKind::reserved:
      // Where nothing is lost, it ends a lookup no earlier than the file does.
      if (scan.next_entry(scan.last_reached()->at) == text.size()) return std::nullopt;
      break;
    case StopKind::no_open:
    case StopKind::never_balanced:
      if (visitor.reported_stop()) return visitor.reported_stop();
      break;
    default:
      break;
  }
  if (is_utf_16(text.text()))
    return remark_about(text, 0, "the file is in UTF-16, in which no name can be read",
                        Rule::utf_16);
  const Diagnosis cause = cause_of_stop(scan);
  std::string words = cause.text;
  if (goes_on_with_loss(cause.rule)) words += ": the entries after it are lost";
  if (scan.stop().kind == StopKind::reserved) {
    const std::string name = excerpt(scan.name(*scan.last_reached()));
    words = name + " is " + (name == kzoci::tns::reserved_name ? "" : "a prefix of ") +
            "the reserved name: the entries after it are lost";
    return make_remark(text, cause.at, words);
  }
  return remark_about(text, cause.at, words, cause.rule);
}

std::vector<Position> shadowed_entries(const NamesText &text, const FileScan &scan,
                                       const std::string &name) {
  std::vector<Position> places;
  for (const Entry &entry : scan.entries())
    if (entry.verdict == Verdict::shadowed && same_name(scan.name(entry), name))
      places.push_back(text.position(entry.at));
  return places;
}

}  // namespace

std::string words_of(const Remark &remark) {
  std::string words = remark.text;
  if (!remark.remedy.empty()) words += "; " + remark.remedy;
  if (!remark.rule.empty()) words.append(" [").append(remark.rule).append("]");
  return words;
}

LookupReport report_of_name(const std::string &name, std::string content) {
  const NamesText text(std::move(content));
  LookupReport report;
  NameVisitor visitor(text, name, report);
  const FileScan scan(text, visitor);
  if (!report.entry) report.fault = remark_of_stop(text, scan, visitor);
  report.shadowed = shadowed_entries(text, scan, name);
  const IdentifierForm form = form_of(name);
  if (!report.entry) report.note = form.note;
  report.near = report.note.empty() || form.name.empty()
                    ? near_entries(text, scan, name)
                    : near_entries(text, scan, form.name, true);
  return report;
}

LookupReport report_of_literal(const std::string &descriptor) {
  const NamesText text(descriptor);
  const Subject subject = {text, "text"};
  LookupReport report;
  Trace trace(text.text());
  build_literal(text, trace);
  if (trace.fault().kind != FaultKind::none) {
    report.fault = remark_of(text, diagnose_entry(subject, trace, {0, text.size()}, {}));
    return report;
  }
  const Offset rest = pass_blanks(text.text(), trace.first_block_end().value_or(text.size()));
  if (rest < text.size())
    report.fault = remark_about(
        text, rest, "expected nothing after the descriptor, found " + quoted_token(subject, rest),
        Rule::stray_text, "remove it");
  else
    report.warnings = warnings_of(text, trace, {});
  return report;
}

}  // namespace kztns
