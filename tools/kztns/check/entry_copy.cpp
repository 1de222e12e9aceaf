#include "check/entry_copy.h"

#include <utility>

namespace kztns {

EntryCopy::EntryCopy(const NamesText &text, const CheckedEntry &entry)
    : base_(entry.entry.at),
      body_(entry.entry.body - base_),
      name_(entry.name),
      last_(entry.range().last),
      edited_(std::string_view(text.text()).substr(base_, entry.range().end - base_), base_),
      text_(edited_, text),
      trace_(edited_.text()) {}

std::vector<Edit> EntryCopy::of_whole(std::vector<Edit> edits) const {
  for (Edit &edit : edits) {
    edit.begin -= base_;
    edit.end -= base_;
  }
  return edits;
}

Diagnosis EntryCopy::to_whole(Diagnosis found) const {
  found.at = edited_.origin(found.at);
  found.fix.to_origin(edited_);
  return found;
}

void EntryCopy::build() { build_entry(edited_.text(), body_, name_, trace_); }

bool EntryCopy::apply(const std::vector<Edit> &edits) {
  if (edits.empty()) return false;
  for (const Edit &edit : edits)
    if (edit.begin < body_ || edit.end > edited_.text().size()) return false;
  before_ = edited_;
  edited_.apply(edits);
  build();
  return true;
}

void EntryCopy::take_back() {
  edited_ = before_;
  build();
}

}  // namespace kztns
