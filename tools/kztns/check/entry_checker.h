// Reports each entry's own faults as the walk through the file builds it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "check/check_request.h"
#include "check/entry_faults.h"
#include "text/utf_16.h"

namespace kztns {

class EntryChecker : public EntryVisitor {
 public:
  EntryChecker(const NamesText &text, const CheckRequest &request, Findings &findings)
      : text_(text),
        request_(request),
        findings_(findings),
        ranges_(text),
        faults_(text, ranges_, findings) {}

  void visit(const EntryView &view) override;
  void progress(Offset at) override { request_.progress(at); }

  // The finding about the last entry, when its fault ends the lookups too.
  const std::optional<Diagnosis> &reported_stop() const { return reported_stop_; }

  // Where what ends lookups is told with the entry before: what comes after parentheses that match
  // too early, items outside of a description, what is left of other entries.
  const std::vector<Span> &told_ranges() const { return told_ranges_; }

 private:
  // Of the names of a list one is enough; a comment of other readers is no entry; one that stands
  // in another entry is told with that.
  bool is_told_already(const CheckedEntry &checked);
  // Whether the fault ends the lookups of other names too.
  bool ends_lookups_too(const CheckedEntry &checked) const;
  // The items of an entry that is refused, when lookups that pass over the first one meet
  // another one that belongs in its description, or whose key is mended as its first fault.
  std::optional<Span> loose_items(const CheckedEntry &checked, const Diagnosis &first_fault) const;
  // Whether the fault leaves no name to read after the entry.
  bool loses_next_name(const CheckedEntry &checked, const Diagnosis &diagnosis) const;
  void report_fault(const CheckedEntry &checked);
  // To the library the block is part of this entry, and so are its faults.
  bool report_half_comment(const CheckedEntry &checked);
  // A block that another name, in a comment, stands before.
  void report_block_of_other(const CheckedEntry &checked);
  bool report_left_over(const CheckedEntry &checked);
  // A block after an empty line, which is served for this name.
  bool report_nameless(const CheckedEntry &checked);
  NewFinding left_over(const CheckedEntry &checked, Span rest, std::string text);
  // The library built it with text of later entries.
  bool report_read_on(const CheckedEntry &checked);
  void report_rest(const CheckedEntry &checked, Rule rule, Severity severity, NewFinding found);
  std::string consequence(const Stop *stop) const;

  const NamesText &text_;
  bool utf_16_ = is_utf_16(text_.text());
  const CheckRequest &request_;
  Findings &findings_;
  EntryRanges ranges_;
  EntryFaults faults_;
  Offset list_ = 0;  // the body of the last list of names
  std::optional<Diagnosis> reported_stop_;
  std::vector<Span> told_ranges_;
};

}  // namespace kztns
