// The conflicts that version control marks in a text: which of the two versions between the
// markers counts is not decided yet, so nothing is mended there.
#pragma once

#include <string_view>
#include <vector>

#include "check/findings.h"

namespace kztns {

class Conflicts {
 public:
  // From the line of the first marker to the end of the line of the last one.
  struct Conflict {
    Offset begin;
    Offset end;
  };

  explicit Conflicts(std::string_view text);

  const std::vector<Conflict> &all() const { return all_; }
  // The first one that a part of the text touches; null for none.
  const Conflict *touched_by(Offset begin, Offset end) const;
  // Whether a place is in the line of a marker.
  bool is_in_marker(Offset at) const;

 private:
  void add_marker(char sign, Offset begin, Offset end);

  std::vector<Conflict> all_;
  std::vector<Conflict> markers_;  // the lines of those of all conflicts
  bool open_ = false;              // whether the end of the last one is to come
};

// Reports each conflict instead of what is said of its markers, and takes away the fixes of
// what is in it, and those that would change it.
void report_conflicts(const NamesText &text, Findings &findings, CheckReport &report);

}  // namespace kztns
