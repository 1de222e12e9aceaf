#include "rules/mend_file.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <set>

#include "rules/apply_fixes.h"
#include "rules/check_file.h"
#include "rules/describe_edits.h"

namespace kztns {
namespace {

constexpr std::size_t all_findings = std::numeric_limits<std::size_t>::max();

// Whether the first line of a text ends in CR and LF.
bool has_crlf(std::string_view text) {
  const std::size_t feed = text.find('\n');
  return feed != std::string_view::npos && feed > 0 && text[feed - 1] == '\r';
}

// Whether what is wrong is the name itself, which its fix changes.
bool is_about_name(Rule rule) {
  return rule == Rule::byte_order_mark || rule == Rule::odd_bytes || rule == Rule::comma_list ||
         rule == Rule::reserved_part || rule == Rule::ifile || rule == Rule::utf_16;
}

// Whether what is wrong stands in an entry; all else keeps lookups from entries.
bool is_within_entry(Rule rule) { return rule < Rule::byte_order_mark; }

}  // namespace

// The text with some edits, and what the library makes of it.
struct Mender::Trial {
  explicit Trial(const EditedText &before) : edited(before), step(before.text()) {}

  EditedText edited;
  EditedText step;  // tells places of the text before the edits
  CheckReport report = {};
  ServedNames served = {};
};

// One walk: the findings at hand, in groups by the entries in which they are. The
// fixes of a group are applied together or not at all.
class Mender::Walk {
 public:
  explicit Walk(Mender &mender) : mender_(mender), report_(*mender.report_) {
    for (std::size_t i = 0; i < report_.findings.size(); ++i) {
      groups_.push_back(mender_.served().entry_around(report_.findings[i].at));
      applicability_.push_back(report_.findings[i].fix.applicability);
    }
  }

  // Applies what can be applied; returns whether anything was.
  bool run() {
    std::set<std::size_t> open = groups_with_fixes();
    while (!open.empty() && mender_.may_go_on()) {
      Trial trial = try_out(open);
      const std::set<std::size_t> bad = blamed(trial, open);
      if (bad.empty()) {
        take(std::move(trial));
        return true;
      }
      for (const std::size_t group : bad) open.erase(group);
    }
    return false;
  }

 private:
  std::set<std::size_t> groups_with_fixes() {
    edits_of(report_.findings, mender_.request_.with_unsafe, &applied_);
    std::set<std::size_t> groups;
    for (std::size_t i = 0; i < applied_.size(); ++i)
      if (applied_[i]) groups.insert(groups_[i]);
    return groups;
  }

  Trial try_out(const std::set<std::size_t> &groups) {
    for (std::size_t i = 0; i < report_.findings.size(); ++i)
      report_.findings[i].fix.applicability =
          groups.count(groups_[i]) > 0 ? applicability_[i] : Applicability::none;
    edits_ = edits_of(report_.findings, mender_.request_.with_unsafe, &applied_);
    return mender_.try_out(edits_);
  }

  // The groups of which the fixes are taken back; where a name is lost and no group is
  // known to be the cause, all but those that are sure to do no harm.
  std::set<std::size_t> blamed(const Trial &trial, const std::set<std::size_t> &open) {
    std::set<std::size_t> bad;
    const bool unexplained = blame_for_losses(trial, open, bad);
    blame_for_nothing_gained(trial, open, bad);
    if (!bad.empty() || !unexplained) return bad;
    std::set<std::size_t> harmless;
    divide({open.begin(), open.end()}, harmless);
    std::set_difference(open.begin(), open.end(), harmless.begin(), harmless.end(),
                        std::inserter(bad, bad.end()));
    return bad;
  }

  // Whether a name is lost without a group to blame.
  bool blame_for_losses(const Trial &trial, const std::set<std::size_t> &open,
                        std::set<std::size_t> &bad) const {
    bool unexplained = false;
    for (const ServedName &lost : mender_.served().not_in(trial.served)) {
      const std::size_t group = mender_.served().entry_around(lost.at);
      if (is_renamed(group)) continue;
      if (open.count(group) > 0)
        bad.insert(group);
      else
        unexplained = true;
    }
    return unexplained;
  }

  bool is_renamed(std::size_t group) const {
    for (std::size_t i = 0; i < applied_.size(); ++i)
      if (applied_[i] && groups_[i] == group && is_about_name(report_.findings[i].rule))
        return true;
    return false;
  }

  // Adds the halves of some groups to the harmless ones as long as no name is lost.
  void divide(const std::vector<std::size_t> &groups, std::set<std::size_t> &harmless) {
    if (!mender_.may_go_on()) return;
    std::set<std::size_t> tried = harmless;
    tried.insert(groups.begin(), groups.end());
    const Trial trial = try_out(tried);
    std::set<std::size_t> bad;
    if (!blame_for_losses(trial, tried, bad) && bad.empty()) {
      harmless = std::move(tried);
    } else if (groups.size() > 1) {
      const auto middle = groups.begin() + static_cast<std::ptrdiff_t>(groups.size() / 2);
      divide({groups.begin(), middle}, harmless);
      divide({middle, groups.end()}, harmless);
    }
  }

  // How much is wrong: first the errors, then all findings.
  using Faults = std::pair<std::size_t, std::size_t>;

  static void count(const Finding &finding, Faults &faults) {
    ++faults.second;
    if (finding.severity == Severity::error) ++faults.first;
  }

  void blame_for_nothing_gained(const Trial &trial, const std::set<std::size_t> &open,
                                std::set<std::size_t> &bad) const {
    const ServedNames &served = mender_.served();
    std::map<std::size_t, Faults> before;
    std::map<std::size_t, Faults> after;
    std::set<std::pair<Rule, Offset>> left;
    for (std::size_t i = 0; i < report_.findings.size(); ++i)
      count(report_.findings[i], before[groups_[i]]);
    for (const Finding &finding : trial.report.findings) {
      const Offset at = trial.step.origin(finding.at);
      count(finding, after[served.entry_around(at)]);
      left.emplace(finding.rule, at);
    }
    std::set<std::size_t> better;
    for (const ServedName &name : trial.served.not_in(served))
      better.insert(served.entry_around(trial.step.origin(name.at)));
    for (std::size_t i = 0; i < report_.findings.size(); ++i) {
      const Finding &finding = report_.findings[i];
      if (applied_[i] && !is_within_entry(finding.rule) &&
          left.count({finding.rule, finding.at}) == 0)
        better.insert(groups_[i]);
    }
    for (const std::size_t group : open)
      if (better.count(group) == 0 && after[group] >= before[group]) bad.insert(group);
  }

  void take(Trial trial) {
    for (const ServedName &lost : mender_.served().not_in(trial.served))
      mender_.allow_to_lose(lost);
    const std::string &text = mender_.text().text();
    for (std::size_t i = 0; i < report_.findings.size(); ++i)
      if (applied_[i])
        mender_.add_mended({report_.findings[i], describe(report_.findings[i].fix.edits, text)});
    mender_.accept(std::move(trial));
  }

  Mender &mender_;
  CheckReport &report_;
  std::vector<std::size_t> groups_;           // of the findings
  std::vector<Applicability> applicability_;  // of their fixes
  std::vector<bool> applied_;
  std::vector<Edit> edits_;
};

Mender::Mender(const NamesText &original, MendRequest request)
    : request_(std::move(request)), original_(original), crlf_(has_crlf(original.text())) {}

const CheckReport &Mender::report() {
  if (!report_) {
    CheckRequest request = {request_.file, false, all_findings, request_.progress};
    report_ = check_once(text(), request);
  }
  return *report_;
}

const ServedNames &Mender::served() {
  if (!served_before_) served_before_ = served_names(original_);
  if (!served_) served_ = edited_ ? served_names(*text_) : *served_before_;
  return *served_;
}

// A file has few faults that come to light only after others are mended. One that is made
// for it would cost the square of its length.
bool Mender::may_go_on() {
  constexpr std::uint64_t basis = 64 << 20;
  constexpr std::uint64_t most_walks = 64;
  walked_ += text().size();
  if (walked_ > basis + most_walks * original_.size()) stopped_ = true;
  return !stopped_;
}

std::vector<Edit> Mender::with_line_ends(std::vector<Edit> edits) const {
  if (!crlf_) return edits;
  for (Edit &edit : edits)
    for (std::size_t at = edit.text.find('\n'); at != std::string::npos;
         at = edit.text.find('\n', at + 1))
      if (at == 0 || edit.text[at - 1] != '\r') edit.text.insert(at++, 1, '\r');
  return edits;
}

Mender::Trial Mender::try_out(std::vector<Edit> edits) {
  edits = with_line_ends(std::move(edits));
  Trial trial(edited_ ? *edited_ : EditedText(original_.text()));
  trial.edited.apply(edits);
  trial.step.apply(edits);
  const NamesText text(trial.edited, original_);
  CheckRequest request = {request_.file, false, all_findings, request_.progress};
  request.visit = [&trial](const EntryView &view) { trial.served.take(view); };
  trial.report = check_once(text, request);
  trial.served.sort();
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
    return std::find(exempt.begin(), exempt.end(), name.at) != exempt.end();
  };
  if (!std::all_of(lost.begin(), lost.end(), is_exempt)) return false;
  for (const ServedName &name : lost) allow_to_lose(name);
  accept(std::move(trial));
  return true;
}

void Mender::apply_fixes() {
  report();
  while (!edits_of(report_->findings, request_.with_unsafe).empty() && Walk(*this).run()) {
  }
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
