#include "text/original_edits.h"

namespace kztns {

// What lies between kept parts was replaced by what lies between them now.
std::vector<Edit> original_edits(const EditedText &edited, Offset size_before) {
  const std::string &text = edited.text();
  std::vector<Edit> edits;
  Offset from_before = 0;
  Offset from = 0;
  const auto add = [&](Offset to_before, Offset to) {
    if (to_before > from_before || to > from)
      edits.push_back({from_before, to_before, text.substr(from, to - from)});
  };
  for (const EditedText::Kept &kept : edited.kept()) {
    // What was moved is not where it was.
    if (kept.origin < from_before) continue;
    add(kept.origin, kept.at);
    from_before = kept.origin + kept.length;
    from = kept.at + kept.length;
  }
  add(size_before, static_cast<Offset>(text.size()));
  return edits;
}

}  // namespace kztns
