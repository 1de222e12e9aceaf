// kztns: what a connect identifier resolves to.
#include <cstdlib>
#include <map>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "exit_status.h"
#include "show.h"

namespace {

struct Arguments {
  std::string identifier;
  std::string file;
  std::string level;
};

const std::map<std::string, log_level> level_names = {{"trace", LOG_LEVEL_TRACE},
                                                      {"debug", LOG_LEVEL_DEBUG},
                                                      {"info", LOG_LEVEL_INFO},
                                                      {"warn", LOG_LEVEL_WARN},
                                                      {"error", LOG_LEVEL_ERROR}};

constexpr char version[] = "kztns " KZTNS_VERSION;

CLI::App *add_show(CLI::App &app, Arguments &arguments) {
  CLI::App *const show = app.add_subcommand("show", "Resolve an identifier and print its tree");
  show->set_version_flag("--version", version);
  show->add_option("IDENTIFIER", arguments.identifier,
                   "Net service name, or literal descriptor \"(DESCRIPTION=...)\"")
      ->required();
  show->add_option("--file", arguments.file,
                   "Names file; without it KZCI_TNS_FILE, TNS_ADMIN or ORACLE_HOME decides");
  show->add_option("--log", arguments.level,
                   "Show log records from this level on, on standard error")
      ->type_name("LEVEL")
      ->check(CLI::IsMember(level_names, CLI::ignore_case));
  show->footer(
      "Exit status: 0 found and shown, 1 not found, 2 malformed, 64 wrong usage,\n"
      "74 standard output cannot be written.");
  return show;
}

}  // namespace

int main(int argc, char **argv) {
  CLI::App app("What a connect identifier resolves to.", "kztns");
  app.set_version_flag("--version", version);
  app.require_subcommand(1);
  Arguments arguments;
  const CLI::App *const show = add_show(app, arguments);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError &error) {
    return app.exit(error) == 0 ? kztns::exit_success : kztns::exit_usage;
  }
  if (show->count("--file") > 0) setenv("KZCI_TNS_FILE", arguments.file.c_str(), 1);
  std::optional<log_level> shown;
  if (show->count("--log") > 0) shown = level_names.at(CLI::detail::to_lower(arguments.level));
  return kztns::show(arguments.identifier, shown);
}
