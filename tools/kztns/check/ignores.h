// The comments of a names file that keep findings from being reported:
//
//   # kztns: ignore RULE[, RULE]... [-- why]
//
// One holds for its own line; on a line of its own directly above an entry it holds for
// that entry.
#pragma once

#include <unordered_map>
#include <vector>

#include "check/findings.h"

namespace kztns {

// What such a comment begins with.
inline constexpr std::string_view ignore_mark = "kztns:";

class Ignores {
 public:
  explicit Ignores(const NamesText &text);

  // Whether no comment names a rule.
  bool empty() const { return by_line_.empty(); }

  // Reports what the comments name that is no rule.
  void report_unknown(Findings &findings) const;

  // Takes the findings out of a report that the comments are about. The report
  // lists the entries.
  void apply(CheckReport &report) const;

 private:
  using RulesOfLines = std::unordered_map<std::uint32_t, RuleSet>;

  // What a comment names that is no rule; nothing for one that names none.
  struct Unknown {
    Offset at;
    std::string_view word;
  };

  RuleSet read_rules(std::string_view list, Offset at);

  RulesOfLines by_line_;
  RulesOfLines by_line_of_entry_;
  std::vector<Unknown> unknown_;
};

}  // namespace kztns
