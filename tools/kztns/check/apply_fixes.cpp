#include "check/apply_fixes.h"

#include <algorithm>
#include <map>

namespace kztns {
namespace {

bool copies(const Fix &fix) {
  return std::any_of(fix.edits.begin(), fix.edits.end(),
                     [](const Edit &edit) { return edit.copy_of.has_value(); });
}

bool begins_comment(const Edit &edit) { return edit.text.starts_with('#'); }

// The parts of a text that edits change, by their beginnings.
class Changed {
 public:
  // Whether none of the edits changes what is changed already; if so, they do.
  bool add(const Fix &fix) {
    const bool by_copy = copies(fix);
    if (overlap(fix.edits)) return false;
    for (const Edit &edit : fix.edits)
      if (!is_free(edit, by_copy)) return false;
    for (const Edit &edit : fix.edits) {
      Part &part = parts_[edit.begin];
      part.end = std::max(part.end, edit.end);
      part.by_copy = part.by_copy || by_copy;
      part.comments = part.comments || begins_comment(edit);
    }
    return true;
  }

 private:
  struct Part {
    Offset end = 0;
    bool by_copy = false;   // a fix that copies changes it
    bool comments = false;  // a comment begins there
  };

  bool is_free(const Edit &edit, bool by_copy) const {
    const auto after = parts_.upper_bound(edit.begin);
    if (after != parts_.end() && after->first < edit.end) return false;
    if (after == parts_.begin()) return true;
    const auto &[begin, part] = *std::prev(after);
    // What is put where a copy is put might get into the copy, or before it. What begins a comment
    // would make one of what comes after removed text.
    if (edit.begin == begin && (by_copy || part.by_copy || begins_comment(edit) || part.comments))
      return false;
    return edit.begin >= part.end || (edit.begin == edit.end && edit.begin == begin);
  }

  std::map<Offset, Part> parts_;
};

// Appends an edit that is a copy as copies of what the other, sorted edits leave of it, with
// what they put there.
void add_edited_copy(const Edit &copy, const std::vector<Edit> &others, std::vector<Edit> &edits) {
  const Offset begin = *copy.copy_of;
  const Offset end = begin + static_cast<Offset>(copy.text.size());
  Offset from = begin;
  const auto copy_up_to = [&](Offset to) {
    edits.push_back({from == begin ? copy.begin : copy.end, copy.end,
                     copy.text.substr(from - begin, to - from), from});
  };
  const auto first =
      std::lower_bound(others.begin(), others.end(), begin,
                       [](const Edit &edit, Offset place) { return edit.begin < place; });
  for (auto edit = first; edit != others.end() && edit->begin < end; ++edit) {
    if (edit->end > end) continue;
    copy_up_to(edit->begin);
    if (!edit->text.empty()) edits.push_back({copy.end, copy.end, edit->text});
    from = edit->end;
  }
  copy_up_to(end);
}

}  // namespace

std::vector<Edit> edits_of(const std::vector<Finding> &findings, std::vector<bool> *applied) {
  return edits_of(
      findings, [](std::size_t) { return true; }, applied);
}

std::vector<Edit> edits_of(const std::vector<Finding> &findings,
                           const std::function<bool(std::size_t)> &is_wanted,
                           std::vector<bool> *applied) {
  Changed changed;
  std::vector<Edit> edits;
  std::vector<Edit> of_copies;  // of fixes that copy
  if (applied != nullptr) applied->assign(findings.size(), false);
  for (std::size_t i = 0; i < findings.size(); ++i) {
    const Fix &fix = findings[i].fix;
    if (!fix || !is_wanted(i) || !changed.add(fix)) continue;
    std::vector<Edit> &all = copies(fix) ? of_copies : edits;
    all.insert(all.end(), fix.edits.begin(), fix.edits.end());
    if (applied != nullptr) (*applied)[i] = true;
  }
  sort_edits(edits);
  const std::vector<Edit> others = edits;
  for (Edit &edit : of_copies) {
    if (edit.copy_of)
      add_edited_copy(edit, others, edits);
    else
      edits.push_back(std::move(edit));
  }
  sort_edits(edits);
  return edits;
}

}  // namespace kztns
