#include "story.h"

#include <cstring>

#include "aftermath.h"
#include "diagnose.h"
#include "name_index.h"
#include "near_entries.h"
#include "raw_scan.h"
#include "suspicions.h"

namespace kztns {
namespace {

Remark make_remark(const NamesText &text, Offset at, std::string words) {
  Remark remark;
  remark.position = text.position(at);
  remark.text = std::move(words);
  remark.source = text.line_around(at, remark.caret);
  return remark;
}

std::string with_remedy(const std::string &text, const std::string &remedy, Rule rule) {
  return text + "; " + (remedy.empty() ? std::string(text_of(rule).remedy) : remedy) + " [" +
         std::string(text_of(rule).id) + "]";
}

Remark remark_of(const NamesText &text, const Diagnosis &diagnosis) {
  const std::string path = diagnosis.path.empty() ? "" : diagnosis.path + ": ";
  return make_remark(text, diagnosis.at,
                     path + with_remedy(diagnosis.text, diagnosis.remedy, diagnosis.rule));
}

Remark remark_of(const Finding &finding) {
  const std::string path = finding.path.empty() ? "" : finding.path + ": ";
  return {finding.position, path + with_remedy(finding.text, finding.remedy, finding.rule),
          finding.source, finding.caret};
}

std::vector<Remark> suspicions_of(const NamesText &text, const Trace &trace,
                                  std::string_view name) {
  Report report;
  Findings findings(text, report);
  report_suspicions(trace, name, findings);
  findings.sort();
  std::vector<Remark> remarks;
  for (const Finding &finding : report.findings) remarks.push_back(remark_of(finding));
  return remarks;
}

// Looks out for the entry that a lookup of the name builds.
class Seeker : public EntryVisitor {
 public:
  Seeker(const NamesText &text, const std::string &name, Story &story)
      : subject_{text, "file"}, name_(name), story_(story) {}

  void visit(const EntryView &view) override {
    if (view.stop != nullptr && view.trace.fault().kind != FaultKind::none)
      told_stop_ = remark_of(subject_.text, diagnose(subject_, view.trace, view.name));
    if (story_.entry || !view.entry.reached) return;
    if (same_name(view.name, name_))
      take(view);
    else if (view.stop == nullptr)
      ++story_.passed;
  }

  void progress(Offset) override {}

  const std::optional<Remark> &told_stop() const { return told_stop_; }

 private:
  void take(const EntryView &view) {
    story_.entry = subject_.text.position(view.entry.at);
    if (view.service != nullptr)
      story_.suspicions = suspicions_of(subject_.text, view.trace, view.name);
    if (view.service == nullptr || view.trace.fault().kind != FaultKind::none) {
      const Remark remark = remark_of(subject_.text, diagnose(subject_, view.trace, view.name));
      if (view.service == nullptr)
        story_.fault = told_by_name(view, remark);
      else
        story_.suspicions.push_back(remark);
    }
  }

  // What is read as system variables only because of its name is told so.
  Remark told_by_name(const EntryView &view, const Remark &remark) const {
    if (!view.trace.is_settings() || view.name == "KZCISYSTEMVARIABLES") return remark;
    return make_remark(
        subject_.text, view.entry.at,
        with_remedy(excerpt(view.name) +
                        " is a leading part of KZCISYSTEMVARIABLES, and read as system variables",
                    {}, Rule::reserved_part));
  }

  Subject subject_;
  const std::string &name_;
  Story &story_;
  std::optional<Remark> told_stop_;
};

// What ends the lookup of a name that does not stand in front of it.
std::optional<Remark> remark_of_stop(const NamesText &text, const Survey &survey,
                                     const Seeker &seeker) {
  switch (survey.stop().kind) {
    case StopKind::end:
      return std::nullopt;
    case StopKind::no_open:
    case StopKind::never_balanced:
      if (seeker.told_stop()) return seeker.told_stop();
      break;
    default:
      break;
  }
  if (is_utf_16(text.text()))
    return make_remark(
        text, 0,
        with_remedy("the file is in UTF-16, in which no name can be read", {}, Rule::utf_16));
  const StopCause cause = cause_of_stop(text, survey);
  std::string words = cause.text;
  if (survey.stop().kind == StopKind::reserved) {
    const std::string name = excerpt(survey.name(*survey.last_reached()));
    words = name + " is " + (name == "KZCISYSTEMVARIABLES" ? "" : "a leading part of ") +
            "the reserved name: every lookup of a later name ends here";
    return make_remark(text, cause.at, words);
  }
  return make_remark(text, cause.at, with_remedy(words, {}, cause.rule));
}

}  // namespace

Story tell_of_name(const std::string &name, std::string content) {
  const NamesText text(std::move(content));
  Story story;
  Seeker seeker(text, name, story);
  const Survey survey(text, seeker);
  if (!story.entry) story.fault = remark_of_stop(text, survey, seeker);
  story.near = near_entries(text, survey, name);
  return story;
}

Story tell_of_literal(const std::string &descriptor) {
  const NamesText text(descriptor);
  const Subject subject = {text, "text"};
  Story story;
  Trace trace(text.text());
  build_literal(text, trace);
  if (trace.fault().kind != FaultKind::none) {
    story.fault = remark_of(text, diagnose(subject, trace, {}));
    return story;
  }
  const Offset behind = pass_blanks(text.text(), trace.first_block_end().value_or(text.size()));
  if (behind < text.size())
    story.fault = make_remark(text, behind,
                              with_remedy("nothing may stand behind the descriptor, but here is " +
                                              quoted_token(subject, behind),
                                          "remove it", Rule::stray_text));
  else
    story.suspicions = suspicions_of(text, trace, {});
  return story;
}

}  // namespace kztns
