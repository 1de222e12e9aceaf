#include "check/entry_faults.h"

#include <algorithm>
#include <utility>

#include "check/entry_copy.h"
#include "check/entry_warnings.h"
#include "fixes/file_fixes.h"
#include "fixes/fixes.h"
#include "fixes/moved_entries.h"
#include "scan/item_text.h"
#include "scan/left_over.h"
#include "scan/line_prefixes.h"
#include "scan/tokens.h"
#include "scan/written_entries.h"
#include "text/spelling.h"
#include "text/words.h"

namespace kztns {
namespace {

// Bounds the work on an entry that was made for it.
constexpr int most_faults = 50;

// Whether the fault is the item's alone, so that the block is sound without it.
bool is_fault_of_item(FaultKind kind) {
  switch (kind) {
    case FaultKind::empty_block:
    case FaultKind::value_for_block:
    case FaultKind::missing_equal:
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
  const Offset open = trace.items()[static_cast<std::size_t>(fault.item)].open;
  if (open >= text.size()) return {};
  const std::optional<Span> item = item_to_remove(text, open);
  if (!item) return {};
  return {{item->begin, item->end, {}}};
}

// Whether the entry goes on with other items after the fault.
bool has_rest(std::string_view text, const Fault &fault) {
  return text.find('(', fault.at) != std::string_view::npos;
}

// A fault that was found in a copy, and how to get past it there.
struct Found {
  Diagnosis told;  // with places of the whole text
  std::vector<Edit> fix;
  std::vector<Edit> removal;  // of the item, where there is no fix
  bool rest;                  // whether other items come after it
};

// The first fault of the copy, as it is now.
Found found_in(const EntryCopy &copy, const Subject &subject) {
  Diagnosis diagnosis = diagnose_entry(subject, copy.trace(), copy.range(), copy.name());
  std::vector<Edit> fix = diagnosis.fix.edits;
  return {copy.to_whole(std::move(diagnosis)), std::move(fix),
          without_item(copy.text().text(), copy.trace()),
          has_rest(copy.text().text(), copy.trace().fault())};
}

// What the library does not read as parentheses do not balance either where a comment or
// quotes hide them.
bool is_about_hidden_text(Rule rule) {
  return rule == Rule::comment_in_value || rule == Rule::unclosed_quote || rule == Rule::key_cut ||
         rule == Rule::key_refused || rule == Rule::quoted_entry;
}

// Where an entry's text ends, without the comments after it.
Offset end_of_tokens(std::string_view text, EntryRange range) {
  Offset end = range.body;
  TokenReader tokens(text.substr(0, range.end), range.body);
  for (Token token = tokens.next(); token.kind != TokenKind::end; token = tokens.next())
    end = token.span.end;
  return end;
}

// The ")" that is missing may be in a comment, which lookups count when they pass over the entry.
void add_fix_of_comments(const NamesText &text, EntryRange range, Fix &fix) {
  Fix comments = fix_of_comments(text.text(), range.body, end_of_tokens(text.text(), range));
  for (Edit &edit : comments.edits) fix.edits.push_back(std::move(edit));
  sort_edits(fix.edits);
}

// Whether a fix closes an entry after all of its text.
bool ends_where_closed(std::string_view text, EntryRange range, const Fix &fix) {
  const Offset end = end_of_tokens(text, range);
  return std::any_of(fix.edits.begin(), fix.edits.end(),
                     [&](const Edit &edit) { return edit.text == ")" && edit.begin == end; });
}

// After the "=" of an entry of a name that begins at a place; absent where something else does.
std::optional<Offset> body_of_name(std::string_view text, Offset at, std::string_view name) {
  if (!text.substr(at).starts_with(name)) return std::nullopt;
  const Offset equal = pass_blanks(text, at + static_cast<Offset>(name.size()));
  return equal < text.size() && text[equal] == '=' ? std::optional(equal + 1) : std::nullopt;
}

// Whether an entry of a name begins at a place, and is built.
bool is_entry_of(const std::string &text, Offset at, std::string_view name) {
  const auto body = body_of_name(text, at, name);
  bool built = false;
  if (body) with_service(text, *body, name, [&](KZCITnsService &) { built = true; });
  return built;
}

bool is_same(const Diagnosis &left, const Diagnosis &right) {
  return left.rule == right.rule && left.at == right.at;
}

}  // namespace

Diagnosis diagnose_entry(const Subject &subject, const Trace &trace, EntryRange range,
                         std::string_view name) {
  Diagnosis diagnosis = diagnose_with_fix(subject, trace, name);
  if (is_about_hidden_text(diagnosis.rule)) return diagnosis;
  auto fault = find_parenthesis_fault(subject, range, name);
  if (!fault) return diagnosis;
  if (fault->rule == Rule::unclosed_block) add_fix_of_comments(subject.text, range, fault->fix);
  return *std::move(fault);
}

Diagnosis EntryFaults::first_of(const CheckedEntry &checked) {
  return diagnose_entry(subject(checked, text_, "file", checked.range().end), checked.trace,
                        checked.range(), checked.name);
}

std::optional<Span> EntryFaults::report(const CheckedEntry &checked, const Diagnosis &first,
                                        const std::string &consequence) {
  if (Mending begun = mend_begun(checked, first); begun.fix) {
    report_whole(checked, first, begun.remedy, std::move(begun.fix), consequence);
    return std::nullopt;
  }
  if (Fix fix = without_line_signs(checked, first)) {
    report_whole(checked, first,
                 "remove the " + quoted(checked.name.substr(0, 1)) + " before its lines",
                 std::move(fix), consequence);
    return std::nullopt;
  }
  const auto rest = report_inserted(checked, first, consequence);
  if (!rest) report_each(checked, first, consequence);
  return rest;
}

void EntryFaults::report_each(const CheckedEntry &checked, const Diagnosis &first,
                              const std::string &consequence) {
  const bool built = checked.service != nullptr;
  const Severity severity = built ? Severity::warning : Severity::error;
  EntryCopy copy(text_, checked);
  const std::string_view text = std::string_view(text_.text()).substr(0, checked.range().end);
  std::optional<Found> found = {{first, copy.of_whole(first.fix.edits),
                                 copy.of_whole(without_item(text, checked.trace)),
                                 has_rest(text, checked.trace.fault())}};
  found->told.text += consequence;

  std::optional<Found> next;
  // Whether edits lead to another fault, next, or to none; if not, they are taken back.
  const auto get_past = [&](const std::vector<Edit> &edits) {
    if (!copy.apply(edits)) return false;
    next.reset();
    if (copy.trace().fault().kind == FaultKind::none) return true;
    next = found_in(copy, subject(checked, copy.text(), "entry", copy.text().size()));
    if (!is_same(next->told, found->told)) return true;
    copy.take_back();
    return false;
  };
  bool complete = true;
  for (int faults = 1; found && faults <= most_faults; ++faults) {
    Found &fault = *found;
    const bool helps = get_past(fault.fix);
    const bool goes_on = helps || get_past(fault.removal);
    complete = complete && helps;
    if (!helps || built) fault.told.fix = {};
    if (!goes_on && fault.rest) fault.told.text += rest_is_unchecked;
    add(checked.name, severity, std::move(fault.told));
    if (!goes_on) return;
    found = std::exchange(next, std::nullopt);
  }
  if (built || copy.trace().fault().kind != FaultKind::none) return;
  const Findings::FromCopy from_copy(findings_, copy.text());
  report_entry_warnings(copy.trace(), checked.name, findings_, complete);
}

std::optional<Offset> EntryFaults::report_alone(const CheckedEntry &checked) {
  EntryCopy copy(text_, checked);
  copy.build();
  if (copy.trace().fault().kind == FaultKind::none) return std::nullopt;
  Found found = found_in(copy, subject(checked, copy.text(), "entry", copy.text().size()));
  const Offset at = found.told.at;
  add(checked.name, Severity::error, std::move(found.told));
  return at;
}

// Of an entry that was only begun; none for others.
Mending EntryFaults::mend_begun(const CheckedEntry &checked, const Diagnosis &first) const {
  const std::string &text = text_.text();
  if (checked.service != nullptr || checked.name.empty() || checked.entry.in_list) return {};
  const Offset begin = checked.entry.at;
  const Offset end = checked.range().end;
  const bool has_range = checked.range().body < end || end == text.size();
  if (first.rule == Rule::no_block && has_range && pass_blanks(text, checked.entry.body) >= end) {
    const std::string_view line = std::string_view(text).substr(begin, end - begin);
    if (body_of_name(text, end, checked.name) && line.find('#') == line.npos)
      return {safe_fix({{begin, end, {}}}), "remove one of the two"};
    return {fix_of_lines(text, begin, end), "give it a block, or remove its line"};
  }
  // Closed, it would be found instead of the other one.
  if (first.rule == Rule::unclosed_block && ends_where_closed(text, checked.range(), first.fix) &&
      is_entry_of(text, end, checked.name))
    return {fix_of_lines(text, begin, end), "remove its lines: another entry of the name follows"};
  return {};
}

// Of an entry from a quoted mail or a diff; none for others.
Fix EntryFaults::without_line_signs(const CheckedEntry &checked, const Diagnosis &first) const {
  const std::string &text = text_.text();
  if (checked.service != nullptr || checked.entry.in_list || first.at >= checked.range().end ||
      text[first.at] != text[checked.entry.at])
    return {};
  std::vector<Edit> edits;
  for (const Span sign : line_signs(text, checked.entry.at, checked.range().end))
    edits.push_back({sign.begin, sign.end, {}});
  return edits.size() > 1 ? unsafe_fix(std::move(edits)) : Fix();
}

// Another entry was pasted between two items of this one.
std::optional<Span> EntryFaults::report_inserted(const CheckedEntry &checked,
                                                 const Diagnosis &first,
                                                 const std::string &consequence) {
  const std::string &text = text_.text();
  const Offset cut = checked.range().end;
  if (checked.service != nullptr || first.rule != Rule::unclosed_block || cut >= text.size())
    return std::nullopt;
  const Offset equal = pass_blanks(text, end_of_word(text, cut));
  if (equal >= text.size() || text[equal] != '=') return std::nullopt;  // a list of names
  const Offset inner = equal + 1;
  const auto found =
      find_inserted(text, {checked.entry.body, cut}, {inner, ranges_.range_of(inner).end});
  Fix fix = found ? move_out(text_, *found) : Fix();
  if (!fix) return std::nullopt;
  inserted_.insert(cut);
  report_whole(checked, first,
               "move the entry at " + text_.place(cut) + " after this one, which ends at " +
                   text_.place(found->rest_end),
               std::move(fix), consequence);
  return Span{found->entry.end, found->rest_end};
}

void EntryFaults::report_whole(const CheckedEntry &checked, Diagnosis told, std::string_view remedy,
                               Fix fix, const std::string &consequence) {
  told.text += consequence;
  told.remedy = remedy;
  told.fix = std::move(fix);
  add(checked.name, Severity::error, std::move(told));
}

Subject EntryFaults::subject(const CheckedEntry &checked, const NamesText &text,
                             std::string_view noun, Offset end) {
  // Each of several names gets its own entry first, and then those of its descriptions.
  Subject subject = {text, noun, end, checked.range().last && !checked.entry.in_list};
  if (!checked.entry.in_list)
    subject.is_free = [this](std::string_view name) { return is_free(name); };
  return subject;
}

void EntryFaults::add(std::string_view entry, Severity severity, Diagnosis found) {
  if (found.rule == Rule::ifile) entry = {};  // that is no name
  findings_.add(found.rule, severity,
                {.at = found.at,
                 .entry = entry,
                 .path = std::move(found.path),
                 .text = std::move(found.text),
                 .remedy = std::move(found.remedy),
                 .fix = std::move(found.fix),
                 .in_entry = true});
}

// A name that differs in capitals and small letters only would be taken for the other one.
bool EntryFaults::is_free(std::string_view name) {
  const auto folded = [](std::string_view written) {
    std::string word(written);
    std::transform(word.begin(), word.end(), word.begin(), lower_case);
    return word;
  };
  const std::string_view text = text_.text();
  if (names_.empty())
    for_each_written_entry(text, [&](const WrittenEntry &written) {
      names_.insert(folded(text.substr(written.name_begin, written.name_end - written.name_begin)));
    });
  return names_.count(folded(name)) == 0;
}

}  // namespace kztns
