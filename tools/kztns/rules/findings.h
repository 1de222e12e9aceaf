// Collects findings: with positions, source lines, and a limit for each rule.
#pragma once

#include "rules/check_report.h"

namespace kztns {

// A finding on its way. An empty remedy means the rule's own.
struct NewFinding {
  Rule rule;
  Offset at;
  std::string_view entry;  // as in the file
  std::string path;
  std::string text;
  std::string remedy = {};
};

class Findings {
 public:
  // More findings of one rule are counted only.
  static constexpr std::size_t most_of_a_rule = 1000;

  Findings(const NamesText &text, CheckReport &report) : text_(text), report_(report) {}

  // Counts a finding; whether it is to be added, too. Asking first saves making
  // texts that are invisible.
  bool wanted(Rule rule);
  bool wanted(Rule rule, Severity severity);

  // Adds a wanted finding.
  void add(NewFinding found);
  void add(NewFinding found, Severity severity);

  // Puts the findings in the order of the file.
  void sort();

 private:
  const NamesText &text_;
  CheckReport &report_;
  std::array<std::size_t, rule_count> counts_ = {};
};

}  // namespace kztns
