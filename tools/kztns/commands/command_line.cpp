#include "commands/command_line.h"

#include "io/names_file.h"

namespace kztns {
namespace {

constexpr char common_statuses[] =
    "64 wrong usage, 66 the names file cannot be read, 71 not enough memory,\n74 standard output "
    "cannot be written.";

}  // namespace

CLI::App *add_command(CLI::App &app, const char *name, const char *purpose, const char *statuses,
                      Arguments &arguments) {
  CLI::App *const command = app.add_subcommand(name, purpose);
  command->set_version_flag("--version", version);
  command->footer(std::string("Exit status: ") + statuses + ",\n" + common_statuses);
  command
      ->add_option("--file", arguments.file,
                   "Names file; without it " + file_variables("or") + " decides")
      ->type_name("PATH");
  command
      ->add_option(
          "--max-size", arguments.max_size,
          "Largest names file to read, in bytes; the suffixes K, M and G are understood (1G)")
      ->type_name("SIZE")
      ->transform(CLI::AsSizeValue(false).description(""))
      ->check(CLI::Range(std::uint64_t{1}, largest_max_size).description(""));
  return command;
}

void add_positional_file(CLI::App *command, Arguments &arguments) {
  command->add_option("FILE", arguments.file, "The same as --file FILE")
      ->type_name("")
      ->excludes("--file");
}

std::optional<std::string> given_file(const CLI::App &command, const Arguments &arguments) {
  const CLI::Option *const positional = command.get_option_no_throw("FILE");
  const bool given = command.count("--file") > 0 || (positional != nullptr && *positional) ||
                     !arguments.file.empty();
  return given ? std::optional(arguments.file) : std::nullopt;
}

}  // namespace kztns
