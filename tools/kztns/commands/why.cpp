#include "commands/why.h"

#include <cstdio>
#include <cstdlib>

#include "io/output.h"
#include "kzoci/oci_tnsname/names_file.h"
#include "lookup/lookup_failure.h"
#include "report/check_text.h"
#include "text/escape.h"
#include "trace/log_watch.h"

namespace kztns {
namespace {

void print(const char *label, const std::string &text) {
  std::printf("%s: %s\n", label, text.c_str());
}

// Which variable chose the file, and which could not any more.
void print_file(const Lookup &lookup, bool file_given) {
  if (!lookup.file_name) return;
  if (file_given) return print("file", quoted(visible(*lookup.file_name)) + ", chosen by --file");
  std::string text = quoted(visible(*lookup.file_name)) + ", chosen by " + lookup.variable;
  bool chosen = false;
  std::string ignored;
  for (const auto &source : kzoci::tns::names_file_sources) {
    if (chosen && std::getenv(source.variable) != nullptr)
      ignored += (ignored.empty() ? "" : ", ") + std::string(source.variable);
    chosen = chosen || lookup.variable == source.variable;
  }
  if (!ignored.empty()) text += "; ignored: " + ignored;
  print("file", text);
}

void print_remark(const char *label, const Remark &remark, bool with_source) {
  print(label, to_string(remark.position) + ": " + remark.text);
  if (with_source) std::printf("%s\n", with_caret(remark.source, remark.caret).c_str());
}

std::string link_string(Tree &tree) {
  char dblink[KZCI_DBLINK_SIZE];
  sb4 length = 0;
  const LogWatch silent(std::nullopt);
  if (KZCITnsServiceDblinkGet(tree.service(), dblink, &length) != 0) return "";
  return "; link string " + visible(dblink);
}

void print_found(const LookupReport &report, Tree &tree) {
  const std::string place = report.entry ? "at " + to_string(*report.entry) : "in the text";
  print("found", place + ", and built" + link_string(tree));
  constexpr std::size_t most = 4;
  for (std::size_t i = 0; i < report.warnings.size() && i < most; ++i)
    print_remark("warning", report.warnings[i], false);
  if (report.warnings.size() > most)
    print("warning", std::to_string(report.warnings.size() - most) + " more");
}

// Where the lookup ended, and whose fault that is.
void print_end(const Lookup &lookup, const LookupReport &report) {
  if (report.entry) print("found", "at " + to_string(*report.entry));
  if (report.fault)
    print_remark(report.entry || lookup.is_literal ? "refused" : "ended", *report.fault, true);
  else if (!lookup.is_literal)
    print("ended", "at the end of the file");
  for (const std::string &clause : report.near) print("near", clause);
}

}  // namespace

int why(const std::string &identifier, const LookupOptions &options) {
  Tree tree;
  const Lookup lookup = look_up(identifier, options, tree);
  if (lookup.outcome == Outcome::unreadable) return explain_failure(identifier, lookup);
  const LookupReport report = make_lookup_report(identifier, lookup);
  print_file(lookup, options.file.has_value());
  const bool read = lookup.is_literal || lookup.content != nullptr;
  if (read && !lookup.is_literal)
    print("skipped", std::to_string(report.passed) + (report.passed == 1 ? " entry" : " entries"));
  if (lookup.outcome == Outcome::found)
    print_found(report, tree);
  else if (read)
    print_end(lookup, report);
  const std::string label = label_of(identifier, lookup);
  if (lookup.outcome == Outcome::found)
    print("outcome", label + ": found");
  else if (!read)
    print("outcome", label + ": " + describe_failure(lookup, report));
  else
    print("outcome",
          label + (lookup.outcome == Outcome::not_found ? ": not found" : ": malformed"));
  const int written = finish_output();
  return written != 0 ? written : status_of(lookup.outcome);
}

}  // namespace kztns
