#include "commands/command_line.h"
#include "commands/format.h"

namespace kztns {
namespace {

constexpr char format_statuses[] = "0 done, or laid out already, 1 --check: not laid out so";

// More than that is no indentation any more.
constexpr std::size_t most_indent = 16;

}  // namespace

void add_format(CLI::App &app, Arguments &arguments) {
  CLI::App *const format =
      add_command(app, "format", "Lay out a names file: blanks and line ends alone change",
                  format_statuses, arguments);
  add_positional_file(format, arguments);
  add_stdin_name(format, arguments);
  format->add_option("--indent", arguments.indent, "Blanks of one level, 1 to 16 (2)")
      ->type_name("COUNT")
      ->check(CLI::Range(std::size_t{1}, most_indent).description(""));
  format->add_flag("--one-address-a-line", arguments.one_address_a_line,
                   "Keep each ADDRESS on one line, however long it gets");
  CLI::Option *const check =
      format->add_flag("--check", arguments.check,
                       "Write nothing; the exit status tells whether anything would change");
  const WriteOptions write = add_write_options(format, arguments);
  check->excludes(write.diff)->excludes(write.in_place);
}

int run_format(const CLI::App &command, const Arguments &arguments) {
  FormatCommand options;
  options.file = given_file(command, arguments);
  options.stdin_name = arguments.stdin_name;
  options.max_size = arguments.max_size;
  options.layout.indent.assign(arguments.indent, ' ');
  options.layout.one_address_a_line = arguments.one_address_a_line;
  if (arguments.check) options.target = FormatTarget::check;
  if (arguments.diff) options.target = FormatTarget::diff;
  if (arguments.in_place) options.target = FormatTarget::in_place;
  return format(options);
}

}  // namespace kztns
