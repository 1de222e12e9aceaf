// What is wrong with the parentheses of an entry, for people. Where they do not balance,
// the first error of the builder is usually a consequence.
#pragma once

#include <optional>
#include <vector>

#include "rules/diagnosis.h"

namespace kztns {

// Where an entry's text stands: from its "=" to the next entry, or to the end.
struct EntryRange {
  Offset body;
  Offset end;
  bool last = true;  // whether no entry comes after it
};

// Whether the parentheses of an entry's text balance, and if not, what is wrong first. The
// fix puts one in or takes one out. name is the entry's.
std::optional<Diagnosis> find_parenthesis_fault(const Subject &subject, EntryRange range,
                                                std::string_view name);

// Whether such a fault makes the parentheses of an entry match before its end.
inline bool closes_early(Rule rule) {
  return rule == Rule::extra_close || rule == Rule::missing_open;
}

// What lookups that pass over an entry meet after its parentheses, as they count them, where
// they expect a name. Absent when there is a name or nothing.
std::optional<Offset> no_name_after(std::string_view text, Offset body);

// Where the entries of a text end. Found when it is asked for.
class EntryRanges {
 public:
  explicit EntryRanges(const NamesText &text) : text_(text) {}

  // Empty when the ranges that were asked for overlap too often: in a file made for it,
  // where lookups come upon thousands of entries of which none stands in a line of its
  // own, reading them all would cost the square of its length.
  EntryRange range_of(Offset body);

 private:
  void find_names();
  // Entries as people write them overlap nowhere.
  static constexpr std::uint64_t most_times_over = 4;

  const NamesText &text_;
  bool known_ = false;
  std::uint64_t spent_ = 0;    // characters of the ranges so far
  std::vector<Offset> names_;  // where entries begin, those of other readers, too
};

}  // namespace kztns
