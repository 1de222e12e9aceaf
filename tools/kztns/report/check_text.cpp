#include "report/check_text.h"

#include "report/check_formats.h"
#include "text/width.h"

namespace kztns {
namespace {

constexpr char bold[] = "\x1b[1m";
constexpr char reset[] = "\x1b[0m";
constexpr char green[] = "\x1b[32m";

const char *color_of(Severity severity) {
  switch (severity) {
    case Severity::error:
      return "\x1b[1;31m";
    case Severity::warning:
      return "\x1b[1;35m";
    case Severity::note:
      return "\x1b[1;36m";
  }
  return reset;
}

// Pieces of text, in colour where that is wanted.
class Painter {
 public:
  explicit Painter(bool color) : color_(color) {}

  void add(std::string_view text) { text_ += text; }
  void add(const char *color, std::string_view text) {
    if (color_) text_ += color;
    text_ += text;
    if (color_) text_ += reset;
  }
  std::string take() { return std::move(text_); }

 private:
  bool color_;
  std::string text_;
};

// From the entry on.
std::string message(const Finding &finding, const std::string &remedy) {
  std::string text;
  if (!finding.entry.empty()) text += excerpt(finding.entry) + ": ";
  if (!finding.path.empty()) text += finding.path + ": ";
  return text + finding.text + "; " + remedy + " [" + std::string(row_of(finding.rule).id) + "]";
}

std::string line(const std::string &file, const Finding &finding, bool color) {
  Painter painter(color);
  painter.add(bold, visible(file) + ":" + to_string(finding.position) + ":");
  painter.add(" ");
  painter.add(color_of(finding.severity), std::string(name_of(finding.severity)) + ":");
  painter.add(" ");
  painter.add(message(finding, finding.remedy));
  return painter.take();
}

void add_source(Painter &painter, const Finding &finding) {
  const std::string shown = with_caret(finding.source, finding.caret);
  const std::size_t caret_line = shown.find('\n') + 1;
  painter.add(shown.substr(0, caret_line));
  painter.add(green, shown.substr(caret_line));
  painter.add("\n");
}

// What can be mended, as the end of a summary.
std::string fixable(const FixCounts &fixes) {
  const std::string unsafe = std::to_string(fixes.unsafe);
  const std::string begin = fixes.complete ? "; " : "; at least ";
  if (fixes.safe == 0)
    return fixes.unsafe == 0 ? "" : begin + unsafe + " fixable with kztns fix --unsafe";
  return begin + std::to_string(fixes.safe) + " fixable with kztns fix" +
         (fixes.unsafe == 0 ? "" : " (" + unsafe + " more with --unsafe)");
}

void add_report(Painter &painter, const CheckReport &report, const TextStyle &style) {
  for (const Finding &finding : report.findings) {
    painter.add(line(report.file, finding, style.color) + "\n");
    if (style.source) add_source(painter, finding);
  }
  painter.add(left_out_lines(report));
  painter.add(visible(report.file) + ": " + summary(totals_of(report)) + "\n");
}

}  // namespace

std::string finding_line(const std::string &file, const Finding &finding) {
  return line(file, finding, false);
}

std::string fixed_line(const std::string &file, const Finding &finding, const std::string &done) {
  const bool guessed = finding.fix.applicability == Applicability::unsafe;
  return visible(file) + ":" + to_string(finding.position) +
         (guessed ? ": fixed (unsafe): " : ": fixed: ") + message(finding, done);
}

std::string with_caret(const std::string &source, std::size_t caret) {
  // What is printed before the caret, blank by blank; tabs stay tabs.
  std::string shown;
  std::string under;
  for (std::size_t begin = 0; begin < source.size();) {
    const std::size_t tab = source.find('\t', begin);
    const std::size_t end = std::min(tab, source.size());
    if (begin < caret) {
      under.append(width_of(visible(source.substr(begin, std::min(end, caret) - begin))), ' ');
      if (tab < caret) under += '\t';
    }
    shown += visible(source.substr(begin, end - begin));
    if (tab != std::string::npos) shown += '\t';
    begin = end + 1;
  }
  return "  " + shown + "\n  " + under + "^";
}

std::string left_out_lines(const CheckReport &report) {
  std::string text;
  for (std::size_t i = 0; i < rule_count; ++i) {
    const auto rule = static_cast<Rule>(i);
    const std::size_t count = left_out(report, rule);
    if (count > 0)
      text += visible(report.file) + ": and " + std::to_string(count) + " more of [" +
              std::string(row_of(rule).id) + "]\n";
  }
  return text;
}

std::string summary(const RunTotals &totals) {
  std::size_t all = 0;
  for (const std::size_t count : totals.verdicts) all += count;
  std::string text = std::to_string(all) + (all == 1 ? " entry:" : " entries:");
  for (std::size_t i = 0; i < verdict_count; ++i)
    text += (i > 0 ? ", " : " ") + std::to_string(totals.verdicts[i]) + " " +
            std::string(name_of(static_cast<Verdict>(i)));
  return text + fixable(totals.fixes);
}

std::string render_text(const CheckRun &run, const TextStyle &style) {
  Painter painter(style.color);
  for (const CheckReport &report : run.reports) add_report(painter, report, style);
  if (run.reports.size() + run.unread.size() > 1) {
    painter.add(std::to_string(run.reports.size()) +
                (run.reports.size() == 1 ? " file: " : " files: ") + summary(totals_of(run)));
    if (!run.unread.empty())
      painter.add("; " + std::to_string(run.unread.size()) +
                  (run.unread.size() == 1 ? " more file" : " more files") + " cannot be read");
    painter.add("\n");
  }
  return painter.take();
}

}  // namespace kztns
