// What the subcommands' command lines have in common.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "io/read_file.h"
#include "kzoci/version.h"
#include "rules/rules.h"

namespace kztns {

// What the options of all subcommands are read into.
struct Arguments {
  std::string identifier;
  std::string file;
  std::string level;
  std::string format = "text";
  std::string tree_format = "tree";
  std::string color = "auto";
  std::uint64_t max_size = default_max_size;
  bool no_color = false;
  bool strict = false;
  bool dblink = false;
  bool session = false;
  std::string stdin_name = "<stdin>";
  std::vector<std::string> disabled;
  // check
  std::vector<std::string> paths;
  std::string explained;
  std::string fail_on = "error";
  bool rules = false;
  // fix
  std::string output;
  std::string keep;
  bool diff = false;
  bool in_place = false;
  bool with_unsafe = false;
  bool inline_ifile = false;
  bool comment_out = false;
  // format
  std::size_t indent = 2;
  bool check = false;
  bool one_address_a_line = false;
  // lsp
  bool stdio = false;
  // list
  std::vector<std::string> names;
  std::vector<std::string> verdicts;
};

inline constexpr char version[] = "kztns " KZOCI_VERSION;

// A subcommand: all of them read a names file. The statuses are those that it has of its
// own.
CLI::App *add_command(CLI::App &app, const char *name, const char *purpose, const char *statuses,
                      Arguments &arguments);

// For a subcommand that takes no identifier.
void add_positional_file(CLI::App *command, Arguments &arguments);

// What standard input is called; for a subcommand that reads it where the file is "-".
void add_stdin_name(CLI::App *command, Arguments &arguments);

// For a subcommand that writes the file anew: what becomes of the result. One excludes the other.
struct WriteOptions {
  CLI::Option *diff;
  CLI::Option *in_place;
};
WriteOptions add_write_options(CLI::App *command, Arguments &arguments);

// Rules that are left out.
void add_disable(CLI::App *command, const char *purpose, Arguments &arguments);
RuleSet disabled_rules(const Arguments &arguments);

// A check of a word for a rule.
const CLI::Validator &is_rule();

// What is wrong with a word that is none of those expected.
std::string unknown_word(std::string_view kind, std::string_view word, const std::string &expected);

// A check of an option's word, which has to be one of these; kind is what they are.
CLI::Validator is_one_of_these(std::string_view kind, std::vector<std::string_view> words);

// A word of an option and what it stands for.
template <class Meaning>
struct Choice {
  std::string_view word;
  Meaning meaning;
};

template <class Meaning, std::size_t count>
std::vector<std::string_view> words_of(const Choice<Meaning> (&choices)[count]) {
  std::vector<std::string_view> words;
  for (const Choice<Meaning> &choice : choices) words.push_back(choice.word);
  return words;
}

// What a word stands for that has been checked to be one of the choices.
template <class Meaning, std::size_t count>
Meaning chosen(const Choice<Meaning> (&choices)[count], std::string_view word) {
  std::size_t i = 0;
  while (i + 1 < count && choices[i].word != word) ++i;
  return choices[i].meaning;
}

// --format for a subcommand that prints a report, with the words that it takes.
void add_report_format(CLI::App *command, std::vector<std::string_view> words,
                       Arguments &arguments);

// The names file that the command line names.
std::optional<std::string> given_file(const CLI::App &command, const Arguments &arguments);

void add_check(CLI::App &app, Arguments &arguments);
int run_check(const CLI::App &command, const Arguments &arguments);

void add_fix(CLI::App &app, Arguments &arguments);
int run_fix(const CLI::App &command, const Arguments &arguments);

void add_format(CLI::App &app, Arguments &arguments);
int run_format(const CLI::App &command, const Arguments &arguments);

void add_lsp(CLI::App &app, Arguments &arguments);
int run_lsp();

void add_list(CLI::App &app, Arguments &arguments);
int run_list(const CLI::App &command, const Arguments &arguments);

}  // namespace kztns
