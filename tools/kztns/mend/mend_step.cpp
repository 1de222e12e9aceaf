#include "mend/mend_step.h"

#include <algorithm>
#include <iterator>

#include "check/apply_fixes.h"
#include "check/fixability.h"
#include "mend/describe_edits.h"

namespace kztns {
namespace {

// Whether a fix may change what the entry serves. A comma may be before a name or after the entry.
bool may_change_what_is_served(const Finding &finding, Offset entry) {
  if (finding.rule == Rule::stray_comma && finding.at != entry) return false;
  return row_of(finding.rule).concern == Concern::identity;
}

}  // namespace

Mender::Step::Step(Mender &mender, Choice choice)
    : mender_(mender), report_(*mender.report_), choice_(choice) {
  for (const Finding &finding : report_.findings)
    entries_.push_back(mender_.served().entry_around(finding.at));
  make_units();
}

std::optional<Mender::EntryId> Mender::Step::id_of_entry(std::size_t finding) const {
  if (entries_[finding] == 0) return std::nullopt;
  return mender_.id_of(mender_.served().start_of(entries_[finding]));
}

// Where fixes undo each other there is no end.
bool Mender::Step::is_mended_in_vain(const Finding &finding) const {
  constexpr int most_times = 16;
  const auto found = mender_.times_mended_.find({finding.rule, mender_.origin(finding.at)});
  return found != mender_.times_mended_.end() && found->second >= most_times;
}

bool Mender::Step::is_wanted(std::size_t i) const {
  const Finding &finding = report_.findings[i];
  if (is_mended_in_vain(finding)) return false;
  if (choice_ == Choice::first && !is_mended_first(finding)) return false;
  const bool wanted =
      finding.applied_among == Applicability::safe ||
      (mender_.request_.with_unsafe && finding.applied_among == Applicability::unsafe);
  if (!wanted || !is_mended_with_entry(finding)) return wanted;
  const std::optional<EntryId> entry = id_of_entry(i);
  return !entry || mender_.left_alone_.count(*entry) == 0;
}

void Mender::Step::make_units() {
  std::map<std::size_t, std::size_t> of_entries;
  for (std::size_t i = 0; i < report_.findings.size(); ++i) {
    const Finding &finding = report_.findings[i];
    if (!is_wanted(i)) continue;
    std::size_t unit = units_.size();
    if (is_mended_with_entry(finding)) unit = of_entries.emplace(entries_[i], unit).first->second;
    if (unit == units_.size()) units_.push_back({entries_[i], is_mended_with_entry(finding)});
    units_[unit].findings.push_back(i);
    if (finding.fix.applicability == Applicability::unsafe) units_[unit].unsafe = true;
  }
}

bool Mender::Step::run() {
  Units open;
  for (std::size_t unit = 0; unit < units_.size(); ++unit) open.insert(open.end(), unit);
  while (!open.empty() && mender_.spend_check()) {
    Trial trial = try_out(open);
    const Units bad = blamed(trial, open);
    if (bad.empty()) {
      take(std::move(trial));
      return true;
    }
    for (const std::size_t unit : bad) open.erase(unit);
  }
  return false;
}

Mender::Trial Mender::Step::try_out(const Units &units) {
  std::vector<bool> tried(report_.findings.size());
  for (const std::size_t unit : units)
    for (const std::size_t i : units_[unit].findings) tried[i] = true;
  const auto is_tried = [&](std::size_t i) { return tried[i]; };
  std::vector<bool> applied;
  Trial trial = mender_.try_out(edits_of(report_.findings, is_tried, &applied));
  trial.applied = std::move(applied);
  return trial;
}

Mender::Step::Units Mender::Step::blamed(const Trial &trial, const Units &open) {
  Units bad;
  const bool unexplained = blame_for_losses(trial, open, bad);
  if (!bad.empty()) return bad;
  if (unexplained) {
    Units harmless;
    divide({open.begin(), open.end()}, harmless);
    std::set_difference(open.begin(), open.end(), harmless.begin(), harmless.end(),
                        std::inserter(bad, bad.end()));
    return bad;
  }
  const Gain gain = gain_of(trial);
  for (const std::size_t unit : open)
    if (!helps(units_[unit], trial, gain)) bad.insert(unit);
  return bad;
}

bool Mender::Step::blame_for_losses(const Trial &trial, const Units &open, Units &bad) const {
  bool unexplained = false;
  std::vector<ServedName> all = mender_.served().not_in(trial.served);
  // An entry that is not served yet may be after the next fix.
  const std::vector<ServedName> gone = mender_.served().gone_in(trial.served);
  all.insert(all.end(), gone.begin(), gone.end());
  for (const ServedName &lost : all) {
    const std::size_t entry = mender_.served().entry_around(lost.at);
    if (may_change(entry, trial)) continue;
    const Units units = to_blame_in(entry, open);
    unexplained = unexplained || units.empty();
    bad.insert(units.begin(), units.end());
  }
  return unexplained;
}

Mender::Step::Units Mender::Step::to_blame_in(std::size_t entry, const Units &open) const {
  Units all;
  Units unsafe;
  for (const std::size_t unit : open) {
    if (units_[unit].entry != entry) continue;
    all.insert(unit);
    if (units_[unit].unsafe) unsafe.insert(unit);
  }
  return unsafe.empty() ? all : unsafe;
}

bool Mender::Step::may_change(std::size_t entry, const Trial &trial) const {
  for (std::size_t i = 0; i < trial.applied.size(); ++i)
    if (trial.applied[i] && entries_[i] == entry &&
        may_change_what_is_served(report_.findings[i], mender_.served().start_of(entry)))
      return true;
  return false;
}

void Mender::Step::divide(const std::vector<std::size_t> &units, Units &harmless) {
  if (!mender_.spend_check()) return;
  Units tried = harmless;
  tried.insert(units.begin(), units.end());
  const Trial trial = try_out(tried);
  Units bad;
  if (!blame_for_losses(trial, tried, bad) && bad.empty()) {
    harmless = std::move(tried);
  } else if (units.size() > 1) {
    const auto middle = units.begin() + static_cast<std::ptrdiff_t>(units.size() / 2);
    divide({units.begin(), middle}, harmless);
    divide({middle, units.end()}, harmless);
  }
}

void Mender::Step::Faults::count(const Finding &finding) {
  ++findings;
  if (finding.severity == Severity::error) ++errors;
}

Mender::Step::Gain Mender::Step::gain_of(const Trial &trial) const {
  const ServedNames &served = mender_.served();
  const auto entry_of = [&](Offset at) { return served.entry_around(trial.step.origin(at)); };
  Gain gain;
  for (std::size_t i = 0; i < report_.findings.size(); ++i)
    gain.before[entries_[i]].count(report_.findings[i]);
  for (const Finding &finding : trial.report.findings) {
    gain.after[entry_of(finding.at)].count(finding);
    gain.left[{finding.rule, trial.step.origin(finding.at)}] = digest_of(finding.text);
  }
  for (const ServedName &name : trial.served.not_in(served)) gain.better.insert(entry_of(name.at));
  return gain;
}

bool Mender::Step::helps(const Unit &unit, const Trial &trial, const Gain &gain) const {
  if (gain.better.count(unit.entry) > 0) return true;
  const auto faults_in = [&](const std::map<std::size_t, Faults> &entries) {
    const auto found = entries.find(unit.entry);
    return found == entries.end() ? Faults() : found->second;
  };
  if (faults_in(gain.after) < faults_in(gain.before)) return true;
  return !unit.of_entry && std::any_of(unit.findings.begin(), unit.findings.end(),
                                       [&](std::size_t i) { return gets_further(i, trial, gain); });
}

// What the lookups come to next may be told in the same entry. The text tells what is lost.
bool Mender::Step::gets_further(std::size_t i, const Trial &trial, const Gain &gain) const {
  if (!trial.applied[i]) return false;
  const Finding &finding = report_.findings[i];
  const auto left = gain.left.find({finding.rule, finding.at});
  return left == gain.left.end() ||
         (!gain.better.empty() && left->second != digest_of(finding.text));
}

void Mender::Step::take(Trial trial) {
  for (const ServedName &lost : mender_.served().not_in(trial.served)) mender_.allow_to_lose(lost);
  const std::string &text = mender_.text().text();
  for (std::size_t i = 0; i < report_.findings.size(); ++i) {
    if (!trial.applied[i]) continue;
    const Finding &finding = report_.findings[i];
    ++mender_.times_mended_[{finding.rule, mender_.origin(finding.at)}];
    if (const auto entry = id_of_entry(i); entry && is_mended_with_entry(finding))
      mender_.mended_entries_.insert(*entry);
    mender_.add_mended({finding, describe(finding.fix.edits, text)});
  }
  mender_.accept(std::move(trial));
}

}  // namespace kztns
