#include "commands/settings.h"

#include <cstdio>
#include <string>
#include <string_view>

#include "io/exit_status.h"
#include "io/output.h"
#include "lookup/lookup_failure.h"

namespace kztns {
namespace {

constexpr char reserved_name[] = "KZCISYSTEMVARIABLES";

void print_setting(const char *name, const std::string &value, const std::string &by_default) {
  std::printf("%s:%s%s\n", name, value.c_str(), value == by_default ? " (default)" : "");
}

void print_number(const char *name, sb8 value, sb8 by_default) {
  print_setting(name, std::to_string(value), std::to_string(by_default));
}

void print_text(const char *name, const char *text, ub4 length) {
  print_setting(name, for_output({text, length}), "");
}

void print_variables(const KZCISystemVariables &vars) {
  KZCISystemVariables defaults;
  KZCISystemVariablesInit(&defaults);
  print_number("SLOWSQL_THRESHOLD", vars.slowsql_threshold, defaults.slowsql_threshold);
  print_number("SLOWSQL_BUFFER_SIZE", vars.slowsql_buffer_size, defaults.slowsql_buffer_size);
  print_number("SLOWSQL_FLUSH_SECOND", vars.slowsql_flush_second, defaults.slowsql_flush_second);
  print_text("SESSION_VARIABLE", vars.session_variable, vars.session_variable_len);
  print_text("LOG_LEVEL", vars.log_level, vars.log_level_len);
  print_number("LOG_SIZE", vars.log_size, defaults.log_size);
  print_number("LOG_COUNT", vars.log_count, defaults.log_count);
  print_text("LOG_PATH", vars.log_path, vars.log_path_len);
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
