// kztns: what a connect identifier resolves to, and what is wrong where it does
// not.
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <new>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "commands/command_line.h"
#include "commands/settings.h"
#include "commands/show.h"
#include "commands/why.h"
#include "io/exit_status.h"
#include "io/names_file.h"
#include "io/output.h"
#include "io/system.h"
#include "kzoci/platform/level_names.h"
#include "text/escape.h"
#include "text/spelling.h"
#include "trace/key_words.h"

namespace {

using kztns::add_command;
using kztns::Arguments;
using kztns::given_file;

// A level on which the module logs faults or its steps; absent for another word.
std::optional<log_level> shown_level(std::string_view word) {
  for (int level = LOG_LEVEL_TRACE; level <= LOG_LEVEL_ERROR; ++level) {
    const auto value = static_cast<log_level>(level);
    if (kztns::equal_but_for_case(word, kzoci::platform::level_name(value))) return value;
  }
  return std::nullopt;
}

// "trace, debug, info, warn or error"
std::string shown_level_names() {
  constexpr std::size_t count = LOG_LEVEL_ERROR - LOG_LEVEL_TRACE + 1;
  const auto *const first = std::begin(kzoci::platform::level_names);
  return CLI::detail::to_lower(kztns::one_of({first, first + count}));
}

// What is wrong with a word for a level; empty for nothing.
std::string level_fault(const std::string &word) {
  if (shown_level(word)) return {};
  return kztns::unknown_word("level", word, shown_level_names());
}

constexpr kztns::Choice<kztns::ShowWhat> tree_formats[] = {{"tree", kztns::ShowWhat::tree},
                                                           {"json", kztns::ShowWhat::json},
                                                           {"dot", kztns::ShowWhat::dot},
                                                           {"svg", kztns::ShowWhat::svg}};

constexpr kztns::Choice<kztns::WhyFormat> why_formats[] = {{"text", kztns::WhyFormat::text},
                                                           {"json", kztns::WhyFormat::json}};

// The exit statuses that each subcommand has of its own.
constexpr char show_statuses[] =
    "0 found and shown, 1 not found, 2 malformed or without what is asked for,\n69 graphviz is not "
    "installed or fails";
constexpr char why_statuses[] = "0 found, 1 not found, 2 malformed";
constexpr char settings_statuses[] = "0 shown, 1 no names file, 2 malformed";

void add_log(CLI::App *command, Arguments &arguments) {
  command
      ->add_option("--log", arguments.level,
                   "Show log records from this level on, on standard error: " + shown_level_names())
      ->type_name("LEVEL")
      ->check(CLI::Validator(level_fault, ""));
}

void add_identifier(CLI::App *command, Arguments &arguments) {
  command
      ->add_option("IDENTIFIER", arguments.identifier,
                   "Net service name, or literal descriptor \"(DESCRIPTION=...)\"")
      ->required();
}

void add_show(CLI::App &app, Arguments &arguments) {
  CLI::App *const show = add_command(app, "show", "Resolve an identifier and print its tree",
                                     show_statuses, arguments);
  add_log(show, arguments);
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
      ->check(kztns::is_one_of_these("format", kztns::words_of(tree_formats)))
      ->excludes(dblink)
      ->excludes(session);
}

void add_settings(CLI::App &app, Arguments &arguments) {
  CLI::App *const settings =
      add_command(app, "settings", "Print the system variables in force for a names file",
                  settings_statuses, arguments);
  add_log(settings, arguments);
  kztns::add_positional_file(settings, arguments);
}

void add_why(CLI::App &app, Arguments &arguments) {
  CLI::App *const why =
      add_command(app, "why", "Explain one lookup, step by step", why_statuses, arguments);
  add_log(why, arguments);
  add_identifier(why, arguments);
  kztns::add_report_format(why, kztns::words_of(why_formats), arguments);
}

kztns::ShowWhat shown_part(const Arguments &arguments) {
  if (arguments.dblink) return kztns::ShowWhat::dblink;
  return arguments.session ? kztns::ShowWhat::session
                           : kztns::chosen(tree_formats, arguments.tree_format);
}

int run_lookup(const CLI::App &command, const Arguments &arguments) {
  kztns::LookupOptions options;
  options.file = given_file(command, arguments);
  options.from_input = options.file == kztns::standard_input;
  if (options.from_input) options.file = arguments.stdin_name;
  options.max_size = arguments.max_size;
  if (command.count("--log") > 0) options.shown = shown_level(arguments.level);
  if (command.get_name() == "settings") return kztns::settings(options);
  if (command.get_name() == "why")
    return kztns::why(arguments.identifier, kztns::chosen(why_formats, arguments.format), options);
  return kztns::show(arguments.identifier, shown_part(arguments), options);
}

int run(const CLI::App &command, const Arguments &arguments) {
  if (command.get_name() == "check") return kztns::run_check(command, arguments);
  if (command.get_name() == "fix") return kztns::run_fix(command, arguments);
  if (command.get_name() == "format") return kztns::run_format(command, arguments);
  if (command.get_name() == "lsp") return kztns::run_lsp();
  if (command.get_name() == "list") return kztns::run_list(command, arguments);
  return run_lookup(command, arguments);
}

// What was being read, as a message names it.
std::string subject_of(const CLI::App &app, Arguments &arguments) {
  std::string &identifier = arguments.identifier;
  if (IsDescriptionTns(identifier.data(), static_cast<ub4>(identifier.size())))
    return "literal descriptor";
  if (arguments.paths.size() > 1) return "names files";
  if (app.got_subcommand("lsp")) return "document";
  std::optional<std::string> given;
  if (!arguments.file.empty()) given = arguments.file;
  if (!arguments.paths.empty()) given = arguments.paths[0];
  const std::optional<kztns::FileChoice> file = kztns::choose_file(given);
  if (!file) return "names file";
  return kztns::quoted(kztns::visible(file->path));
}

// The first argument that is no option; null for none.
const char *command_word(int argc, char **argv) {
  for (int i = 1; i < argc; ++i)
    if (argv[i][0] != '-') return argv[i];
  return nullptr;
}

// Whether an option is where the command belongs, or the command is one that there is
// not; if so, says so.
bool tell_wrong_command(const CLI::App &app, int argc, char **argv) {
  const char *const word = command_word(argc, argv);
  if (word == nullptr) return false;
  if (argv[1] != word && argv[1] != std::string_view("--")) {
    kztns::complain(kztns::excerpt(argv[1]),
                    "options follow the command: kztns COMMAND [OPTIONS] ...");
    return true;
  }
  std::vector<std::string_view> names;
  for (const CLI::App *const command : app.get_subcommands({}))
    names.push_back(command->get_name());
  if (std::find(names.begin(), names.end(), word) != names.end()) return false;
  const std::string_view near = kztns::near_word(word, names);
  std::string what = "unknown command";
  if (!near.empty()) what += "; did you mean " + std::string(near) + "?";
  kztns::complain(kztns::quoted(kztns::excerpt(word)), what);
  return true;
}

// Help and version go to standard output, all else is reported on standard error.
int finish_without_command(const CLI::App &app, const CLI::ParseError &error, int argc,
                           char **argv) {
  if (error.get_exit_code() != 0 && tell_wrong_command(app, argc, argv)) return kztns::exit_usage;
  std::ostringstream text;
  std::ostringstream complaint;
  const bool asked_for = app.exit(error, text, complaint) == 0;
  std::fputs(text.str().c_str(), stdout);
  std::fputs(complaint.str().c_str(), stderr);
  return asked_for ? kztns::finish_output() : kztns::exit_usage;
}

// What the arguments hold is quoted in the words of their reader.
std::string usage_message(const CLI::App *, const CLI::Error &error) {
  return "kztns: " + kztns::visible(error.what()) + "\nRun with --help for more information.\n";
}

}  // namespace

int main(int argc, char **argv) {
  kztns::prepare_streams();
  CLI::App app("Resolves connect identifiers and checks names files.", "kztns");
  app.set_version_flag("--version", kztns::version);
  app.require_subcommand(1);
  // A path may begin with "/" on Windows, too.
  app.allow_windows_style_options(false);
  app.failure_message(usage_message);
  Arguments arguments;
  add_show(app, arguments);
  add_settings(app, arguments);
  add_why(app, arguments);
  kztns::add_check(app, arguments);
  kztns::add_fix(app, arguments);
  kztns::add_format(app, arguments);
  kztns::add_list(app, arguments);
  kztns::add_lsp(app, arguments);
  try {
    app.parse(argc, argv);
    return run(*app.get_subcommands().front(), arguments);
  } catch (const CLI::ParseError &error) {
    return finish_without_command(app, error, argc, argv);
  } catch (const std::bad_alloc &) {
    kztns::complain(subject_of(app, arguments), arguments.paths.size() > 1
                                                    ? "not enough memory to read them"
                                                    : "not enough memory to read it");
    return kztns::exit_no_memory;
  }
}
