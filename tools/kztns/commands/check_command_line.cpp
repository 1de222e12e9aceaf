#include <algorithm>
#include <iterator>

#include "commands/check.h"
#include "commands/command_line.h"
#include "io/names_file.h"
#include "trace/key_words.h"

namespace kztns {
namespace {

constexpr char check_statuses[] = "0 no errors, 1 errors, or what --fail-on says";

std::vector<std::string_view> report_formats() {
  std::vector<std::string_view> names;
  for (const CheckFormat &format : check_formats) names.push_back(format.name);
  return names;
}

const CheckFormat *report_format(std::string_view name) {
  return std::find_if(std::begin(check_formats), std::end(check_formats),
                      [&](const CheckFormat &format) { return format.name == name; });
}

constexpr Choice<ColorChoice> color_choices[] = {{"auto", ColorChoice::automatic},
                                                 {"always", ColorChoice::always},
                                                 {"never", ColorChoice::never}};

constexpr Choice<FailOn> failures[] = {
    {"error", FailOn::error}, {"warning", FailOn::warning}, {"never", FailOn::never}};

void add_files(CLI::App *check, Arguments &arguments) {
  check
      ->add_option("FILE", arguments.paths,
                   "Names files; of a folder the *.ora files in it and below; - is standard input")
      ->type_name("")
      ->excludes("--file");
  add_stdin_name(check, arguments);
}

void add_rules(CLI::App *check, Arguments &arguments) {
  CLI::Option *const rules =
      check->add_flag("--rules", arguments.rules, "List the rules, and check nothing")
          ->excludes("FILE");
  check
      ->add_option("--explain", arguments.explained,
                   "Print what the documents say of a rule, and check nothing")
      ->type_name("RULE")
      ->check(is_rule())
      ->excludes("FILE")
      ->excludes(rules);
  add_disable(check, "Rules whose findings are not reported, separated by commas; repeatable",
              arguments);
}

void add_outcome(CLI::App *check, Arguments &arguments) {
  check->add_flag("--strict", arguments.strict, "Report warnings as errors");
  check
      ->add_option("--fail-on", arguments.fail_on,
                   "Findings from which on the exit status is 1: error, warning, or never; "
                   "warnings stay warnings")
      ->type_name("SEVERITY")
      ->check(is_one_of_these("severity", words_of(failures)));
}

}  // namespace

void add_check(CLI::App &app, Arguments &arguments) {
  CLI::App *const check =
      add_command(app, "check", "Check names files for errors", check_statuses, arguments);
  add_files(check, arguments);
  add_report_format(check, report_formats(), arguments);
  add_outcome(check, arguments);
  add_rules(check, arguments);
  check->add_option("--color", arguments.color, "auto, always or never")
      ->type_name("WHEN")
      ->check(is_one_of_these("value", words_of(color_choices)));
  check->add_flag("--no-color", arguments.no_color, "Do not use colours");
}

int run_check(const CLI::App &command, const Arguments &arguments) {
  if (arguments.rules) return list_rules();
  if (const std::optional<Rule> rule = rule_of(arguments.explained)) return explain_rule(*rule);
  CheckOptions options;
  options.paths = arguments.paths;
  if (command.count("--file") > 0) options.paths = {arguments.file};
  if (std::count(options.paths.begin(), options.paths.end(), standard_input) > 1)
    throw CLI::ValidationError("FILE", "standard input (-) can be given only once");
  options.stdin_name = arguments.stdin_name;
  options.max_size = arguments.max_size;
  options.format = report_format(arguments.format);
  options.color = arguments.no_color ? ColorChoice::never : chosen(color_choices, arguments.color);
  options.disabled = disabled_rules(arguments);
  options.strict = arguments.strict;
  options.fail_on = chosen(failures, arguments.fail_on);
  return check(options);
}

}  // namespace kztns
