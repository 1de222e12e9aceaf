#include "check.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "examine.h"
#include "exit_status.h"
#include "names_file_choice.h"
#include "output.h"
#include "progress.h"
#include "render_json.h"
#include "render_sarif.h"
#include "render_text.h"

namespace kztns {
namespace {

std::string render(const Report &report, const CheckOptions &options) {
  switch (options.format) {
    case ReportFormat::json:
      return render_json(report);
    case ReportFormat::sarif:
      return render_sarif(report);
    case ReportFormat::text:
      break;
  }
  const bool color = wants_color(options.color);
  return render_text(report, {color, color || isatty(STDOUT_FILENO) != 0});
}

void make_warnings_errors(Report &report) {
  for (Finding &finding : report.findings)
    if (finding.severity == Severity::warning) finding.severity = Severity::error;
  std::size_t &warnings = report.severities[static_cast<std::size_t>(Severity::warning)];
  report.severities[static_cast<std::size_t>(Severity::error)] += warnings;
  warnings = 0;
}

Report make_report(const std::string &path, std::string text, const CheckOptions &options) {
  const NamesText names(std::move(text));
  Progress progress(names.size());
  Examination examination;
  examination.file = path;
  examination.with_entries = options.format == ReportFormat::json;
  examination.progress = [&progress](Offset at) { progress.at(at); };
  Report report = examine(names, examination);
  if (options.strict) make_warnings_errors(report);
  return report;
}

}  // namespace

std::optional<std::string> read_names_file(const std::optional<std::string> &file,
                                           std::uint64_t max_size, std::string &path) {
  const std::optional<FileChoice> chosen = choose_file(file);
  if (!chosen) {
    complain("names file", "none of KZCI_TNS_FILE, TNS_ADMIN and ORACLE_HOME is set");
    return std::nullopt;
  }
  path = chosen->path;
  ReadFault fault;
  std::optional<std::string> text = read_file(path, max_size, fault);
  if (!text) complain(quoted(visible(path)), fault.text);
  return text;
}

bool wants_color(ColorChoice choice) {
  if (choice != ColorChoice::automatic) return choice == ColorChoice::always;
  const char *const no_color = std::getenv("NO_COLOR");
  return (no_color == nullptr || *no_color == '\0') && isatty(STDOUT_FILENO) != 0;
}

int check(const CheckOptions &options) {
  std::string path;
  std::optional<std::string> text = read_names_file(options.file, options.max_size, path);
  if (!text) return exit_no_input;
  const Report report = make_report(path, std::move(*text), options);
  const std::string rendered = render(report, options);
  std::fwrite(rendered.data(), 1, rendered.size(), stdout);
  const int written = finish_output();
  if (written != exit_success) return written;
  return report.severities[static_cast<std::size_t>(Severity::error)] > 0 ? exit_findings
                                                                          : exit_success;
}

}  // namespace kztns
