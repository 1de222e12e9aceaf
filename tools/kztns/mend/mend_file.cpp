#include "mend/mend_file.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "check/check_selected.h"
#include "mend/mend_step.h"
#include "text/words.h"

namespace kztns {
namespace {

constexpr std::size_t all_findings = std::numeric_limits<std::size_t>::max();

// Whether the first line of a text ends in CR and LF.
bool has_crlf(std::string_view text) {
  const std::size_t feed = text.find('\n');
  return feed != std::string_view::npos && feed > 0 && text[feed - 1] == '\r';
}

}  // namespace

Mender::Mender(const NamesText &original, MendRequest request)
    : request_(std::move(request)), original_(original), crlf_(has_crlf(original.text())) {}

CheckReport Mender::check(const NamesText &text, ServedNames *served) const {
  CheckRequest request = {
      .file = request_.file, .most_of_a_rule = all_findings, .progress = request_.progress};
  if (served != nullptr) request.visit = [served](const EntryView &view) { served->take(view); };
  CheckReport report = check_selected_once(text, request, request_.disabled);
  if (served != nullptr) served->sort();
  if (!deep_ || !report.lookups_end) return report;
  request.visit = {};
  return check_selected(text, request, request_.disabled);
}

const CheckReport &Mender::report() {
  if (!report_) report_ = check(text(), nullptr);
  return *report_;
}

const ServedNames &Mender::served() {
  if (!served_before_) served_before_ = served_names(original_);
  if (!served_) served_ = edited_ ? served_names(*text_) : *served_before_;
  return *served_;
}

// A file has few faults that come to light only after others are mended. One that is made
// for it would cost the square of its length.
bool Mender::spend_check() {
  constexpr std::uint64_t basis = 64 << 20;
  constexpr std::uint64_t most_checks = 64;
  // What a check takes that comes past what ends the lookups, as a rule.
  constexpr std::uint64_t checks_of_deep_one = 4;
  checked_ += text().size() * (deep_ ? checks_of_deep_one : 1);
  if (checked_ > basis + most_checks * original_.size()) stopped_ = true;
  return !stopped_;
}

std::vector<Edit> Mender::with_line_ends(std::vector<Edit> edits) const {
  if (!crlf_) return edits;
  for (Edit &edit : edits) {
    if (edit.copy_of) continue;  // it is what stands there
    for (std::size_t at = edit.text.find('\n'); at != std::string::npos;
         at = edit.text.find('\n', at + 1))
      if (at == 0 || edit.text[at - 1] != '\r') edit.text.insert(at++, 1, '\r');
  }
  return edits;
}

Mender::Trial Mender::try_out(std::vector<Edit> edits) {
  edits = with_line_ends(std::move(edits));
  Trial trial(edited_ ? *edited_ : EditedText(original_.text()));
  trial.edited.apply(edits);
  trial.step.apply(edits);
  trial.report = check(NamesText(trial.edited, original_), &trial.served);
  return trial;
}

void Mender::accept(Trial trial) {
  edited_ = std::move(trial.edited);
  text_.emplace(*edited_, original_);
  report_ = std::move(trial.report);
  served_ = std::move(trial.served);
  ++steps_;
}

bool Mender::try_edits(std::vector<Edit> edits, const std::vector<Offset> &exempt) {
  Trial trial = try_out(std::move(edits));
  const std::vector<ServedName> lost = served().not_in(trial.served);
  const auto is_exempt = [&](const ServedName &name) {
    return std::find(exempt.begin(), exempt.end(), name.at) != exempt.end() &&
           trial.served.has(name.name);
  };
  if (!std::all_of(lost.begin(), lost.end(), is_exempt)) return false;
  for (const ServedName &name : lost) allow_to_lose(name);
  accept(std::move(trial));
  return true;
}

Offset Mender::origin(Offset at) const { return edited_ ? edited_->origin(at) : at; }

Mender::EntryId Mender::id_of(Offset at) const {
  const std::string_view whole = text().text();
  return {origin(at), digest_of(whole.substr(at, end_of_word(whole, at) - at))};
}

void Mender::apply_fixes() {
  const State before = state();
  for (;;) {
    apply_while_any_helps();
    const std::set<EntryId> refused = changed_in_vain();
    if (refused.empty() || stopped_) return;
    left_alone_.insert(refused.begin(), refused.end());
    go_back_to(before);
  }
}

// What ends the lookups hides findings from a single walk through the text.
void Mender::apply_while_any_helps() {
  report();
  run_steps();
  if (deep_ || stopped_ || !report_->lookups_end) return;
  deep_ = true;
  report_ = check(text(), nullptr);
  run_steps();
}

void Mender::run_steps() {
  while (Step(*this, Step::Choice::first).run() || Step(*this, Step::Choice::all).run()) {
  }
}

// The entries that were mended and are refused all the same.
std::set<Mender::EntryId> Mender::changed_in_vain() {
  std::set<EntryId> refused;
  if (mended_entries_.empty()) return refused;
  for (const Offset at : served().refused())
    if (mended_entries_.count(id_of(at)) > 0) refused.insert(id_of(at));
  return refused;
}

Mender::State Mender::state() const {
  return {edited_, mended_.size(), changed_.size(), steps_, deep_};
}

void Mender::go_back_to(const State &before) {
  edited_ = before.edited;
  text_.reset();
  if (edited_) text_.emplace(*edited_, original_);
  report_.reset();
  served_.reset();
  mended_.erase(mended_.begin() + static_cast<std::ptrdiff_t>(before.mended), mended_.end());
  changed_.resize(before.changed);
  steps_ = before.steps;
  deep_ = before.deep;
  mended_entries_.clear();
  times_mended_.clear();
}

std::vector<ServedName> Mender::lost_in(const ServedNames &result) const {
  if (!served_before_) return {};
  std::vector<ServedName> lost = served_before_->not_in(result);
  std::erase_if(lost, [this](const ServedName &name) {
    return std::find(changed_.begin(), changed_.end(), name.name) != changed_.end();
  });
  return lost;
}

std::vector<ServedName> Mender::new_in(const ServedNames &result) const {
  if (!served_before_) return {};
  return result.not_in(*served_before_);
}

}  // namespace kztns
