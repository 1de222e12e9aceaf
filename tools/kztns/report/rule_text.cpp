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
    {"fixed", "What kztns fix makes of it:"},
    {"fixed-unsafe", "What kztns fix --unsafe makes of it:"},
};

std::string_view label_of(std::string_view kind) {
  for (const BlockLabel &row : block_labels)
    if (row.kind == kind) return row.label;
  return kind;
}

// A text without the marks of code and links.
std::string plain(std::string_view markdown) {
  std::string text;
  while (!markdown.empty()) {
    const std::size_t mark = std::min(markdown.find_first_of("`["), markdown.size());
    text += markdown.substr(0, mark);
    markdown.remove_prefix(mark);
    if (markdown.empty()) break;
    const bool is_code = markdown[0] == '`';
    const std::size_t end = markdown.find(is_code ? "`" : "](", 1);
    const std::size_t after = is_code ? end : markdown.find(')', end);
    if (after == std::string_view::npos) return text.append(markdown);
    text += markdown.substr(1, end - 1);
    markdown.remove_prefix(after + 1);
  }
  return text;
}

std::string paragraphs(std::string_view markdown) {
  const std::size_t begin = std::min(markdown.find_first_not_of('\n'), markdown.size());
  const std::size_t end = markdown.find_last_not_of('\n') + 1;
  return begin < end ? plain(markdown.substr(begin, end - begin)) + "\n\n" : "";
}

std::string indented(std::string_view block) {
  std::string text;
  while (!block.empty()) {
    const std::size_t end = std::min(block.find('\n'), block.size() - 1) + 1;
    text += block[0] == '\n' ? "" : "    ";
    text += block.substr(0, end);
    block.remove_prefix(end);
  }
  return text;
}

// A section of the documents for a terminal: text and fenced blocks in turn.
std::string plain_section(std::string_view markdown) {
  constexpr std::string_view fence = "\n```";
  std::string text;
  while (!markdown.empty()) {
    const std::size_t begin = std::min(markdown.find(fence), markdown.size());
    text += paragraphs(markdown.substr(0, begin));
    markdown.remove_prefix(std::min(begin + fence.size(), markdown.size()));
    if (markdown.empty()) break;
    const std::size_t kind = markdown.find('\n');
    const std::size_t end = markdown.find(fence, kind);
    text.append(label_of(markdown.substr(0, kind))).append("\n\n");
    text += indented(markdown.substr(kind + 1, end - kind)) + "\n";
    markdown.remove_prefix(std::min(end + fence.size(), markdown.size()));
  }
  return text;
}

// What --rules says of the fixes of a rule.
std::string_view words_of(FixKinds kinds) {
  switch (kinds) {
    case FixKinds::none:
      return "";
    case FixKinds::safe:
      return "safe";
    case FixKinds::unsafe:
      return "unsafe";
    case FixKinds::both:
      return "safe or unsafe";
  }
  return "";
}

std::string padded(std::string_view text, std::size_t width) {
  return std::string(text) + std::string(width + 2 - text.size(), ' ');
}

}  // namespace

std::string rule_list() {
  std::size_t width = 0;
  for (const std::string_view id : rule_ids()) width = std::max(width, id.size());
  std::string text;
  for (std::size_t i = 0; i < rule_count; ++i) {
    const RuleRow &rule = row_of(static_cast<Rule>(i));
    text += padded(rule.id, width) +
            padded(name_of(rule.severity), name_of(Severity::warning).size()) +
            padded(words_of(rule.fixes), words_of(FixKinds::both).size()) + std::string(rule.text) +
            "\n";
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
         "What to do: " + std::string(row.remedy) + ".\n";
}

}  // namespace kztns
