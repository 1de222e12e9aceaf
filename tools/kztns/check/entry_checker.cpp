#include "check/entry_checker.h"

#include <utility>

#include "check/entry_warnings.h"
#include "fixes/file_fixes.h"
#include "kzoci/oci_tnsname/reserved_entry.h"
#include "rules/parentheses.h"
#include "scan/half_comment.h"
#include "scan/item_text.h"
#include "scan/item_words.h"
#include "scan/left_over.h"
#include "scan/skip_mismatches.h"
#include "scan/stray_text.h"
#include "text/words.h"

namespace kztns {
namespace {

// Whether nothing but an address stands from a place to the end of a text.
bool is_address_alone(std::string_view text, Offset open) {
  return key_after(text, open).type == LB_ADDRESS && end_of_item(text, open) == text.size();
}

// Whether a ")" comes after a place.
bool is_close_after(std::string_view text, Offset at) {
  const Offset next = pass_blanks(text, at);
  return next < text.size() && text[next] == ')';
}

bool is_item_of_description(std::string_view text, Offset open) {
  return placement_of(key_after(text, open), content_of(Block::description)).fit == Fit::good;
}

}  // namespace

void EntryChecker::visit(const EntryView &view) {
  if (request_.visit) request_.visit(view);
  if (utf_16_) return;
  if (view.service == nullptr && view.trace.is_system_variables() &&
      view.name != kzoci::tns::reserved_name)
    return;  // the name is to blame
  const CheckedEntry checked(view, ranges_);
  if (checked.service != nullptr) report_block_of_other(checked);
  if (is_told_already(checked) || report_half_comment(checked) || report_left_over(checked) ||
      report_nameless(checked) || report_read_on(checked))
    return;
  if (view.trace.fault().kind != FaultKind::none) report_fault(checked);
  if (view.service != nullptr || view.trace.fault().kind == FaultKind::none)
    report_entry_warnings(view.trace, view.name, findings_);
}

bool EntryChecker::is_told_already(const CheckedEntry &checked) {
  const bool comment = checked.stop != nullptr && checked.stop->kind == StopKind::no_open &&
                       is_foreign_comment(checked.name);
  if (faults_.is_inserted(checked.entry.at)) return true;
  if (!checked.entry.in_list) return comment;
  return std::exchange(list_, checked.entry.body) == checked.entry.body;
}

bool EntryChecker::ends_lookups_too(const CheckedEntry &checked) const {
  if (checked.stop == nullptr) return false;
  return checked.stop->kind == StopKind::no_open ||
         (checked.stop->kind == StopKind::never_balanced &&
          !end_if_led_astray(text_.text(), checked.entry.body, checked.range().end));
}

std::optional<Span> EntryChecker::loose_items(const CheckedEntry &checked,
                                              const Diagnosis &first_fault) const {
  if (checked.service != nullptr) return std::nullopt;
  const std::string_view text = std::string_view(text_.text()).substr(0, checked.range().end);
  const auto first = end_of_first_block(text, checked.entry.body);
  if (!first) return std::nullopt;
  const Offset next = pass_blanks(text, *first);
  const bool is_fault = first_fault.fix && first_fault.at == pass_blanks(text, next + 1);
  if (!is_fault && !is_item_of_description(text, next)) return std::nullopt;
  const auto end = end_of_items(text, checked.entry.body);
  return end && !end_if_led_astray(text, checked.entry.body, *end)
             ? std::optional<Span>({checked.entry.body, *end})
             : std::nullopt;
}

bool EntryChecker::loses_next_name(const CheckedEntry &checked, const Diagnosis &diagnosis) const {
  if (!closes_early(diagnosis.rule) || !checked.entry.reached || checked.stop != nullptr)
    return false;
  const auto met = no_name_after(text_.text(), checked.entry.body);
  return met && diagnosis.at <= *met;
}

void EntryChecker::report_fault(const CheckedEntry &checked) {
  const Diagnosis first = faults_.first_of(checked);
  std::string consequence_of_first;
  const std::optional<Span> loose = loose_items(checked, first);
  if (loose) told_ranges_.push_back(*loose);
  const bool met_loose = loose && checked.entry.reached && checked.stop == nullptr;
  if (ends_lookups_too(checked) || loses_next_name(checked, first) || met_loose) {
    reported_stop_ = {first.rule, first.at, first.text};
    consequence_of_first = consequence(checked.stop);
  }
  if (closes_early(first.rule)) told_ranges_.push_back({first.at, checked.range().end});
  if (const auto rest = faults_.report(checked, first, consequence_of_first))
    told_ranges_.push_back(*rest);
}

bool EntryChecker::report_half_comment(const CheckedEntry &checked) {
  if (checked.trace.is_system_variables()) return false;  // which has items without a block
  const bool built = checked.service != nullptr;
  const Offset limit = built ? checked.entry.end : checked.range().end;
  const auto half = find_half_comment(text_.text(), checked.entry.body, limit);
  if (!half) return false;
  const EntryRange range = checked.range();
  const auto end = end_of_rest(std::string_view(text_.text()).substr(0, range.end), half->rest);
  const std::string_view name =
      std::string_view(text_.text()).substr(half->name.begin, half->name.end - half->name.begin);
  NewFinding found = {half->rest,
                      checked.name,
                      {},
                      "read as part of this entry: the name of the block, " +
                          quoted(excerpt(name)) + ", is in a comment at " +
                          findings_.place(half->name.begin)};
  if (half->joined) {
    found.remedy = "begin a line with the name";
    if (faults_.is_free(name)) found.fix = fix_of_joined_name(text_.text(), half->name.begin);
  } else if (end) {
    found.fix = fix_of_lines(text_.text(), half->rest, *end);
  }
  found.related = half->name.begin;
  told_ranges_.push_back({half->comment, end.value_or(range.end)});
  report_rest(checked, Rule::half_comment,
              built && range.last ? Severity::warning : Severity::error, std::move(found));
  return true;
}

void EntryChecker::report_block_of_other(const CheckedEntry &checked) {
  const std::string_view text = text_.text();
  const auto name = commented_name_of_block(text, checked.entry.body, checked.entry.end);
  if (!name) return;
  const std::string_view word = text.substr(name->begin, name->end - name->begin);
  findings_.add(
      Rule::half_comment, Severity::warning,
      {.at = checked.entry.at,
       .entry = checked.name,
       .text = "the name before the block is " + quoted(excerpt(word)) + ", in a comment at " +
               findings_.place(name->begin) + ", after another block that is commented out",
       .remedy = "uncomment the name, or the block that belongs to this one",
       .related = name->begin});
}

bool EntryChecker::report_left_over(const CheckedEntry &checked) {
  if (checked.trace.is_system_variables()) return false;
  const bool built = checked.service != nullptr;
  // What is built ends where a lookup ends it.
  if (built && !is_close_after(text_.text(), checked.entry.end)) return false;
  const auto rest = find_left_over(text_.text(), checked.entry.body, checked.range().end);
  if (!rest) return false;
  const char *const text = built ? "text after this entry, which is complete before it"
                                 : "read as part of this entry, which is complete before it";
  NewFinding found = left_over(checked, *rest, text);
  if (is_address_alone(std::string_view(text_.text()).substr(0, rest->end), rest->begin))
    found.remedy = "put it into the entry's addresses, or make a comment of it";
  report_rest(checked, Rule::left_over, Severity::error, std::move(found));
  return true;
}

bool EntryChecker::report_nameless(const CheckedEntry &checked) {
  const bool built = checked.service != nullptr;
  if (checked.trace.is_system_variables()) return false;
  if (built && checked.service->description_count < 2) return false;
  const auto rest = find_nameless(text_.text(), checked.entry.body, checked.range().end);
  if (!rest) return false;
  NewFinding found = left_over(checked, *rest,
                               "read as part of this entry, which has another service: no name "
                               "stands before the block");
  found.remedy = "write NAME = before it, or make a comment of it";
  const bool served_whole = built && checked.range().last;
  if (served_whole) found.fix = {};
  report_rest(checked, Rule::left_over, served_whole ? Severity::warning : Severity::error,
              std::move(found));
  return true;
}

NewFinding EntryChecker::left_over(const CheckedEntry &checked, Span rest, std::string text) {
  told_ranges_.push_back({rest.begin - 1, rest.end});
  return {.at = rest.begin,
          .entry = checked.name,
          .text = std::move(text),
          .fix = fix_of_lines(text_.text(), rest.begin, rest.end)};
}

bool EntryChecker::report_read_on(const CheckedEntry &checked) {
  if (checked.service == nullptr || !checked.trace.has_value_over_items()) return false;
  const EntryRange range = checked.range();
  const auto fault = faults_.report_alone(checked);
  if (fault) told_ranges_.push_back({*fault, range.end});
  return fault.has_value();
}

void EntryChecker::report_rest(const CheckedEntry &checked, Rule rule, Severity severity,
                               NewFinding found) {
  const bool may_end_lookups = checked.service == nullptr || !checked.range().last;
  if (checked.entry.reached && may_end_lookups) reported_stop_ = {rule, found.at, found.text};
  findings_.add(rule, severity, std::move(found));
}

std::string EntryChecker::consequence(const Stop *stop) const {
  if (stop == nullptr || stop->kind == StopKind::no_open) return {};
  return "; lookups of later names read on to the end of the file at " + text_.place(text_.size());
}

}  // namespace kztns
