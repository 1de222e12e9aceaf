#include "text/edited_text.h"

#include <algorithm>

namespace kztns {

void sort_edits(std::vector<Edit> &edits) {
  std::stable_sort(edits.begin(), edits.end(), [](const Edit &left, const Edit &right) {
    return left.begin != right.begin ? left.begin < right.begin : left.end < right.end;
  });
}

bool overlap(const std::vector<Edit> &edits) {
  for (std::size_t i = 1; i < edits.size(); ++i)
    if (edits[i].begin < edits[i - 1].end) return true;
  return false;
}

EditedText::EditedText(std::string_view part, Offset at)
    : text_(part), end_(at + static_cast<Offset>(part.size())) {
  if (!part.empty()) kept_.push_back({0, at, static_cast<Offset>(part.size())});
}

void EditedText::apply(const std::vector<Edit> &edits) {
  std::string text;
  std::vector<Kept> before;
  before.swap(kept_);
  std::size_t next = 0;
  Offset from = 0;
  for (const Edit &edit : edits) {
    keep(from, edit.begin, before, next, text);
    if (edit.copy_of)
      copy(edit, before, text);
    else
      text += edit.text;
    from = edit.end;
  }
  keep(from, static_cast<Offset>(text_.size()), before, next, text);
  text_ = std::move(text);
}

// Appends a part of the text to the new one; next is the first part before that may
// be in it.
void EditedText::keep(Offset begin, Offset end, const std::vector<Kept> &before, std::size_t &next,
                      std::string &text) {
  for (; next < before.size() && before[next].at < end; ++next) {
    const Kept &part = before[next];
    const Offset part_end = part.at + part.length;
    const Offset first = std::max(begin, part.at);
    const Offset last = std::min(end, part_end);
    if (first < last)
      kept_.push_back({static_cast<Offset>(text.size()) + (first - begin),
                       part.origin + (first - part.at), last - first});
    if (part_end > end) break;
  }
  text.append(text_, begin, end - begin);
}

void EditedText::copy(const Edit &edit, const std::vector<Kept> &before, std::string &text) {
  const auto after =
      std::upper_bound(before.begin(), before.end(), *edit.copy_of,
                       [](Offset place, const Kept &part) { return place < part.at; });
  auto next = static_cast<std::size_t>(after - before.begin());
  if (next > 0) --next;
  keep(*edit.copy_of, *edit.copy_of + static_cast<Offset>(edit.text.size()), before, next, text);
}

Offset EditedText::origin(Offset at) const {
  const Kept *const part = part_at(at);
  if (part != nullptr && at < part->at + part->length) return part->origin + (at - part->at);
  const std::size_t next = part == nullptr ? 0 : static_cast<std::size_t>(part - kept_.data()) + 1;
  return next == kept_.size() ? end_ : kept_[next].origin;
}

const EditedText::Kept *EditedText::part_at(Offset at) const {
  const auto after =
      std::upper_bound(kept_.begin(), kept_.end(), at,
                       [](Offset place, const Kept &part) { return place < part.at; });
  return after == kept_.begin() ? nullptr : &*std::prev(after);
}

std::vector<Edit> EditedText::to_origin(const Edit &edit) const {
  if (edit.begin == text_.size() && edit.begin == edit.end) return {{end_, end_, edit.text}};
  std::vector<Edit> edits;
  const Kept *part = part_at(edit.begin);
  for (Offset at = edit.begin; at < edit.end || edits.empty(); ++part) {
    const bool kept = part != nullptr && part != kept_.data() + kept_.size() && part->at <= at &&
                      at < part->at + part->length;
    if (!kept) return {};
    const Offset end = std::min(edit.end, part->at + part->length);
    const Offset begin = part->origin + (at - part->at);
    if (!edits.empty() && begin < edits.back().end) return {};
    edits.push_back({begin, begin + (end - at), edits.empty() ? edit.text : std::string()});
    at = end;
  }
  return edits;
}

}  // namespace kztns
