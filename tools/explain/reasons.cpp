#include "reasons.h"

#include <sys/stat.h>

#include <new>

#include "io/names_file.h"
#include "io/read_file.h"
#include "lookup/identifier_form.h"
#include "lookup/lookup_failure.h"
#include "lookup/named_file.h"
#include "text/escape.h"
#include "text_lookup.h"
#include "trace/platform.h"

namespace kztns {
namespace {

// Bytes of a file that is read: more than names files have, and little enough for a
// program that has other things to do.
constexpr std::uint64_t max_size = std::uint64_t{64} << 20;

// Who waits for a pipe may wait for ever, and what is read of it is lost to others.
bool is_pipe(const std::string &path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

std::optional<std::string> text_of(const std::string &path, ReadFault &fault) {
  if (is_pipe(path)) {
    fault.text = "is a pipe, which can be read only once";
    return std::nullopt;
  }
  std::optional<std::string> text = read_file(path, max_size, fault);
  if (fault.too_large) fault.text = "is larger than " + std::to_string(max_size) + " bytes";
  // Words of the system's, in its language and encoding.
  fault.text = visible(fault.text);
  return text;
}

// The lookup, and the text that it was made in; absent when the file was not read.
Lookup look_up(const std::string &identifier, const std::optional<std::string> &path,
               std::optional<std::string> &text) {
  Lookup lookup;
  lookup.is_literal = IsDescriptionTns(const_cast<char *>(identifier.c_str()),
                                       static_cast<ub4>(identifier.size())) != 0;
  if (lookup.is_literal) {
    text.emplace();
  } else if (const std::optional<FileChoice> choice = choose_file(path)) {
    lookup.file_name = choice->path;
    if (!path) lookup.variable = choice->variable;
    if (!path) lookup.file_note = note_of_cut_path(*choice);
    text = text_of(choice->path, lookup.file_fault);
  }
  if (text)
    lookup.outcome = look_up_in_text(identifier, *text);
  else if (lookup.file_name && !lookup.file_fault.missing)
    lookup.outcome = Outcome::unreadable;
  return lookup;
}

LookupReport report_of(const std::string &identifier, const Lookup &lookup,
                       const std::optional<std::string> &text) {
  const AllocationScope scope;
  LookupReport report;
  if (lookup.is_literal)
    report = report_of_literal(identifier);
  else if (text)
    report = report_of_name(identifier, *text);
  else
    report.note = form_of(identifier).note;
  add_file_note(lookup, report.note);
  // An entry that is refused for want of memory alone would be told as malformed.
  scope.require_memory();
  return report;
}

kzoci_explain_outcome outcome_of(const Lookup &lookup, const LookupReport &report) {
  switch (lookup.outcome) {
    case Outcome::found:
      return KZOCI_EXPLAIN_FOUND;
    case Outcome::unreadable:
      return KZOCI_EXPLAIN_UNREADABLE_FILE;
    case Outcome::malformed:
      return lookup.is_literal || report.entry ? KZOCI_EXPLAIN_REFUSED : KZOCI_EXPLAIN_ENDED_BEFORE;
    default:
      break;
  }
  if (!lookup.file_name) return KZOCI_EXPLAIN_NO_FILE;
  return lookup.file_fault.missing ? KZOCI_EXPLAIN_MISSING_FILE : KZOCI_EXPLAIN_NOT_FOUND;
}

std::string text_of(const Lookup &lookup) {
  if (lookup.outcome == Outcome::found) return "";
  if (lookup.outcome == Outcome::malformed) return "the library refuses it";
  if (!lookup.file_name) return no_file_chosen();
  if (!lookup.file_fault.text.empty()) return lookup.file_fault.text;
  return "the file has no entry of that name";
}

std::string what_became_of(const Lookup &lookup, const LookupReport &report) {
  if (lookup.outcome == Outcome::unreadable)
    return quoted(visible(*lookup.file_name)) + " " + lookup.file_fault.text;
  if (lookup.outcome != Outcome::found) return describe_failure(lookup, report);
  if (!report.entry) return "found";
  return "found at " + visible(*lookup.file_name) + ":" + to_string(*report.entry);
}

std::string message_of(const std::string &identifier, const Lookup &lookup,
                       const LookupReport &report) {
  std::string message = label_of(identifier, lookup) + ": " + what_became_of(lookup, report);
  // Others are told with all notes.
  if (lookup.outcome != Outcome::not_found) add_file_note(lookup, message);
  if (!lookup.variable.empty()) message += "; the file is chosen by " + lookup.variable;
  return message;
}

}  // namespace

Reasons reasons_of(const std::string &identifier, const std::optional<std::string> &path) {
  std::optional<std::string> text;
  Lookup lookup = look_up(identifier, path, text);
  LookupReport report = report_of(identifier, lookup, text);
  Reasons reasons;
  reasons.outcome = outcome_of(lookup, report);
  reasons.is_literal = lookup.is_literal;
  reasons.text = lookup.fault = text_of(lookup);
  reasons.message = message_of(identifier, lookup, report);
  reasons.identifier = visible(without_password(identifier));
  if (lookup.file_name) reasons.file = visible(*lookup.file_name);
  if (!lookup.variable.empty()) reasons.variable = lookup.variable;
  reasons.entry = report.entry;
  reasons.place = report.entry;
  if (report.fault) {
    reasons.place = report.fault->position;
    reasons.rule = report.fault->rule;
    reasons.text = report.fault->text;
    reasons.remedy = report.fault->remedy;
  }
  reasons.note = report.note;
  reasons.near = std::move(report.near);
  for (NearEntry &near : reasons.near) near.name = visible(near.name);
  return reasons;
}

}  // namespace kztns
