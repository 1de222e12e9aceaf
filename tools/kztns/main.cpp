// kztns: what a connect identifier resolves to, and what is wrong where it does
// not.
#include <cstdlib>
#include <map>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "check.h"
#include "exit_status.h"
#include "list.h"
#include "settings.h"
#include "show.h"
#include "why.h"

namespace {

struct Arguments {
  std::string identifier;
  std::string file;
  std::string level;
  std::string format = "text";
  std::string tree_format = "tree";
  std::string color = "auto";
  bool no_color = false;
  bool strict = false;
  bool dblink = false;
  bool session = false;
};

const std::map<std::string, log_level> level_names = {{"trace", LOG_LEVEL_TRACE},
                                                      {"debug", LOG_LEVEL_DEBUG},
                                                      {"info", LOG_LEVEL_INFO},
                                                      {"warn", LOG_LEVEL_WARN},
                                                      {"error", LOG_LEVEL_ERROR}};

const std::map<std::string, kztns::ShowWhat> tree_formats = {{"tree", kztns::ShowWhat::tree},
                                                             {"json", kztns::ShowWhat::json},
                                                             {"dot", kztns::ShowWhat::dot},
                                                             {"svg", kztns::ShowWhat::svg}};

const std::map<std::string, kztns::ReportFormat> report_formats = {
    {"text", kztns::ReportFormat::text},
    {"json", kztns::ReportFormat::json},
    {"sarif", kztns::ReportFormat::sarif}};

const std::map<std::string, kztns::ColorChoice> color_choices = {
    {"auto", kztns::ColorChoice::automatic},
    {"always", kztns::ColorChoice::always},
    {"never", kztns::ColorChoice::never}};

constexpr char version[] = "kztns " KZTNS_VERSION;

constexpr char exit_statuses[] =
    "Exit status: 0 found and shown, 1 not found, 2 malformed, 64 wrong usage,\n"
    "69 graphviz is not installed or fails, 74 standard output cannot be written.";

constexpr char check_exit_statuses[] =
    "Exit status: 0 no error, 1 errors, 64 wrong usage, 66 the file cannot be read,\n"
    "74 standard output cannot be written.";

CLI::App *add_command(CLI::App &app, const char *name, const char *purpose, const char *statuses) {
  CLI::App *const command = app.add_subcommand(name, purpose);
  command->set_version_flag("--version", version);
  command->footer(statuses);
  return command;
}

// A subcommand that makes one lookup.
CLI::App *add_lookup(CLI::App &app, const char *name, const char *purpose, Arguments &arguments) {
  CLI::App *const command = add_command(app, name, purpose, exit_statuses);
  command->add_option("--file", arguments.file,
                      "Names file; without it KZCI_TNS_FILE, TNS_ADMIN or ORACLE_HOME decides");
  command
      ->add_option("--log", arguments.level,
                   "Show log records from this level on, on standard error")
      ->type_name("LEVEL")
      ->check(CLI::IsMember(level_names, CLI::ignore_case));
  return command;
}

void add_identifier(CLI::App *command, Arguments &arguments) {
  command
      ->add_option("IDENTIFIER", arguments.identifier,
                   "Net service name, or literal descriptor \"(DESCRIPTION=...)\"")
      ->required();
}

void add_show(CLI::App &app, Arguments &arguments) {
  CLI::App *const show =
      add_lookup(app, "show", "Resolve an identifier and print its tree", arguments);
  add_identifier(show, arguments);
  CLI::Option *const dblink =
      show->add_flag("--dblink", arguments.dblink, "Print only the link string");
  CLI::Option *const session =
      show->add_flag(
              "--session", arguments.session,
              "Print what a session is opened with: extra information, mode, session variables")
          ->excludes(dblink);
  show->add_option("--format", arguments.tree_format,
                   "Print the tree as text (tree), as JSON with every field (json), as a graph "
                   "(dot) or as its picture, drawn by graphviz (svg)")
      ->type_name("FORMAT")
      ->check(CLI::IsMember(tree_formats))
      ->excludes(dblink)
      ->excludes(session);
}

// A subcommand that reads a whole file.
CLI::App *add_report(CLI::App &app, const char *name, const char *purpose, Arguments &arguments) {
  CLI::App *const command = add_command(app, name, purpose, check_exit_statuses);
  command->add_option("FILE", arguments.file,
                      "Names file; without it KZCI_TNS_FILE, TNS_ADMIN or ORACLE_HOME decides");
  return command;
}

void add_check(CLI::App &app, Arguments &arguments) {
  CLI::App *const check =
      add_report(app, "check", "Tell what is wrong with a names file", arguments);
  check->add_option("--format", arguments.format, "text, json or sarif")
      ->type_name("FORMAT")
      ->check(CLI::IsMember(report_formats));
  check->add_flag("--strict", arguments.strict, "Take warnings for errors");
  check->add_option("--color", arguments.color, "auto, always or never")
      ->type_name("WHEN")
      ->check(CLI::IsMember(color_choices));
  check->add_flag("--no-color", arguments.no_color, "Write no colours");
}

void add_list(CLI::App &app, Arguments &arguments) {
  add_report(app, "list", "List the entries of a names file", arguments)
      ->add_option("--format", arguments.format, "text or json")
      ->type_name("FORMAT")
      ->check(CLI::IsMember({"text", "json"}));
}

kztns::ShowWhat shown_part(const Arguments &arguments) {
  if (arguments.dblink) return kztns::ShowWhat::dblink;
  return arguments.session ? kztns::ShowWhat::session : tree_formats.at(arguments.tree_format);
}

std::optional<std::string> given_file(const CLI::App &command, const Arguments &arguments) {
  if (command.count("FILE") == 0) return std::nullopt;
  return arguments.file;
}

int run_check(const CLI::App &command, const Arguments &arguments) {
  kztns::CheckOptions options;
  options.file = given_file(command, arguments);
  options.format = report_formats.at(arguments.format);
  options.color =
      arguments.no_color ? kztns::ColorChoice::never : color_choices.at(arguments.color);
  options.strict = arguments.strict;
  return kztns::check(options);
}

int run_list(const CLI::App &command, const Arguments &arguments) {
  return kztns::list({given_file(command, arguments), arguments.format == "json"});
}

int run_lookup(const CLI::App &command, const Arguments &arguments) {
  if (command.count("--file") > 0) setenv("KZCI_TNS_FILE", arguments.file.c_str(), 1);
  std::optional<log_level> shown;
  if (command.count("--log") > 0) shown = level_names.at(CLI::detail::to_lower(arguments.level));
  if (command.get_name() == "settings") return kztns::settings(shown);
  if (command.get_name() == "why")
    return kztns::why(arguments.identifier, command.count("--file") > 0, shown);
  return kztns::show(arguments.identifier, shown_part(arguments), shown);
}

int run(const CLI::App &command, const Arguments &arguments) {
  if (command.get_name() == "check") return run_check(command, arguments);
  if (command.get_name() == "list") return run_list(command, arguments);
  return run_lookup(command, arguments);
}

}  // namespace

int main(int argc, char **argv) {
  CLI::App app("What a connect identifier resolves to, and why not.", "kztns");
  app.set_version_flag("--version", version);
  app.require_subcommand(1);
  Arguments arguments;
  add_show(app, arguments);
  add_lookup(app, "settings", "Print the system variables in force for a names file", arguments);
  add_identifier(add_lookup(app, "why", "Tell the story of one lookup", arguments), arguments);
  add_check(app, arguments);
  add_list(app, arguments);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError &error) {
    return app.exit(error) == 0 ? kztns::exit_success : kztns::exit_usage;
  }
  return run(*app.get_subcommands().front(), arguments);
}
