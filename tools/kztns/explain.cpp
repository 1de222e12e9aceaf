#include "explain.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "exit_status.h"
#include "output.h"

namespace kztns {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

std::string why_not_found(const Lookup &lookup, const Story &story) {
  if (!lookup.file_name)
    return "not found: none of KZCI_TNS_FILE, TNS_ADMIN and ORACLE_HOME is set";
  errno = 0;
  if (!can_be_read(lookup))
    return "not found: cannot open " + quoted(*lookup.file_name) + ": " + std::strerror(errno);
  if (!story.unreadable.empty())
    return "not found: cannot read " + quoted(*lookup.file_name) + ": " + story.unreadable;
  return "not found in " + quoted(*lookup.file_name) + near_clauses(story);
}

std::string what_is_malformed(const Lookup &lookup, const Story &story) {
  std::string where;
  if (lookup.file_name) where = visible(*lookup.file_name) + ":";
  if (!story.fault) return "malformed: " + visible(lookup.fault);
  return "malformed: " + where + to_string(story.fault->position) + ": " + story.fault->text;
}

}  // namespace

Story tell(const std::string &identifier, const Lookup &lookup) {
  if (lookup.is_literal) return tell_of_literal(identifier);
  Story story;
  if (!lookup.file_name) return story;
  std::optional<std::string> text = read_file(*lookup.file_name, story.unreadable);
  return text ? tell_of_name(identifier, std::move(*text)) : story;
}

std::string near_clauses(const Story &story) {
  std::string clauses;
  for (const std::string &clause : story.near) clauses += "; " + clause;
  return clauses;
}

bool can_be_read(const Lookup &lookup) {
  if (!lookup.file_name) return false;
  return File(std::fopen(lookup.file_name->c_str(), "r"), std::fclose) != nullptr;
}

std::string label_of(const std::string &identifier, const Lookup &lookup) {
  if (lookup.is_literal) return "literal descriptor";
  return identifier.empty() ? "\"\"" : visible(identifier);
}

int status_of(Outcome outcome) {
  switch (outcome) {
    case Outcome::found:
      return exit_success;
    case Outcome::not_found:
      return exit_not_found;
    case Outcome::malformed:
      return exit_malformed;
  }
  return exit_malformed;
}

std::string describe_failure(const Lookup &lookup, const Story &story) {
  return lookup.outcome == Outcome::not_found ? why_not_found(lookup, story)
                                              : what_is_malformed(lookup, story);
}

int explain_failure(const std::string &identifier, const Lookup &lookup) {
  const Story story = tell(identifier, lookup);
  std::string what = describe_failure(lookup, story);
  // The log's own words, for whoever finds them in a program's log; without a fault to
  // tell they are what has been said.
  if (lookup.outcome == Outcome::malformed && story.fault)
    what += "; log: " + visible(lookup.fault);
  complain(label_of(identifier, lookup), what);
  return status_of(lookup.outcome);
}

}  // namespace kztns
