// Collects findings: with positions, source lines, and a limit for each rule.
#pragma once

#include "check/check_report.h"

namespace kztns {

// A finding as a rule reports it, before it gets its position and source line. An empty remedy
// means the rule's own.
struct NewFinding {
  Rule rule;
  Offset at;
  std::string_view entry;  // as in the file
  std::string path;
  std::string text;
  std::string remedy = {};
  Fix fix = {};
  std::optional<Offset> related = {};  // a place that the text speaks of
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

  // Counts a finding; whether it is to be added, too. Asking first saves making
  // texts that are invisible.
  bool wanted(Rule rule);
  bool wanted(Rule rule, Severity severity);

  // Adds a wanted finding.
  void add(NewFinding found);
  void add(NewFinding found, Severity severity);

  // Counts a finding, and adds it when it is wanted.
  void add_if_wanted(Rule rule, Offset at, std::string_view entry, std::string text, Fix fix = {},
                     std::string remedy = {});

  // Appends words to the text of a finding that was added, when it is there.
  void append(Rule rule, Offset at, std::string_view words);

 private:
  Offset in_text(Offset at) const { return copy_ == nullptr ? at : copy_->origin(at); }

  const NamesText &text_;
  const NamesText *copy_ = nullptr;
  std::size_t most_;
  CheckReport &report_;
  std::array<std::size_t, rule_count> counts_ = {};
};

// Puts findings in the order of the file.
void sort(std::vector<Finding> &findings);

}  // namespace kztns
