#include "commands/why.h"

#include <cstdio>

#include "io/output.h"
#include "lookup/lookup_failure.h"
#include "lookup/lookup_json.h"
#include "report/check_text.h"
#include "text/escape.h"

namespace kztns {
namespace {

// Of lines of one kind.
constexpr std::size_t most_shown = 4;

void print(const char *label, const std::string &text) {
  std::printf("%s: %s\n", label, text.c_str());
}

// Which variable chose the file, and which could not any more.
void print_file(const Lookup &lookup, bool file_given) {
  if (!lookup.file_name) return;
  if (file_given) return print("file", quoted(visible(*lookup.file_name)) + ", chosen by --file");
  std::string text = quoted(visible(*lookup.file_name)) + ", chosen by " + lookup.variable;
  const char *joint = "; ignored: ";
  for (const std::string &variable : ignored_variables(lookup)) {
    text += joint + variable;
    joint = ", ";
  }
  print("file", text);
}

void print_remark(const char *label, const Remark &remark, bool with_source) {
  print(label, to_string(remark.position) + ": " + words_of(remark));
  if (with_source) std::printf("%s\n", with_caret(remark.source, remark.caret).c_str());
}

void print_found(const LookupReport &report, const std::string &link) {
  const std::string place = report.entry ? "at " + to_string(*report.entry) : "in the text";
  print("found", place + ", and built" + (link.empty() ? "" : "; link string " + visible(link)));
  for (std::size_t i = 0; i < report.warnings.size() && i < most_shown; ++i)
    print_remark("warning", report.warnings[i], false);
  if (report.warnings.size() > most_shown)
    print("warning", std::to_string(report.warnings.size() - most_shown) + " more");
}

// Where the lookup ended, and whose fault that is.
void print_end(const Lookup &lookup, const LookupReport &report) {
  if (report.entry) print("found", "at " + to_string(*report.entry));
  if (report.fault)
    print_remark(report.entry || lookup.is_literal ? "refused" : "ended", *report.fault, true);
  else if (!lookup.is_literal)
    print("ended", "at the end of the file");
  if (!report.note.empty()) print("note", report.note);
  for (const NearEntry &near : report.near) print("near", near.clause);
}

void print_shadowed(const LookupReport &report) {
  for (std::size_t i = 0; i < report.shadowed.size() && i < most_shown; ++i)
    print("shadowed",
          to_string(report.shadowed[i]) + ": another entry of the name, which no lookup finds");
  if (report.shadowed.size() > most_shown)
    print("shadowed", std::to_string(report.shadowed.size() - most_shown) + " more");
}

void print_outcome(const std::string &identifier, const Lookup &lookup,
                   const LookupReport &report) {
  const std::string label = label_of(identifier, lookup) + ": ";
  const bool read = lookup.is_literal || lookup.content != nullptr;
  if (lookup.outcome == Outcome::found)
    print("outcome", label + "found");
  else if (!read)
    print("outcome", label + describe_failure(lookup, report));
  else
    print("outcome", label + (lookup.outcome == Outcome::not_found ? "not found" : "malformed"));
}

void print_text(const ExplainedLookup &explained) {
  const Lookup &lookup = explained.lookup;
  const LookupReport &report = explained.report;
  print_file(lookup, explained.file_given);
  const bool read = lookup.is_literal || lookup.content != nullptr;
  if (read && !lookup.is_literal)
    print("skipped", std::to_string(report.passed) + (report.passed == 1 ? " entry" : " entries"));
  if (lookup.outcome == Outcome::found)
    print_found(report, explained.link);
  else if (read)
    print_end(lookup, report);
  print_shadowed(report);
  print_outcome(explained.identifier, lookup, report);
}

}  // namespace

int why(const std::string &identifier, WhyFormat format, const LookupOptions &options) {
  Tree tree;
  const Lookup lookup = look_up(identifier, options, tree);
  if (lookup.outcome == Outcome::unreadable) return explain_failure(identifier, lookup);
  const LookupReport report = make_lookup_report(identifier, lookup);
  const ExplainedLookup explained = {identifier, lookup, report, options.file.has_value(),
                                     lookup.outcome == Outcome::found ? link_string(tree) : ""};
  if (format == WhyFormat::json)
    std::fputs(lookup_json(explained).c_str(), stdout);
  else
    print_text(explained);
  const int written = finish_output();
  return written != 0 ? written : status_of(lookup.outcome);
}

}  // namespace kztns
