#include "commands/check.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "check/check_selected.h"
#include "io/exit_status.h"
#include "io/input_files.h"
#include "io/names_file.h"
#include "io/output.h"
#include "io/progress.h"
#include "io/system.h"
#include "report/rule_text.h"

namespace kztns {
namespace {

void make_warnings_errors(CheckReport &report) {
  for (Finding &finding : report.findings)
    if (finding.severity == Severity::warning) finding.severity = Severity::error;
  for (SeverityCounts &counts : report.left_out)
    counts[static_cast<std::size_t>(Severity::error)] +=
        std::exchange(counts[static_cast<std::size_t>(Severity::warning)], 0);
}

// Checks one file after the other.
class Checker {
 public:
  explicit Checker(const CheckOptions &options) : options_(options) {}

  CheckRun run() {
    if (options_.paths.empty()) check_chosen();
    for (const std::string &path : options_.paths) check_path(path);
    run_.several = run_.several || options_.paths.size() > 1;
    return std::move(run_);
  }

 private:
  void check_chosen() {
    if (const std::optional<FileChoice> chosen = choose_file(std::nullopt))
      return check_named(chosen->path);
    complain("names file", no_file_chosen());
    run_.unread.push_back({"names file", no_file_chosen()});
  }

  void check_path(const std::string &path) {
    ReadFault fault;
    if (path == standard_input)
      check_text(options_.stdin_name, read_standard_input(options_.max_size, fault), fault);
    else if (is_folder(path))
      check_folder(path);
    else
      check_named(path);
  }

  void check_folder(const std::string &folder) {
    run_.several = true;
    std::optional<std::string> fault;
    for (const std::string &file : names_files_below(folder, fault)) check_named(file);
    if (fault) leave_unread(folder, *fault);
  }

  void check_named(const std::string &path) {
    ReadFault fault;
    check_text(path, read_file(path, options_.max_size, fault), fault);
  }

  void check_text(const std::string &file, std::optional<std::string> content,
                  const ReadFault &fault) {
    if (!content) return leave_unread(file, fault.text);
    const NamesText text(std::move(*content));
    Progress progress(text.size());
    CheckRequest request;
    request.file = file;
    request.with_entries = options_.format->with_entries;
    request.progress = [&progress](Offset at) { progress.at(at); };
    CheckReport report = check_selected(text, request, options_.disabled);
    if (options_.strict) make_warnings_errors(report);
    if (options_.format->with_edits) place_edits(text, report);
    run_.reports.push_back(std::move(report));
  }

  void leave_unread(const std::string &file, const std::string &fault) {
    complain(quoted(visible(file)), fault);
    run_.unread.push_back({file, fault});
  }

  const CheckOptions &options_;
  CheckRun run_;
};

bool fails(const CheckRun &run, FailOn fail_on) {
  const SeverityCounts counts = totals_of(run).severities;
  const bool errors = counts[static_cast<std::size_t>(Severity::error)] > 0;
  const bool warnings = counts[static_cast<std::size_t>(Severity::warning)] > 0;
  return fail_on != FailOn::never && (errors || (fail_on == FailOn::warning && warnings));
}

}  // namespace

bool wants_color(ColorChoice choice) {
  if (choice != ColorChoice::automatic) return choice == ColorChoice::always;
  const char *const no_color = std::getenv("NO_COLOR");
  return (no_color == nullptr || *no_color == '\0') && takes_control_sequences(STDOUT_FILENO);
}

int list_rules() { return print_output(rule_list()); }

int explain_rule(Rule rule) { return print_output(explanation(rule)); }

int check(const CheckOptions &options) {
  const CheckRun run = Checker(options).run();
  const bool color = wants_color(options.color);
  const TextStyle style = {color, color || isatty(STDOUT_FILENO) != 0};
  const int written = print_output(options.format->render(run, style));
  if (written != exit_success) return written;
  if (!run.unread.empty()) return exit_no_input;
  return fails(run, options.fail_on) ? exit_findings : exit_success;
}

}  // namespace kztns
