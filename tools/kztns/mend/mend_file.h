// Mends a file: applies the fixes of what check finds until none is left to apply. The
// library is the judge of each step: a name that it serves keeps its tree, unless a fix is about
// what is called so, or belongs to it (Concern::identity).
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "check/check_report.h"
#include "mend/served_names.h"
#include "text/edited_text.h"

namespace kztns {

struct MendRequest {
  std::string file;          // as the findings call it
  bool with_unsafe = false;  // whether to apply fixes that guess or give something up
  RuleSet disabled = {};     // rules whose fixes are not applied
  std::function<void(Offset)> progress = [](Offset) {};
};

// A finding that was mended, and what was done to the text.
struct MendedFinding {
  Finding finding;  // its position is that of the original
  std::string done;
};

class Mender {
 public:
  // The original must live on.
  Mender(const NamesText &original, MendRequest request);
  Mender(const Mender &) = delete;
  Mender &operator=(const Mender &) = delete;

  // Applies fixes until none helps. An entry that would be refused with them all the same
  // is left without those of its own faults. No fix is applied with which a name would be
  // lost, or that a comment of the file says to ignore.
  void apply_fixes();

  // Applies sorted edits unless a name would be lost; returns whether they were applied. The
  // names of the entries in exempt may change their trees.
  bool try_edits(std::vector<Edit> edits, const std::vector<Offset> &exempt = {});

  void add_mended(MendedFinding mended) { mended_.push_back(std::move(mended)); }

  // What stands there now; places are told as those of the original.
  const NamesText &text() const { return text_ ? *text_ : original_; }
  // The same with what became of the original; null as long as nothing is changed.
  const EditedText *edited() const { return edited_ ? &*edited_ : nullptr; }
  // What check finds in it.
  const CheckReport &report();

  const std::vector<MendedFinding> &mended() const { return mended_; }
  // To be called before each check of the text: whether there may be another one, which is counted.
  bool spend_check();
  // Whether the checks ran out before the fixes did.
  bool stopped() const { return stopped_; }
  // How often the text was changed.
  std::size_t steps() const { return steps_; }

  // Names that the result has to serve, with the trees that they have to have: all that
  // were served before, but for those whose own mending changed them.
  std::vector<ServedName> lost_in(const ServedNames &result) const;
  // Names that were not served before, or otherwise.
  std::vector<ServedName> new_in(const ServedNames &result) const;

 private:
  struct Trial;
  class Step;

  // What apply_fixes begins with.
  struct State {
    std::optional<EditedText> edited;
    std::size_t mended;
    std::size_t changed;
    std::size_t steps;
    bool deep;
  };

  State state() const;
  void go_back_to(const State &before);
  void apply_while_any_helps();
  void run_steps();
  // An entry, by where it begins in the original and its name: copies of one may begin where
  // another one does.
  using EntryId = std::pair<Offset, std::uint64_t>;
  EntryId id_of(Offset at) const;
  std::set<EntryId> changed_in_vain();
  // The findings in a text; served, when it is there, gets the names in it.
  CheckReport check(const NamesText &text, ServedNames *served) const;
  Trial try_out(std::vector<Edit> edits);
  void accept(Trial trial);
  Offset origin(Offset at) const;
  const ServedNames &served();
  void allow_to_lose(const ServedName &name) { changed_.push_back(name.name); }
  std::vector<Edit> with_line_ends(std::vector<Edit> edits) const;

  MendRequest request_;
  const NamesText &original_;
  std::optional<EditedText> edited_;  // absent as long as nothing is changed
  std::optional<NamesText> text_;     // of it
  std::optional<CheckReport> report_;
  std::optional<ServedNames> served_;         // in text_
  std::optional<ServedNames> served_before_;  // in the original
  std::vector<std::uint64_t> changed_;        // names that may lose their trees
  std::vector<MendedFinding> mended_;
  std::set<EntryId> mended_entries_;  // in which own faults were mended
  std::set<EntryId> left_alone_;      // those that stay as they are
  // How often a rule's findings were mended at a place of the original.
  std::map<std::pair<Rule, Offset>, int> times_mended_;
  bool crlf_;
  bool deep_ = false;  // whether checks come past what ends the lookups
  bool stopped_ = false;
  std::uint64_t checked_ = 0;
  std::size_t steps_ = 0;
};

}  // namespace kztns
