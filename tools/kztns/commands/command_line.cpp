#include "commands/command_line.h"

#include <algorithm>
#include <utility>

#include "io/names_file.h"
#include "text/escape.h"
#include "text/spelling.h"
#include "trace/key_words.h"

namespace kztns {
namespace {

constexpr char common_statuses[] =
    "64 wrong usage, 66 the names file cannot be read, 71 not enough memory,\n74 standard output "
    "cannot be written.";

// What is wrong with a word for a rule; empty for nothing.
std::string rule_fault(const std::string &word) {
  if (rule_of(word)) return {};
  const std::string_view near = near_word(word, rule_ids());
  const std::string fault = "unknown rule " + kztns::quoted(cut_short(word));
  if (near.empty()) return fault + ": kztns check --rules lists them";
  return fault + "; did you mean " + std::string(near) + "?";
}

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

void add_stdin_name(CLI::App *command, Arguments &arguments) {
  command->add_option("--stdin-name", arguments.stdin_name, "What reports call standard input")
      ->type_name("NAME");
}

WriteOptions add_write_options(CLI::App *command, Arguments &arguments) {
  CLI::Option *const diff =
      command->add_flag("--diff", arguments.diff, "Print a unified diff instead of the whole file");
  CLI::Option *const in_place =
      command->add_flag("--in-place", arguments.in_place,
                        "Replace the file at once, or not at all; keep the old one as FILE~");
  return {diff, in_place->excludes(diff)};
}

const CLI::Validator &is_rule() {
  static const CLI::Validator validator(rule_fault, "");
  return validator;
}

std::string unknown_word(std::string_view kind, std::string_view word,
                         const std::string &expected) {
  return "unknown " + std::string(kind) + " " + quoted(cut_short(word)) + ": expected " + expected;
}

// Completion takes the words from the help, where the validator's description is.
CLI::Validator is_one_of_these(std::string_view kind, std::vector<std::string_view> words) {
  const std::string listed = "{" + CLI::detail::join(words, ",") + "}";
  return CLI::Validator(
      [kind, words = std::move(words)](const std::string &word) {
        const bool is_known = std::find(words.begin(), words.end(), word) != words.end();
        return is_known ? std::string() : unknown_word(kind, word, one_of(words));
      },
      listed);
}

void add_report_format(CLI::App *command, std::vector<std::string_view> words,
                       Arguments &arguments) {
  command->add_option("--format", arguments.format, one_of(words))
      ->type_name("FORMAT")
      ->check(is_one_of_these("format", std::move(words)));
}

void add_disable(CLI::App *command, const char *purpose, Arguments &arguments) {
  command->add_option("--disable", arguments.disabled, purpose)
      ->type_name("RULE,...")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->check(is_rule());
}

RuleSet disabled_rules(const Arguments &arguments) {
  RuleSet rules;
  for (const std::string &id : arguments.disabled)
    if (const std::optional<Rule> rule = rule_of(id)) rules.set(static_cast<std::size_t>(*rule));
  return rules;
}

std::optional<std::string> given_file(const CLI::App &command, const Arguments &arguments) {
  const CLI::Option *const positional = command.get_option_no_throw("FILE");
  const bool as_option = command.count("--file") > 0;
  const bool as_argument = positional != nullptr && positional->count() > 0;
  if (as_option || as_argument || !arguments.file.empty()) return arguments.file;
  return std::nullopt;
}

}  // namespace kztns
