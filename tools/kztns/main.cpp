// kztns: what a connect identifier resolves to.
#include <cstdlib>
#include <map>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "exit_status.h"
#include "settings.h"
#include "show.h"

namespace {

struct Arguments {
  std::string identifier;
  std::string file;
  std::string level;
  bool dblink = false;
  bool session = false;
};

const std::map<std::string, log_level> level_names = {{"trace", LOG_LEVEL_TRACE},
                                                      {"debug", LOG_LEVEL_DEBUG},
                                                      {"info", LOG_LEVEL_INFO},
                                                      {"warn", LOG_LEVEL_WARN},
                                                      {"error", LOG_LEVEL_ERROR}};

constexpr char version[] = "kztns " KZTNS_VERSION;

constexpr char exit_statuses[] =
    "Exit status: 0 found and shown, 1 not found, 2 malformed, 64 wrong usage,\n"
    "74 standard output cannot be written.";

// A subcommand with the options that all have.
CLI::App *add_command(CLI::App &app, const char *name, const char *purpose, Arguments &arguments) {
  CLI::App *const command = app.add_subcommand(name, purpose);
  command->set_version_flag("--version", version);
  command->add_option("--file", arguments.file,
                      "Names file; without it KZCI_TNS_FILE, TNS_ADMIN or ORACLE_HOME decides");
  command
      ->add_option("--log", arguments.level,
                   "Show log records from this level on, on standard error")
      ->type_name("LEVEL")
      ->check(CLI::IsMember(level_names, CLI::ignore_case));
  command->footer(exit_statuses);
  return command;
}

void add_show(CLI::App &app, Arguments &arguments) {
  CLI::App *const show =
      add_command(app, "show", "Resolve an identifier and print its tree", arguments);
  show->add_option("IDENTIFIER", arguments.identifier,
                   "Net service name, or literal descriptor \"(DESCRIPTION=...)\"")
      ->required();
  CLI::Option *const dblink =
      show->add_flag("--dblink", arguments.dblink, "Print only the link string");
  show->add_flag("--session", arguments.session,
                 "Print what a session is opened with: extra information, mode, session variables")
      ->excludes(dblink);
}

kztns::ShowWhat shown_part(const Arguments &arguments) {
  if (arguments.dblink) return kztns::ShowWhat::dblink;
  return arguments.session ? kztns::ShowWhat::session : kztns::ShowWhat::tree;
}

int run(const CLI::App &command, const Arguments &arguments) {
  if (command.count("--file") > 0) setenv("KZCI_TNS_FILE", arguments.file.c_str(), 1);
  std::optional<log_level> shown;
  if (command.count("--log") > 0) shown = level_names.at(CLI::detail::to_lower(arguments.level));
  if (command.get_name() == "settings") return kztns::settings(shown);
  return kztns::show(arguments.identifier, shown_part(arguments), shown);
}

}  // namespace

int main(int argc, char **argv) {
  CLI::App app("What a connect identifier resolves to.", "kztns");
  app.set_version_flag("--version", version);
  app.require_subcommand(1);
  Arguments arguments;
  add_show(app, arguments);
  add_command(app, "settings", "Print the system variables in force for a names file", arguments);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError &error) {
    return app.exit(error) == 0 ? kztns::exit_success : kztns::exit_usage;
  }
  return run(*app.get_subcommands().front(), arguments);
}
