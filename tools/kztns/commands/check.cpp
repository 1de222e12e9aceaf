#include "commands/check.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "io/exit_status.h"
#include "io/names_file.h"
#include "io/output.h"
#include "io/progress.h"
#include "rules/check_file.h"

namespace kztns {
namespace {

std::string render(const CheckReport &report, const CheckOptions &options) {
  const bool color = wants_color(options.color);
  return options.format->render(report, {color, color || isatty(STDOUT_FILENO) != 0});
}

void make_warnings_errors(CheckReport &report) {
  for (Finding &finding : report.findings)
    if (finding.severity == Severity::warning) finding.severity = Severity::error;
  std::size_t &warnings = report.severities[static_cast<std::size_t>(Severity::warning)];
  report.severities[static_cast<std::size_t>(Severity::error)] += warnings;
  warnings = 0;
}

CheckReport make_report(const std::string &path, std::string text, const CheckOptions &options) {
  const NamesText names(std::move(text));
  Progress progress(names.size());
  CheckRequest request;
  request.file = path;
  request.with_entries = options.format->with_entries;
  request.progress = [&progress](Offset at) { progress.at(at); };
  CheckReport report = check_file(names, request);
  if (options.strict) make_warnings_errors(report);
  return report;
}

}  // namespace

bool wants_color(ColorChoice choice) {
  if (choice != ColorChoice::automatic) return choice == ColorChoice::always;
  const char *const no_color = std::getenv("NO_COLOR");
  return (no_color == nullptr || *no_color == '\0') && isatty(STDOUT_FILENO) != 0;
}

int check(const CheckOptions &options) {
  std::string path;
  std::optional<std::string> text = read_names_file(options.file, options.max_size, path);
  if (!text) return exit_no_input;
  const CheckReport report = make_report(path, std::move(*text), options);
  const std::string rendered = render(report, options);
  std::fwrite(rendered.data(), 1, rendered.size(), stdout);
  const int written = finish_output();
  if (written != exit_success) return written;
  return report.severities[static_cast<std::size_t>(Severity::error)] > 0 ? exit_findings
                                                                          : exit_success;
}

}  // namespace kztns
