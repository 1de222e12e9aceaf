#include "explain.h"

#include <strings.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "exit_status.h"
#include "names_file.h"
#include "output.h"

namespace kztns {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

bool equals_but_for_case(std::string_view left, std::string_view right) {
  return left.size() == right.size() && left != right &&
         strncasecmp(left.data(), right.data(), left.size()) == 0;
}

std::string why_not_found(const std::string &name, const Lookup &lookup) {
  if (!lookup.file_name)
    return "not found: none of KZCI_TNS_FILE, TNS_ADMIN and ORACLE_HOME is set";
  errno = 0;
  if (!can_be_read(lookup))
    return "not found: cannot open " + quoted(*lookup.file_name) + ": " + std::strerror(errno);
  return "not found in " + quoted(*lookup.file_name) + near_misses(name, *lookup.file_name);
}

std::string what_is_malformed(const std::string &name, const Lookup &lookup) {
  std::string text = "malformed: " + lookup.fault;
  if (!lookup.file_name) return text;
  text += ", in " + quoted(*lookup.file_name);
  const std::string stopped_at = for_each_entry(*lookup.file_name, [](const Entry &) {});
  if (stopped_at != name && !stopped_at.empty())
    text += "; reading the file's entries ends at " + quoted(stopped_at);
  return text;
}

}  // namespace

std::string near_misses(const std::string &name, const std::string &path) {
  std::string hints;
  for_each_entry(path, [&](const Entry &entry) {
    const bool same = entry.name == name;
    const bool hidden = entry.hidden_behind.has_value();
    if (!(same && hidden) && !equals_but_for_case(entry.name, name)) return;
    hints += "; there is an entry " + quoted(entry.name);
    if (!same) hints += ", which differs in letter case only";
    if (hidden)
      hints += ", behind the entry " + quoted(*entry.hidden_behind) + ", where every lookup ends";
  });
  return hints;
}

bool can_be_read(const Lookup &lookup) {
  if (!lookup.file_name) return false;
  return File(std::fopen(lookup.file_name->c_str(), "r"), std::fclose) != nullptr;
}

std::string label_of(const std::string &identifier, const Lookup &lookup) {
  if (lookup.is_literal) return "literal descriptor";
  return identifier.empty() ? "\"\"" : identifier;
}

int explain_failure(const std::string &identifier, const Lookup &lookup) {
  const std::string label = label_of(identifier, lookup);
  if (lookup.outcome == Outcome::not_found) {
    complain(label, why_not_found(identifier, lookup));
    return exit_not_found;
  }
  complain(label, what_is_malformed(identifier, lookup));
  return exit_malformed;
}

}  // namespace kztns
