#include "lookup/lookup_failure.h"

#include "io/exit_status.h"
#include "io/names_file.h"
#include "io/output.h"
#include "lookup/identifier_form.h"
#include "text/escape.h"

namespace kztns {
namespace {

std::string placed_words(const Lookup &lookup, const Remark &fault) {
  const std::string file = lookup.file_name ? visible(*lookup.file_name) + ":" : "";
  return file + to_string(fault.position) + ": " + words_of(fault);
}

std::string why_not_found(const Lookup &lookup, const LookupReport &report) {
  const std::string note = report.note.empty() ? "" : "; " + report.note;
  if (!lookup.file_name) return "not found: " + no_file_chosen() + note;
  const std::string file = quoted(visible(*lookup.file_name));
  if (!lookup.file_fault.text.empty())
    return "not found: " + file + " " + lookup.file_fault.text + note;
  const std::string fault = report.fault ? "; " + placed_words(lookup, *report.fault) : "";
  return "not found in " + file + fault + note + near_clauses(report);
}

std::string what_is_malformed(const Lookup &lookup, const LookupReport &report) {
  return "malformed: " +
         (report.fault ? placed_words(lookup, *report.fault) : visible(lookup.fault));
}

}  // namespace

LookupReport make_lookup_report(const std::string &identifier, const Lookup &lookup) {
  if (lookup.is_literal) return report_of_literal(identifier);
  LookupReport report;
  if (lookup.content != nullptr)
    report = report_of_name(identifier, lookup.content->text());
  else
    report.note = form_of(identifier).note;
  add_file_note(lookup, report.note);
  return report;
}

void add_file_note(const Lookup &lookup, std::string &text) {
  if (!text.empty() && !lookup.file_note.empty()) text += "; ";
  text += lookup.file_note;
}

std::string near_clauses(const LookupReport &report) {
  std::string clauses;
  for (const NearEntry &near : report.near) clauses += "; " + near.clause;
  return clauses;
}

std::string label_of(const std::string &identifier, const Lookup &lookup) {
  if (lookup.is_literal) return "literal descriptor";
  return identifier.empty() ? "\"\"" : excerpt(without_password(identifier));
}

int status_of(Outcome outcome) {
  switch (outcome) {
    case Outcome::found:
      return exit_success;
    case Outcome::not_found:
      return exit_not_found;
    case Outcome::malformed:
      return exit_malformed;
    case Outcome::unreadable:
      return exit_no_input;
  }
  return exit_malformed;
}

std::string describe_failure(const Lookup &lookup, const LookupReport &report) {
  return lookup.outcome == Outcome::not_found ? why_not_found(lookup, report)
                                              : what_is_malformed(lookup, report);
}

int explain_failure(const std::string &identifier, const Lookup &lookup) {
  if (lookup.outcome == Outcome::unreadable) {
    std::string fault = lookup.file_fault.text;
    add_file_note(lookup, fault);
    complain(quoted(visible(*lookup.file_name)), fault);
    return exit_no_input;
  }
  const LookupReport report = make_lookup_report(identifier, lookup);
  std::string what = describe_failure(lookup, report);
  // The log's own words, to be found in a program's log; without a fault to
  // explain they have already been printed.
  if (lookup.outcome == Outcome::malformed && report.fault)
    what += "; log: " + visible(lookup.fault);
  complain(label_of(identifier, lookup), what);
  return status_of(lookup.outcome);
}

}  // namespace kztns
