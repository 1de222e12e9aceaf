#include "report/check_text.h"

#include "report/check_formats.h"

namespace kztns {
namespace {

constexpr char bold[] = "\x1b[1m";
constexpr char plain[] = "\x1b[0m";
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
  return plain;
}

// Pieces of text, in colour where that is wanted.
class Painter {
 public:
  explicit Painter(bool color) : color_(color) {}

  void add(std::string_view text) { text_ += text; }
  void add(const char *color, std::string_view text) {
    if (color_) text_ += color;
    text_ += text;
    if (color_) text_ += plain;
  }
  std::string take() { return std::move(text_); }

 private:
  bool color_;
  std::string text_;
};

std::string line(const std::string &file, const Finding &finding, bool color) {
  Painter painter(color);
  painter.add(bold, visible(file) + ":" + to_string(finding.position) + ":");
  painter.add(" ");
  painter.add(color_of(finding.severity), std::string(name_of(finding.severity)) + ":");
  painter.add(" ");
  if (!finding.entry.empty()) painter.add(excerpt(finding.entry) + ": ");
  if (!finding.path.empty()) painter.add(finding.path + ": ");
  painter.add(finding.text + "; " + finding.remedy + " [" + std::string(row_of(finding.rule).id) +
              "]");
  return painter.take();
}

void add_source(Painter &painter, const Finding &finding) {
  const std::string shown = with_caret(finding.source, finding.caret);
  const std::size_t caret_line = shown.find('\n') + 1;
  painter.add(shown.substr(0, caret_line));
  painter.add(green, shown.substr(caret_line));
  painter.add("\n");
}

}  // namespace

std::string finding_line(const std::string &file, const Finding &finding) {
  return line(file, finding, false);
}

std::string with_caret(const std::string &source, std::size_t caret) {
  // What is printed before the caret, blank by blank; tabs stay tabs.
  std::string shown;
  std::string under;
  for (std::size_t begin = 0; begin < source.size();) {
    const std::size_t tab = source.find('\t', begin);
    const std::size_t end = std::min(tab, source.size());
    if (begin < caret) {
      const std::string before = visible(source.substr(begin, std::min(end, caret) - begin));
      for (const char c : before)
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) under += ' ';
      if (tab < caret) under += '\t';
    }
    shown += visible(source.substr(begin, end - begin));
    if (tab != std::string::npos) shown += '\t';
    begin = end + 1;
  }
  return "  " + shown + "\n  " + under + "^";
}

std::string summary(const CheckReport &report) {
  std::size_t all = 0;
  for (const std::size_t count : report.verdicts) all += count;
  std::string text = std::to_string(all) + (all == 1 ? " entry:" : " entries:");
  for (std::size_t i = 0; i < verdict_count; ++i)
    text += (i > 0 ? ", " : " ") + std::to_string(report.verdicts[i]) + " " +
            std::string(name_of(static_cast<Verdict>(i)));
  return text;
}

std::string render_text(const CheckReport &report, const TextStyle &style) {
  Painter painter(style.color);
  for (const Finding &finding : report.findings) {
    painter.add(line(report.file, finding, style.color) + "\n");
    if (style.source) add_source(painter, finding);
  }
  for (std::size_t i = 0; i < rule_count; ++i)
    if (report.left_out[i] > 0)
      painter.add(visible(report.file) + ": and " + std::to_string(report.left_out[i]) +
                  " more of [" + std::string(row_of(static_cast<Rule>(i)).id) + "]\n");
  painter.add(visible(report.file) + ": " + summary(report) + "\n");
  return painter.take();
}

}  // namespace kztns
