#include "check/file_rules.h"

#include <algorithm>

#include "check/lost_entries.h"
#include "check/name_rules.h"
#include "fixes/file_fixes.h"
#include "fixes/moved_entries.h"
#include "rules/diagnosis.h"
#include "rules/parentheses.h"
#include "scan/half_comment.h"
#include "scan/item_text.h"
#include "scan/stray_text.h"
#include "text/utf_16.h"
#include "text/words.h"

namespace kztns {
namespace {

class FileRules {
 public:
  FileRules(const FileScan &scan, const std::optional<Diagnosis> &reported,
            std::vector<Span> told_ranges, Findings &findings)
      : text_(scan.text()),
        scan_(scan),
        reported_(reported),
        told_ranges_(std::move(told_ranges)),
        findings_(findings),
        lists_(scan) {
    // Each range gets the end that comes last so far: one search tells whether any holds a place.
    std::sort(told_ranges_.begin(), told_ranges_.end(),
              [](const Span &left, const Span &right) { return left.begin < right.begin; });
    Offset last = 0;
    for (Span &range : told_ranges_) range.end = last = std::max(last, range.end);
  }

  void report() {
    if (is_utf_16(text_.text())) return report_utf_16();
    report_line_ends();
    const LostEntries lost(scan_);
    if (scan_.stop().kind != StopKind::end) report_stop(lost);
    for (const Stop &stop : scan_.further_stops()) report_further_stop(stop);
    report_skip_mismatches(lost);
    for (const Swallowed &swallowed : lost.swallowed()) report_swallowed(swallowed);
    report_names(scan_, lists_, findings_);
  }

 private:
  const std::vector<Entry> &entries() const { return scan_.entries(); }

  void report_utf_16() {
    std::string converted = utf_8_of_utf_16(text_.text());
    findings_.add(Rule::utf_16, {.at = 0,
                                 .text = "the file is in UTF-16, in which no name can be read",
                                 .fix = safe_fix({{0, text_.size(), std::move(converted)}})});
  }

  void report_line_ends() {
    const auto at = hiding_carriage_return(text_.text());
    if (at)
      findings_.add(
          Rule::cr_line_ends,
          {.at = *at,
           .text = "a carriage return alone does not end this comment: what follows is part of it",
           .fix = fix_of_line_ends(text_.text())});
  }

  // The stop is a finding of its own unless an entry's finding explains it.
  void report_stop(const LostEntries &lost) {
    const std::string words = lost.after_stop().sentence(scan_);
    if (scan_.stop().kind == StopKind::reserved) return report_after_reserved(lost.after_stop());
    if (reported_) {
      // Items outside of a description end the lookups only where an entry comes after them.
      if (scan_.stop().kind == StopKind::no_name && !closes_early(reported_->rule) &&
          ends_file(lost))
        return;
      const bool said = scan_.stop().kind == StopKind::never_balanced;
      if (lost.after_stop().count() > 0 || !said)
        findings_.append(reported_->rule, reported_->at, "; " + words);
      return;
    }
    Diagnosis cause = cause_of_stop(scan_);
    if (is_parenthesis(cause.rule) && !scan_.skip_mismatches().empty()) return;
    if (cause.rule == Rule::second_block && ends_file(lost)) return;
    const Lost names = names_of_list(scan_, cause.at);
    if (names.count() > 0) cause.text += ": no lookup finds " + names.names(scan_);
    const bool goes_on = goes_on_with_loss(cause.rule) && names.count() == 0;
    if (goes_on || lost.after_stop().count() > 0)
      cause.text += separator(scan_.stop(), cause) + words;
    report_cause(scan_.stop(), std::move(cause));
  }

  static const char *separator(const Stop &stop, const Diagnosis &cause) {
    if (stop.kind == StopKind::no_open) return "; ";  // as after the finding of an entry
    return cause.text.find(": ") == std::string::npos && !is_parenthesis(cause.rule) ? ": " : "; ";
  }

  // Whether nothing but the rest of the last entry is after the stop.
  bool ends_file(const LostEntries &lost) const {
    return lost.after_stop().count() == 0 && scan_.further_stops().empty();
  }

  // The same of a further stop.
  bool is_last(const Stop &stop, const Diagnosis &cause) const {
    return entry_of(cause) == &entries().back() && stop.at == scan_.further_stops().back().at;
  }

  bool is_told(Offset at) const {
    const auto after =
        std::lower_bound(told_ranges_.begin(), told_ranges_.end(), at,
                         [](const Span &range, Offset place) { return range.begin < place; });
    return after != told_ranges_.begin() && at < std::prev(after)->end;
  }

  void report_further_stop(const Stop &stop) {
    if (is_told(stop.at)) return;
    Diagnosis cause = cause_of_further_stop(scan_, stop);
    if (cause.rule == Rule::second_block && is_last(stop, cause)) return;
    const Lost names = names_of_list(scan_, cause.at);
    if (names.count() > 0)
      cause.text += ": no lookup finds " + names.names(scan_);
    else if (goes_on_with_loss(cause.rule))
      cause.text += separator(stop, cause) + Lost().sentence(scan_);
    report_cause(stop, std::move(cause));
  }

  // What is told of as an entry's fault is not told of again.
  void report_cause(const Stop &stop, Diagnosis cause) {
    if (findings_.has(cause.rule, cause.at)) return;
    findings_.add(cause.rule, [&] { return finding_of(stop, std::move(cause)); });
  }

  NewFinding finding_of(const Stop &stop, Diagnosis cause) {
    const Entry *const entry = entry_of(cause);
    Mending split = cause.rule == Rule::comma_list ? lists_.split(cause.at) : Mending();
    if (!split.remedy.empty()) cause.remedy = std::move(split.remedy);
    Fix fix = std::move(split.fix);
    if (entry != nullptr && cause.rule == Rule::second_block) fix = moved_to_end(*entry);
    if (entry != nullptr && cause.rule == Rule::paren_in_comment)
      fix = fix_of_comments(text_.text(), entry->body, end_of(*entry));
    // The first of several between entries is removed with the others.
    const bool between_entries = cause.rule == Rule::extra_close && cause.at == stop.at;
    if (!fix && !between_entries) fix = cause.fix;
    if (!fix) fix = fix_of_stop(scan_, stop, cause.rule, cause.at);
    if (cause.rule == Rule::stray_text && cause.remedy.empty())
      cause.remedy = remedy_of_stray_text(cause.at, bool(fix));
    return {.at = cause.at,
            .entry = entry == nullptr ? name_without_block(stop, cause.rule) : scan_.name(*entry),
            .text = std::move(cause.text),
            .remedy = std::move(cause.remedy),
            .fix = std::move(fix)};
  }

  // Empty: the rule's own.
  std::string remedy_of_stray_text(Offset at, bool has_fix) const {
    const std::string_view text = text_.text();
    if (const auto name = name_joined_before(text, at))
      return "begin a line with " + quoted(text.substr(name->begin, name->end - name->begin)) +
             ", which is in the comment before it";
    if (is_nameless_entry(scan_, at)) return "write a name before it, or make a comment of it";
    if (has_fix) return {};
    if (may_belong_to_entry_before(scan_, at)) return "move it into the entry before it";
    const Offset limit = scan_.next_entry(at);
    if (!may_be_entry(text, {at, end_of_stray_text(text, at, limit)})) return {};
    return value_on_line(text.substr(0, limit), at)
               ? "write one name before \"=\", or an entry for each name"
               : "write NAME = (DESCRIPTION = ...)";
  }

  // The entry that a stop is about, if it is about one.
  const Entry *entry_of(const Diagnosis &cause) const {
    const bool in_entry = is_parenthesis(cause.rule) || cause.rule == Rule::second_block;
    return in_entry ? scan_.entry_at_or_before(cause.at) : nullptr;
  }

  // The name of what has no block, and is no entry of the scan; empty for other stops.
  std::string_view name_without_block(const Stop &stop, Rule rule) const {
    if (stop.kind != StopKind::no_open || rule == Rule::ifile || rule == Rule::stray_text)
      return {};
    const std::string_view text = text_.text();
    return text.substr(stop.name, end_of_word(text, stop.name) - stop.name);
  }

  // The end of an entry's first block, by its tokens.
  Offset end_of(const Entry &entry) const {
    const Offset limit = scan_.next_entry(entry.body);
    const std::string_view text = std::string_view(text_.text()).substr(0, limit);
    return end_of_first_block(text, entry.body).value_or(limit);
  }

  static bool is_parenthesis(Rule rule) {
    return rule == Rule::paren_in_comment || rule == Rule::paren_in_quotes;
  }

  // Only one entry can be the last one.
  Fix moved_to_end(const Entry &entry) {
    if (moved_) return {};
    Fix fix = move_to_end(scan_, entry);
    moved_ = bool(fix);
    return fix;
  }

  // The entries that are lost where lookups go on elsewhere in the text.
  Lost lost_through(const LostEntries &lost, std::size_t i) const {
    const SkipMismatch &skip_mismatch = scan_.skip_mismatches()[i];
    for (const Swallowed &swallowed : lost.swallowed())
      if (swallowed.by->body == skip_mismatch.body) return swallowed.entries;
    const Offset stop = scan_.stop().at;
    const bool at_stop = skip_mismatch.reached &&
                         (skip_mismatch.body == scan_.last_reached()->body ||
                          (skip_mismatch.passed_to <= stop && stop < skip_mismatch.built_to));
    return at_stop && scan_.stop().kind != StopKind::reserved ? lost.after_stop() : Lost();
  }

  void report_skip_mismatches(const LostEntries &lost) {
    for (std::size_t i = 0; i < scan_.skip_mismatches().size(); ++i) {
      const SkipMismatch &skip_mismatch = scan_.skip_mismatches()[i];
      auto cause = cause_of_skip_mismatch(text_, skip_mismatch);
      if (!cause || is_told(cause->at)) continue;
      const Entry &entry = *scan_.entry_at_or_before(skip_mismatch.body);
      const Lost entries = lost_through(lost, i);
      const bool last = entry.body == this->entries().back().body;
      if (last && entries.count() == 0 && cause->rule == Rule::paren_in_quotes) continue;
      findings_.add(cause->rule, [&] {
        if (entries.count() > 0) cause->text += "; " + entries.sentence(scan_);
        return NewFinding{
            .at = cause->at,
            .entry = scan_.name(entry),
            .text = std::move(cause->text),
            .fix = cause->rule == Rule::paren_in_comment
                       ? fix_of_comments(text_.text(), entry.body, skip_mismatch.built_to)
                       : moved_to_end(entry)};
      });
    }
  }

  bool is_told(const Swallowed &swallowed) const {
    return std::any_of(
        scan_.skip_mismatches().begin(), scan_.skip_mismatches().end(),
        [&](const SkipMismatch &mismatch) { return mismatch.body == swallowed.by->body; });
  }

  void report_swallowed(const Swallowed &swallowed) {
    if (is_told(swallowed)) return;
    const Entry &first = *swallowed.entries.first();
    findings_.add(
        Rule::unreachable,
        {.at = first.at,
         .entry = scan_.name(first),
         .text = "lookups skip it as part of " + excerpt(scan_.name(*swallowed.by)) + " at " +
                 text_.place(swallowed.by->at) + others(swallowed.entries, ", and")});
  }

  // "; so do the 2 entries after it: b, c"; empty for one entry.
  std::string others(const Lost &lost, const std::string &link) const {
    const std::size_t count = lost.count() - 1;
    if (count == 0) return {};
    const std::string entries = count == 1
                                    ? " the entry after it: "
                                    : " the " + std::to_string(count) + " entries after it: ";
    return link + entries + lost.names(scan_, 1);
  }

  void report_after_reserved(const Lost &lost) {
    if (lost.count() == 0) return;
    const Entry &last = *scan_.last_reached();
    const Entry &first = *lost.first();
    const bool one = lost.count() == 1;
    findings_.add(Rule::after_reserved,
                  {.at = first.at,
                   .entry = scan_.name(first),
                   .text = "comes after " + excerpt(scan_.name(last)) + " at " +
                           text_.place(last.at) + ", where every lookup ends" +
                           others(lost, lost.count() == 2 ? "; so does" : "; so do"),
                   .remedy = one ? "" : "move them before that entry",
                   .fix = move_reserved(scan_),
                   .related = last.at});
  }

  const NamesText &text_;
  const FileScan &scan_;
  const std::optional<Diagnosis> &reported_;
  std::vector<Span> told_ranges_;
  Findings &findings_;
  NameLists lists_;
  bool moved_ = false;
};

}  // namespace

void apply_file_rules(const FileScan &scan, const std::optional<Diagnosis> &reported,
                      std::vector<Span> told_ranges, Findings &findings) {
  FileRules(scan, reported, std::move(told_ranges), findings).report();
}

}  // namespace kztns
