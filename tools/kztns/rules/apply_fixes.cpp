#include "rules/apply_fixes.h"

#include <algorithm>
#include <map>

namespace kztns {
namespace {

// The parts of a text that edits change, by their beginnings.
class Changed {
 public:
  // Whether none of the edits changes what is changed already; if so, they do.
  bool add(const std::vector<Edit> &edits) {
    for (const Edit &edit : edits)
      if (!is_free(edit)) return false;
    for (const Edit &edit : edits) {
      Offset &end = parts_[edit.begin];
      end = std::max(end, edit.end);
    }
    return true;
  }

 private:
  bool is_free(const Edit &edit) const {
    const auto after = parts_.upper_bound(edit.begin);
    if (after != parts_.end() && after->first < edit.end) return false;
    if (after == parts_.begin()) return true;
    const auto &[begin, end] = *std::prev(after);
    return edit.begin >= end || (edit.begin == edit.end && edit.begin == begin);
  }

  std::map<Offset, Offset> parts_;
};

}  // namespace

std::vector<Edit> edits_of(const std::vector<Finding> &findings, bool with_unsafe,
                           std::vector<bool> *applied) {
  Changed changed;
  std::vector<Edit> edits;
  if (applied != nullptr) applied->assign(findings.size(), false);
  for (std::size_t i = 0; i < findings.size(); ++i) {
    const Fix &fix = findings[i].fix;
    const bool wanted = fix.applicability == Applicability::safe ||
                        (with_unsafe && fix.applicability == Applicability::unsafe);
    if (!wanted || !changed.add(fix.edits)) continue;
    edits.insert(edits.end(), fix.edits.begin(), fix.edits.end());
    if (applied != nullptr) (*applied)[i] = true;
  }
  sort_edits(edits);
  return edits;
}

}  // namespace kztns
