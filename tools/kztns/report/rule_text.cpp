#include "report/rule_text.h"

#include <algorithm>

#include "rules/rule_sections.h"

namespace kztns {
namespace {

// What a block of the documents is, by the word after its fence.
struct BlockLabel {
  std::string_view kind;
  std::string_view label;
};

constexpr BlockLabel block_labels[] = {
    {"names", "Example:"},
    {"names-without-end", "Example, without a line feed at the end of the file:"},
    {"bytes", "Example, with bytes written as \\xHH:"},
    {"shell", "Example, as a shell makes it:"},
    {"output", "What check says:"},
};

std::string_view label_of(std::string_view kind) {
  for (const BlockLabel &row : block_labels)
    if (row.kind == kind) return row.label;
  return kind;
}

// A line without the marks of code and links.
std::string plain(std::string_view line) {
  std::string text;
  while (!line.empty()) {
    const std::size_t mark = std::min(line.find_first_of("`["), line.size());
    text += line.substr(0, mark);
    line.remove_prefix(mark);
    if (line.empty()) break;
    const std::size_t end = line.find(line[0] == '`' ? "`" : "](", 1);
    const std::size_t after = line[0] == '`' ? end : line.find(')', end);
    if (after == std::string_view::npos) return text.append(line);
    text += line.substr(1, end - 1);
    line.remove_prefix(after + 1);
  }
  return text;
}

// A section of the documents for a terminal.
std::string plain_section(std::string_view markdown) {
  constexpr std::string_view fence = "```";
  std::string text;
  bool in_block = false;
  while (!markdown.empty()) {
    const std::size_t end = std::min(markdown.find('\n'), markdown.size());
    const std::string_view line = markdown.substr(0, end);
    markdown.remove_prefix(std::min(end + 1, markdown.size()));
    if (line.starts_with(fence)) {
      in_block = !in_block;
      if (in_block) text.append(label_of(line.substr(fence.size()))).append("\n\n");
      continue;
    }
    if (in_block) text += line.empty() ? "" : "    ";
    text += (in_block ? std::string(line) : plain(line)) + "\n";
  }
  return text;
}

}  // namespace

std::string rule_list() {
  std::size_t width = 0;
  for (const std::string_view id : rule_ids()) width = std::max(width, id.size());
  std::string text;
  for (std::size_t i = 0; i < rule_count; ++i) {
    const RuleRow &rule = row_of(static_cast<Rule>(i));
    const std::string_view severity = name_of(rule.severity);
    text += std::string(rule.id) + std::string(width + 2 - rule.id.size(), ' ');
    text += std::string(severity) +
            std::string(name_of(Severity::warning).size() + 2 - severity.size(), ' ');
    text += std::string(rule.text) + "\n";
  }
  return text;
}

std::string_view section_of(Rule rule) {
  for (const RuleSection &section : rule_sections())
    if (section.id == row_of(rule).id) return section.markdown;
  return {};
}

std::string explanation(Rule rule) {
  const RuleRow &row = row_of(rule);
  return std::string(row.id) + ": " + std::string(name_of(row.severity)) + ": " +
         std::string(row.text) + ".\n\n" + plain_section(section_of(rule)) +
         "\nWhat to do: " + std::string(row.remedy) + ".\n";
}

}  // namespace kztns
