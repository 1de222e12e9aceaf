#include "show.h"

#include <strings.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "exit_status.h"
#include "log_watch.h"
#include "lookup.h"
#include "names_file.h"

namespace kztns {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

void complain(const std::string &about, const std::string &what) {
  std::fprintf(stderr, "kztns: %s: %s\n", about.c_str(), what.c_str());
}

bool equals_but_for_case(std::string_view left, std::string_view right) {
  return left.size() == right.size() && left != right &&
         strncasecmp(left.data(), right.data(), left.size()) == 0;
}

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

// Entries that the user may have meant: the name in another letter case, or the
// name itself where no lookup comes.
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

std::string why_not_found(const std::string &name, const Lookup &lookup) {
  if (lookup.is_literal) return "not found: the descriptor ends before its first \"=\"";
  if (!lookup.file_name)
    return "not found: none of KZCI_TNS_FILE, TNS_ADMIN and ORACLE_HOME is set";
  errno = 0;
  if (const File file(std::fopen(lookup.file_name->c_str(), "r"), std::fclose); file == nullptr)
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

// Whether the display prints the whole of it, tried where nobody sees it.
bool can_be_displayed(Tree &tree) {
  const LogWatch silent(std::nullopt);
  const File nowhere(std::fopen("/dev/null", "w"), std::fclose);
  return nowhere != nullptr && KZCITnsServiceDisplay(tree.service(), nowhere.get()) == 0;
}

int display(const std::string &about, std::optional<log_level> shown, Tree &tree) {
  if (!can_be_displayed(tree)) {
    complain(about, "built, but cannot be shown: a description has no address list");
    return exit_malformed;
  }
  // The variable would send the tree elsewhere.
  unsetenv("KZCI_TNS_DISPLAY");
  const LogWatch watch(shown);
  KZCITnsDisplay(tree.get());
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return exit_success;
  complain("standard output", std::strerror(errno));
  return exit_output;
}

}  // namespace

int show(const std::string &identifier, std::optional<log_level> shown) {
  Tree tree;
  const Lookup lookup = look_up(identifier, shown, tree);
  const std::string about = lookup.is_literal    ? "literal descriptor"
                            : identifier.empty() ? "\"\""
                                                 : identifier;
  switch (lookup.outcome) {
    case Outcome::found:
      return display(about, shown, tree);
    case Outcome::not_found:
      complain(about, why_not_found(identifier, lookup));
      return exit_not_found;
    case Outcome::malformed:
      complain(about, what_is_malformed(identifier, lookup));
      return exit_malformed;
  }
  return exit_malformed;
}

}  // namespace kztns
