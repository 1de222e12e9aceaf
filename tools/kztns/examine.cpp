#include "examine.h"

#include "aftermath.h"
#include "diagnose.h"
#include "suspicions.h"

namespace kztns {
namespace {

// Reports each entry's own faults as it is built.
class Examiner : public EntryVisitor {
 public:
  Examiner(const NamesText &text, const Examination &examination, Findings &findings)
      : subject_{text, "file"}, examination_(examination), findings_(findings) {}

  void visit(const EntryView &view) override {
    if (utf_16_) return;
    if (view.service == nullptr && view.trace.is_settings() && view.name != "KZCISYSTEMVARIABLES")
      return;  // the name is to blame
    if (view.trace.fault().kind != FaultKind::none) report_fault(view);
    if (view.service != nullptr || view.trace.fault().kind == FaultKind::none)
      report_suspicions(view.trace, view.name, findings_);
  }

  void progress(Offset at) override { examination_.progress(at); }

  // The finding about the last entry, when its fault ends the lookups too.
  const std::optional<StopCause> &told_stop() const { return told_stop_; }

 private:
  // Whether the fault ends the lookups of other names too.
  static bool ends_lookups_too(const EntryView &view) {
    return view.stop != nullptr &&
           (view.stop->kind == StopKind::no_open || view.stop->kind == StopKind::never_balanced);
  }

  std::string consequence(const Stop &stop) const {
    if (stop.kind == StopKind::no_open) return "; lookups of later names end here too";
    return "; lookups of later names read on to the end of the file at " +
           subject_.text.place(subject_.text.size());
  }

  void report_fault(const EntryView &view) {
    Diagnosis diagnosis = diagnose(subject_, view.trace, view.name);
    const Severity severity = view.service == nullptr ? Severity::error : Severity::warning;
    if (ends_lookups_too(view)) {
      told_stop_ = {diagnosis.rule, diagnosis.at, diagnosis.text};
      diagnosis.text += consequence(*view.stop);
    }
    if (!findings_.wanted(diagnosis.rule, severity)) return;
    findings_.add({diagnosis.rule, diagnosis.at, view.name, std::move(diagnosis.path),
                   std::move(diagnosis.text), std::move(diagnosis.remedy)},
                  severity);
  }

  Subject subject_;
  bool utf_16_ = is_utf_16(subject_.text.text());
  const Examination &examination_;
  Findings &findings_;
  std::optional<StopCause> told_stop_;
};

void list_entries(const NamesText &text, const Survey &survey, Report &report) {
  report.entries.reserve(survey.entries().size());
  for (const Entry &entry : survey.entries())
    report.entries.push_back(
        {std::string(survey.name(entry)), text.position(entry.at), entry.verdict});
}

}  // namespace

Report examine(const NamesText &text, const Examination &examination) {
  Report report;
  report.file = examination.file;
  Findings findings(text, report);
  Examiner examiner(text, examination, findings);
  const Survey survey(text, examiner);
  report_aftermath(text, survey, examiner.told_stop(), findings);
  for (const Entry &entry : survey.entries())
    ++report.verdicts[static_cast<std::size_t>(entry.verdict)];
  if (examination.with_entries) list_entries(text, survey, report);
  findings.sort();
  return report;
}

}  // namespace kztns
