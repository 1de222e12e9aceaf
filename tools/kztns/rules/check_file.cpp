#include "rules/check_file.h"

#include "kzoci/oci_tnsname/reserved_entry.h"
#include "rules/diagnosis.h"
#include "rules/entry_warnings.h"
#include "rules/file_rules.h"
#include "rules/parentheses.h"

namespace kztns {
namespace {

// Reports each entry's own faults as it is built.
class EntryChecker : public EntryVisitor {
 public:
  EntryChecker(const NamesText &text, const CheckRequest &request, Findings &findings)
      : subject_{text, "file"}, ranges_(text), request_(request), findings_(findings) {}

  void visit(const EntryView &view) override {
    if (utf_16_) return;
    if (view.service == nullptr && view.trace.is_system_variables() &&
        view.name != kzoci::tns::reserved_name)
      return;  // the name is to blame
    if (view.trace.fault().kind != FaultKind::none) report_fault(view);
    if (view.service != nullptr || view.trace.fault().kind == FaultKind::none)
      report_entry_warnings(view.trace, view.name, findings_);
  }

  void progress(Offset at) override { request_.progress(at); }

  // The finding about the last entry, when its fault ends the lookups too.
  const std::optional<StopCause> &reported_stop() const { return reported_stop_; }

 private:
  // Whether the fault ends the lookups of other names too.
  static bool ends_lookups_too(const EntryView &view) {
    return view.stop != nullptr &&
           (view.stop->kind == StopKind::no_open || view.stop->kind == StopKind::never_balanced);
  }

  // Whether the fault leaves no name to read after the entry.
  bool loses_next_name(const EntryView &view, const Diagnosis &diagnosis) const {
    if (!closes_early(diagnosis.rule) || !view.entry.reached || view.stop != nullptr) return false;
    const auto met = no_name_after(subject_.text.text(), view.entry.body);
    return met && diagnosis.at <= *met;
  }

  std::string consequence(const Stop *stop) const {
    if (stop == nullptr || stop->kind == StopKind::no_open)
      return "; the entries after it are lost";
    return "; lookups of later names read on to the end of the file at " +
           subject_.text.place(subject_.text.size());
  }

  Diagnosis diagnose_entry(const EntryView &view) {
    return kztns::diagnose_entry(subject_, view.trace, ranges_.range_of(view.entry.body),
                                 view.name);
  }

  void report_fault(const EntryView &view) {
    Diagnosis diagnosis = diagnose_entry(view);
    const Severity severity = view.service == nullptr ? Severity::error : Severity::warning;
    if (ends_lookups_too(view) || loses_next_name(view, diagnosis)) {
      reported_stop_ = {diagnosis.rule, diagnosis.at, diagnosis.text};
      diagnosis.text += consequence(view.stop);
    }
    if (!findings_.wanted(diagnosis.rule, severity)) return;
    findings_.add(
        {diagnosis.rule, diagnosis.at, view.name, std::move(diagnosis.path),
         std::move(diagnosis.text), std::move(diagnosis.remedy), std::move(diagnosis.fix)},
        severity);
  }

  Subject subject_;
  EntryRanges ranges_;
  bool utf_16_ = is_utf_16(subject_.text.text());
  const CheckRequest &request_;
  Findings &findings_;
  std::optional<StopCause> reported_stop_;
};

void list_entries(const NamesText &text, const FileScan &scan, CheckReport &report) {
  report.entries.reserve(scan.entries().size());
  for (const Entry &entry : scan.entries())
    report.entries.push_back(
        {std::string(scan.name(entry)), text.position(entry.at), entry.verdict});
}

}  // namespace

CheckReport check_file(const NamesText &text, const CheckRequest &request) {
  CheckReport report;
  report.file = request.file;
  Findings findings(text, report);
  EntryChecker checker(text, request, findings);
  const FileScan scan(text, checker);
  apply_file_rules(text, scan, checker.reported_stop(), findings);
  for (const Entry &entry : scan.entries())
    ++report.verdicts[static_cast<std::size_t>(entry.verdict)];
  if (request.with_entries) list_entries(text, scan, report);
  findings.sort();
  return report;
}

}  // namespace kztns
