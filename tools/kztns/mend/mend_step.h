// One step of mending: the fixes of the current findings, less those that do not help.
#pragma once

#include <map>
#include <set>
#include <vector>

#include "mend/mend_file.h"

namespace kztns {

// The text with some edits, and what the library makes of it.
struct Mender::Trial {
  explicit Trial(const EditedText &before) : edited(before), step(before.text()) {}

  EditedText edited;
  EditedText step;                 // tells places of the text before the edits
  std::vector<bool> applied = {};  // which findings of a step are those of the edits
  CheckReport report = {};
  ServedNames served = {};
};

// The fixes of an entry's own faults are a unit, applied together or not at all; any other
// fix is one alone.
class Mender::Step {
 public:
  // Which fixes are tried.
  enum class Choice : unsigned char {
    first,  // those of what may be why other things are found
    all
  };

  Step(Mender &mender, Choice choice);
  Step(const Step &) = delete;
  Step &operator=(const Step &) = delete;

  // Applies what can be applied; returns whether anything was.
  bool run();

 private:
  using Units = std::set<std::size_t>;

  struct Unit {
    std::size_t entry;  // as ServedNames counts them
    bool of_entry;      // of its own faults
    bool unsafe = false;
    std::vector<std::size_t> findings = {};
  };

  // How much is wrong in an entry; to have fewer errors is better than fewer findings.
  struct Faults {
    std::size_t errors = 0;
    std::size_t findings = 0;

    auto operator<=>(const Faults &) const = default;
    void count(const Finding &finding);
  };

  // What a trial makes better.
  struct Gain {
    std::map<std::size_t, Faults> before;  // of entries
    std::map<std::size_t, Faults> after;   // of the same ones
    Units better;                          // entries with a name that is newly served
    // The findings that are left, with digests of their texts.
    std::map<std::pair<Rule, Offset>, std::uint64_t> left;
  };

  // Findings by their numbers. The entry of one; absent for none.
  std::optional<EntryId> id_of_entry(std::size_t finding) const;
  bool is_mended_in_vain(const Finding &finding) const;
  bool is_wanted(std::size_t i) const;
  void make_units();
  Trial try_out(const Units &units);
  // The units of which the fixes are taken back.
  Units blamed(const Trial &trial, const Units &open);
  // Whether a name, or an entry that is built, is lost without a unit to blame.
  bool blame_for_losses(const Trial &trial, const Units &open, Units &bad) const;
  // The units of an entry: the unsafe ones, if there are any.
  Units to_blame_in(std::size_t entry, const Units &open) const;
  // Whether a fix of a trial may change what an entry serves.
  bool may_change(std::size_t entry, const Trial &trial) const;
  // Adds the halves of some units to the harmless ones as long as no name is lost.
  void divide(const std::vector<std::size_t> &units, Units &harmless);
  Gain gain_of(const Trial &trial) const;
  bool helps(const Unit &unit, const Trial &trial, const Gain &gain) const;
  // Whether a fix mends its finding, or lookups come further in spite of it.
  bool gets_further(std::size_t i, const Trial &trial, const Gain &gain) const;
  void take(Trial trial);

  Mender &mender_;
  const CheckReport &report_;
  Choice choice_;
  std::vector<std::size_t> entries_;  // of the findings
  std::vector<Unit> units_;
};

}  // namespace kztns
