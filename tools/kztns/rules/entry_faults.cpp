#include "rules/entry_faults.h"

#include <algorithm>

#include "rules/entry_warnings.h"
#include "scan/item_text.h"

namespace kztns {
namespace {

// An entry with more faults than that is no entry that anybody wrote.
constexpr int most_faults = 50;

Edit moved(Edit edit, Offset from, Offset to) {
  edit.begin = edit.begin - from + to;
  edit.end = edit.end - from + to;
  return edit;
}

// Whether the fault is the item's alone, so that the block is sound without it.
bool is_fault_of_item(FaultKind kind) {
  switch (kind) {
    case FaultKind::empty_block:
    case FaultKind::value_for_block:
    case FaultKind::missing_value:
    case FaultKind::block_for_value:
    case FaultKind::unknown_key:
    case FaultKind::misplaced_key:
    case FaultKind::not_description:
    case FaultKind::bad_protocol:
    case FaultKind::bad_word:
    case FaultKind::bad_number:
    case FaultKind::second_address:
    case FaultKind::second_connect_data:
      return true;
    default:
      return false;
  }
}

// What leaves the item at fault out; empty when it is not known where it ends.
std::vector<Edit> without_item(std::string_view text, const Trace &trace) {
  const Fault &fault = trace.fault();
  if (!is_fault_of_item(fault.kind) || fault.item < 0) return {};
  const std::optional<Span> item =
      item_to_remove(text, trace.items()[static_cast<std::size_t>(fault.item)].open);
  if (!item) return {};
  return {{item->begin, item->end, {}}};
}

// The copy of one entry that is mended step by step.
class EntryCopy {
 public:
  EntryCopy(const NamesText &text, const Entry &entry, std::string_view name, Offset end)
      : base_(entry.at),
        body_(entry.body - entry.at),
        name_(name),
        edited_(std::string_view(text.text()).substr(entry.at, end - entry.at), entry.at),
        text_(edited_, text),
        trace_(edited_.text()) {}

  const Trace &trace() const { return trace_; }
  const NamesText &text() const { return text_; }
  EntryRange range() const { return {body_, text_.size()}; }

  // Edits of the whole text as those of the copy.
  std::vector<Edit> of_whole(std::vector<Edit> edits) const {
    for (Edit &edit : edits) edit = moved(std::move(edit), base_, 0);
    return edits;
  }

  // Applies the edits and builds the copy; whether all of them were within the entry.
  bool apply(const std::vector<Edit> &edits) {
    for (const Edit &edit : edits)
      if (edit.begin < body_ || edit.end > edited_.text().size()) return false;
    edited_.apply(edits);
    build_entry(edited_.text(), body_, name_, trace_);
    return true;
  }

 private:
  Offset base_;
  Offset body_;
  std::string_view name_;
  EditedText edited_;
  NamesText text_;
  Trace trace_;
};

}  // namespace

Diagnosis EntryFaults::first_of(const EntryView &view) {
  range_ = ranges_.range_of(view.entry.body);
  return diagnose_entry({text_, "file"}, view.trace, range_, view.name);
}

void EntryFaults::report(const EntryView &view, Diagnosis first, const std::string &consequence) {
  const Severity severity = view.service == nullptr ? Severity::error : Severity::warning;
  const auto add = [&](Diagnosis found) {
    if (!findings_.wanted(found.rule, severity)) return;
    findings_.add({found.rule, found.at, view.name, std::move(found.path), std::move(found.text),
                   std::move(found.remedy), std::move(found.fix)},
                  severity);
  };
  EntryCopy copy(text_, view.entry, view.name, range_.end);
  bool complete = bool(first.fix);
  std::vector<Edit> edits =
      copy.of_whole(complete ? first.fix.edits : without_item(text_.text(), view.trace));
  first.text += consequence;
  add(std::move(first));

  const Findings::FromCopy from_copy(findings_, copy.text());
  for (int faults = 1; faults < most_faults && !edits.empty() && copy.apply(edits); ++faults) {
    if (copy.trace().fault().kind == FaultKind::none) {
      if (complete) report_entry_warnings(copy.trace(), view.name, findings_);
      break;
    }
    Diagnosis next = diagnose_entry({copy.text(), "file"}, copy.trace(), copy.range(), view.name);
    complete = complete && next.fix;
    edits = next.fix ? next.fix.edits : without_item(copy.text().text(), copy.trace());
    add(std::move(next));
  }
}

}  // namespace kztns
