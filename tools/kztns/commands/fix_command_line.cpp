#include "commands/command_line.h"
#include "commands/fix.h"

namespace kztns {
namespace {

constexpr char fix_statuses[] =
    "0 no error is left but ignored or disabled ones, 1 errors are left";

constexpr Choice<Keep> kept_entries[] = {{"first", Keep::first}, {"last", Keep::last}};

}  // namespace

void add_fix(CLI::App &app, Arguments &arguments) {
  CLI::App *const fix =
      add_command(app, "fix", "Mend a names file: print it with the fixes of what check finds",
                  fix_statuses, arguments);
  add_positional_file(fix, arguments);
  add_stdin_name(fix, arguments);
  fix->add_flag("--unsafe", arguments.with_unsafe,
                "Apply fixes too that guess what was meant, or give something up");
  add_disable(fix, "Rules whose fixes are not applied, separated by commas; repeatable", arguments);
  fix->add_flag("--inline-ifile", arguments.inline_ifile,
                "Put the text of included files in the place of their IFILE lines");
  fix->add_flag("--comment-out", arguments.comment_out,
                "Make comments of what cannot be served, with the reason");
  fix->add_option("--keep", arguments.keep,
                  "first or last: of the entries of a name, make comments of the others")
      ->type_name("WHICH")
      ->check(is_one_of_these("value", words_of(kept_entries)));
  const WriteOptions write = add_write_options(fix, arguments);
  fix->add_option("-o,--output", arguments.output, "Write to this file")
      ->type_name("FILE")
      ->excludes(write.diff)
      ->excludes(write.in_place);
}

int run_fix(const CLI::App &command, const Arguments &arguments) {
  FixOptions options;
  options.file = given_file(command, arguments);
  options.stdin_name = arguments.stdin_name;
  options.max_size = arguments.max_size;
  options.disabled = disabled_rules(arguments);
  options.with_unsafe = arguments.with_unsafe;
  options.inline_ifile = arguments.inline_ifile;
  options.commenting.unserved = arguments.comment_out;
  if (command.count("--keep") > 0) options.commenting.keep = chosen(kept_entries, arguments.keep);
  if (arguments.diff) options.target = FixTarget::diff;
  if (arguments.in_place) options.target = FixTarget::in_place;
  if (command.count("--output") > 0) {
    options.target = FixTarget::file;
    options.output = arguments.output;
  }
  return fix(options);
}

}  // namespace kztns
