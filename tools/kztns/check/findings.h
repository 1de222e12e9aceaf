// Collects findings: with positions, source lines, and a limit for each rule.
#pragma once

#include <concepts>
#include <set>
#include <utility>

#include "check/check_report.h"

namespace kztns {

// A finding as a rule reports it, before it gets its position and source line. An empty remedy
// means the rule's own.
struct NewFinding {
  Offset at;
  std::string_view entry = {};  // as in the file
  std::string path = {};
  std::string text;
  std::string remedy = {};
  Fix fix = {};
  std::optional<Offset> related = {};  // a place that the text speaks of
  bool in_entry = false;               // see Finding
};

class Findings {
 public:
  // More findings of one rule are counted only, as a rule.
  static constexpr std::size_t most_of_a_rule = 1000;

  Findings(const NamesText &text, std::size_t most, CheckReport &report)
      : text_(text), most_(most), report_(report) {}

  // For its life, the findings that are added are about a copy of the text.
  class FromCopy {
   public:
    FromCopy(Findings &findings, const NamesText &copy) : findings_(findings) {
      findings_.copy_ = &copy;
    }
    ~FromCopy() { findings_.copy_ = nullptr; }
    FromCopy(const FromCopy &) = delete;
    FromCopy &operator=(const FromCopy &) = delete;

   private:
    Findings &findings_;
  };

  // A place as messages give it.
  std::string place(Offset at) const { return text_.place(in_text(at)); }

  // Adds a finding; beyond the limit it is counted only.
  void add(Rule rule, Severity severity, NewFinding found) {
    if (count(rule, severity)) keep(rule, severity, std::move(found));
  }
  void add(Rule rule, NewFinding found) { add(rule, row_of(rule).severity, std::move(found)); }

  // The same of what a function makes: texts that are not shown are not made, either.
  template <std::invocable Make>
  void add(Rule rule, Severity severity, const Make &make) {
    if (count(rule, severity)) keep(rule, severity, make());
  }
  template <std::invocable Make>
  void add(Rule rule, const Make &make) {
    add(rule, row_of(rule).severity, make);
  }

  // Whether a rule is told of at a place already.
  bool has(Rule rule, Offset at) const { return places_.count({rule, at}) > 0; }

  // Appends words to the text of a finding that was added, when it is there.
  void append(Rule rule, Offset at, std::string_view words);

 private:
  // Whether the finding is within the limit.
  bool count(Rule rule, Severity severity);
  void keep(Rule rule, Severity severity, NewFinding found);
  Offset in_text(Offset at) const { return copy_ == nullptr ? at : copy_->origin(at); }

  const NamesText &text_;
  const NamesText *copy_ = nullptr;
  std::size_t most_;
  CheckReport &report_;
  std::array<std::size_t, rule_count> counts_ = {};
  std::set<std::pair<Rule, Offset>> places_;
};

// Puts findings in the order of the file.
void sort(std::vector<Finding> &findings);

}  // namespace kztns
