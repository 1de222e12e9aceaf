#include <unistd.h>

#include "commands/command_line.h"
#include "commands/list.h"
#include "io/names_file.h"
#include "trace/key_words.h"

namespace kztns {
namespace {

constexpr char list_statuses[] = "0 listed, 1 a NAME is not there";

constexpr Choice<std::optional<ListFormat>> list_formats[] = {{"text", std::nullopt},
                                                              {"json", ListFormat::json}};

std::vector<std::string_view> verdict_names() {
  std::vector<std::string_view> names;
  for (std::size_t i = 0; i < verdict_count; ++i) names.push_back(name_of(static_cast<Verdict>(i)));
  return names;
}

VerdictSet verdicts_of(const std::vector<std::string> &words) {
  VerdictSet verdicts;
  if (words.empty()) verdicts.set();
  for (std::size_t i = 0; i < verdict_count; ++i)
    for (const std::string &word : words)
      if (word == name_of(static_cast<Verdict>(i))) verdicts.set(i);
  return verdicts;
}

// Takes the file from the names when it is the first of them.
void take_file(const CLI::App &list, Arguments &arguments) {
  const bool is_given = list.count("--file") > 0;
  if (is_given || arguments.names.empty()) return;
  const std::string &first = arguments.names[0];
  const bool is_file = first == standard_input || access(first.c_str(), F_OK) == 0;
  const bool is_chosen = choose_file(std::nullopt).has_value();
  if (!is_file && is_chosen) return;
  arguments.file = first;
  arguments.names.erase(arguments.names.begin());
}

}  // namespace

void add_list(CLI::App &app, Arguments &arguments) {
  CLI::App *const list =
      add_command(app, "list", "List the entries of a names file", list_statuses, arguments);
  list->add_option("NAME", arguments.names,
                   "List only the entries of these names. Without --file the first one is the "
                   "file, if there is such a file, or if the environment chooses none; - is "
                   "standard input")
      ->type_name("");
  add_stdin_name(list, arguments);
  list->add_option("--verdict", arguments.verdicts,
                   "List only entries with one of these verdicts, separated by commas: " +
                       one_of(verdict_names()))
      ->type_name("VERDICT,...")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->check(is_one_of_these("verdict", verdict_names()).description(""));
  add_report_format(list, words_of(list_formats), arguments);
  list->callback([list, &arguments] { take_file(*list, arguments); });
}

int run_list(const CLI::App &command, const Arguments &arguments) {
  ListOptions options;
  options.file = given_file(command, arguments);
  options.stdin_name = arguments.stdin_name;
  options.names = arguments.names;
  options.max_size = arguments.max_size;
  options.format = chosen(list_formats, arguments.format);
  options.verdicts = verdicts_of(arguments.verdicts);
  return list(options);
}

}  // namespace kztns
