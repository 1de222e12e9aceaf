#include "commands/settings.h"

#include <cstdio>
#include <string>

#include "io/exit_status.h"
#include "io/output.h"
#include "kzoci/oci_tnsname/reserved_entry.h"
#include "lookup/lookup_failure.h"
#include "report/tree_walk.h"

namespace kztns {
namespace {

using kzoci::tns::reserved_name;

void print_variables(const KZCISystemVariables &vars) {
  for_each_field(kzoci::tns::Block::system_variables, [&](const kzoci::tns::Key &key) {
    std::printf("%s:%s%s\n", key.word, for_output(value_text(key, &vars)).c_str(),
                is_default(key, &vars) ? " (default)" : "");
  });
}

// A file without a reserved entry, or one that no lookup reaches, leaves every
// variable at its default; entries that were meant to be it are reported.
int show_defaults(const Lookup &lookup) {
  const std::string hints = near_clauses(make_lookup_report(reserved_name, lookup));
  if (!hints.empty()) complain(reserved_name, "not found" + hints);
  KZCISystemVariables defaults;
  KZCISystemVariablesInit(&defaults);
  print_variables(defaults);
  return finish_output();
}

}  // namespace

int settings(const LookupOptions &options) {
  Tree tree;
  const Lookup lookup = look_up(reserved_name, options, tree);
  if (lookup.outcome == Outcome::found) {
    print_variables(tree.service()->sys_vars);
    return finish_output();
  }
  if (lookup.outcome == Outcome::not_found && lookup.content != nullptr)
    return show_defaults(lookup);
  return explain_failure(reserved_name, lookup);
}

}  // namespace kztns
