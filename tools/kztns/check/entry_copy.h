// The copy of one entry that is mended step by step, to find the faults after the first one.
#pragma once

#include <string_view>
#include <vector>

#include "check/checked_entry.h"
#include "rules/diagnosis.h"
#include "text/edited_text.h"
#include "text/names_text.h"
#include "trace/build_trace.h"

namespace kztns {

class EntryCopy {
 public:
  EntryCopy(const NamesText &text, const CheckedEntry &entry);

  const Trace &trace() const { return trace_; }
  const NamesText &text() const { return text_; }
  EntryRange range() const { return {body_, text_.size(), last_}; }
  std::string_view name() const { return name_; }

  // Edits of the whole text as those of the copy.
  std::vector<Edit> of_whole(std::vector<Edit> edits) const;
  // A diagnosis of the copy as one of the whole text.
  Diagnosis to_whole(Diagnosis found) const;

  void build();
  // Applies the edits and builds the copy; false for none, and for any outside of the entry.
  bool apply(const std::vector<Edit> &edits);
  // Takes the last edits back.
  void take_back();

 private:
  Offset base_;  // of the copy in the whole text
  Offset body_;
  std::string_view name_;
  bool last_;  // whether no entry comes after it
  EditedText edited_;
  EditedText before_ = edited_;  // the last edits
  NamesText text_;
  Trace trace_;
};

}  // namespace kztns
