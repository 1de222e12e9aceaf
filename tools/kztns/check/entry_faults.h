// All faults of an entry: after each one the entry is mended in a copy, or the item at
// fault is left out of it, and the copy is built again.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "check/findings.h"
#include "rules/parentheses.h"
#include "scan/file_scan.h"

namespace kztns {

// The end of the last finding's text when the entry is not checked to its end.
inline constexpr std::string_view rest_is_unchecked = "; the rest of the entry is not checked";

// Explains the fault of an entry that is not built: by its parentheses if they do not
// balance, or else as the trace has it.
Diagnosis diagnose_entry(const Subject &subject, const Trace &trace, EntryRange range,
                         std::string_view name);

class EntryFaults {
 public:
  EntryFaults(const NamesText &text, Findings &findings)
      : text_(text), findings_(findings), ranges_(text) {}

  // Makes an entry the current one; returns where its text stands.
  EntryRange enter(const EntryView &view) {
    if (entered_ != view.entry.body) range_ = ranges_.range_of(view.entry.body);
    entered_ = view.entry.body;
    in_list_ = view.entry.in_list;
    return range_;
  }
  // The first fault of an entry that has one.
  Diagnosis first_of(const EntryView &view);

  // Reports it, with consequence after its text, the other faults and the warnings. To be
  // called right after first_of. An entry that is built keeps its tree: its faults have no
  // fixes.
  void report(const EntryView &view, const Diagnosis &first, const std::string &consequence);

  // Reports the fault of the current entry, which is built with text of later ones only, and
  // returns where it is; absent where the entry's own text is enough.
  std::optional<Offset> report_alone(const EntryView &view);

  // Whether the entry whose name is at a place stands in another one, and is told with it.
  bool is_inserted(Offset at) const { return inserted_.count(at) > 0; }

  // Of the current entry.
  EntryRange range() const { return range_; }

 private:
  std::string_view remedy_of_begun(const EntryView &view, const Diagnosis &first) const;
  Fix without_quote_signs(const EntryView &view, const Diagnosis &first) const;
  bool report_inserted(const EntryView &view, const Diagnosis &first,
                       const std::string &consequence);
  // One finding of all of the entry.
  void report_whole(const EntryView &view, Diagnosis told, std::string_view remedy, Fix fix,
                    const std::string &consequence);
  Subject subject(const NamesText &text, std::string_view noun, Offset end);
  void add(std::string_view entry, Severity severity, Diagnosis found);
  bool is_free(std::string_view name);

  const NamesText &text_;
  Findings &findings_;
  EntryRanges ranges_;
  std::unordered_set<std::string> names_;  // of all entries, in small letters; made when needed
  Offset entered_ = ~Offset{0};            // the body of the current entry
  EntryRange range_ = {};                  // of the current entry
  bool in_list_ = false;                   // whether it has several names
  std::unordered_set<Offset> inserted_;
};

}  // namespace kztns
