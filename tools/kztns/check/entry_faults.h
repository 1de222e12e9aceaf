// All faults of an entry: after each one the entry is mended in a copy, or the item at
// fault is left out of it, and the copy is built again.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "check/checked_entry.h"
#include "check/findings.h"
#include "fixes/mending.h"
#include "rules/diagnosis.h"

namespace kztns {

// The end of the last finding's text when the entry is not checked to its end.
inline constexpr std::string_view rest_is_unchecked = "; the rest of the entry is not checked";

// Explains the fault of an entry that is not built: by its parentheses if they do not
// balance, or else as the trace has it.
Diagnosis diagnose_entry(const Subject &subject, const Trace &trace, EntryRange range,
                         std::string_view name);

class EntryFaults {
 public:
  EntryFaults(const NamesText &text, EntryRanges &ranges, Findings &findings)
      : text_(text), ranges_(ranges), findings_(findings) {}

  // The first fault of an entry that has one.
  Diagnosis first_of(const CheckedEntry &checked);

  // Reports it, with consequence after its text, the other faults and the warnings. An entry
  // that is built keeps its tree: its faults have no fixes. Where another entry was put between its
  // items, returns where those after that one stand.
  std::optional<Span> report(const CheckedEntry &checked, const Diagnosis &first,
                             const std::string &consequence);

  // Reports the fault of an entry which is built with text of later ones only, and returns where
  // it is; absent where the entry's own text is enough.
  std::optional<Offset> report_alone(const CheckedEntry &checked);

  // Whether no entry has a name, in capitals or small letters.
  bool is_free(std::string_view name);

  // Whether the entry whose name is at a place stands in another one, and is told with it.
  bool is_inserted(Offset at) const { return inserted_.count(at) > 0; }

 private:
  Mending mend_begun(const CheckedEntry &checked, const Diagnosis &first) const;
  Fix without_line_signs(const CheckedEntry &checked, const Diagnosis &first) const;
  std::optional<Span> report_inserted(const CheckedEntry &checked, const Diagnosis &first,
                                      const std::string &consequence);
  void report_each(const CheckedEntry &checked, const Diagnosis &first,
                   const std::string &consequence);
  // One finding of all of the entry.
  void report_whole(const CheckedEntry &checked, Diagnosis told, std::string_view remedy, Fix fix,
                    const std::string &consequence);
  Subject subject(const CheckedEntry &checked, const NamesText &text, std::string_view noun,
                  Offset end);
  void add(std::string_view entry, Severity severity, Diagnosis found);

  const NamesText &text_;
  EntryRanges &ranges_;
  Findings &findings_;
  std::unordered_set<std::string> names_;  // of all entries, in small letters; made when needed
  std::unordered_set<Offset> inserted_;
};

}  // namespace kztns
