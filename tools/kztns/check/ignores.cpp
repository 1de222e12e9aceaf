#include "check/ignores.h"

#include <algorithm>
#include <string>

#include "text/spelling.h"

namespace kztns {
namespace {

constexpr std::string_view verb = "ignore";
constexpr std::string_view blanks_in_line = " \t";

// Words that are no rules; a file with more of them is none that anybody wrote.
constexpr std::size_t most_unknown = 10'000;

// One of the comments.
struct Comment {
  Offset at;               // of the mark
  Offset list;             // what it names
  Offset end;              // of the line
  std::string_view names;  // up to the end of the line, or to " --"
  bool alone;              // on a line of its own
};

bool is_blank_in_line(char c) { return blanks_in_line.find(c) != std::string_view::npos; }

std::size_t pass_blanks_back(std::string_view text, std::size_t at) {
  while (at > 0 && is_blank_in_line(text[at - 1])) --at;
  return at;
}

// Whether a comment can begin at a "#": within a word it would belong to that.
bool can_begin(std::string_view text, std::size_t at) {
  return at == 0 || std::string_view(" \t\r\n()=\"#").find(text[at - 1]) != std::string_view::npos;
}

bool at_begin_of_line(std::string_view text, std::size_t at) {
  return at == 0 || text[at - 1] == '\n';
}

// The comment whose mark is at a place; absent when that is no such comment.
std::optional<Comment> comment_at(std::string_view text, std::size_t at) {
  const std::size_t sign = pass_blanks_back(text, at);
  if (sign == 0 || text[sign - 1] != '#' || !can_begin(text, sign - 1)) return std::nullopt;
  const std::size_t word = text.find_first_not_of(blanks_in_line, at + ignore_mark.size());
  if (word == std::string_view::npos || !text.substr(word).starts_with(verb)) return std::nullopt;
  const std::size_t list = word + verb.size();
  std::string_view rest = text.substr(0, text.find_first_of("\r\n", list));
  if (list < rest.size() && !is_blank_in_line(rest[list])) return std::nullopt;
  const Offset end = static_cast<Offset>(rest.size());
  rest = rest.substr(0, rest.find(" --", list));
  return Comment{static_cast<Offset>(at), static_cast<Offset>(list), end, rest.substr(list),
                 at_begin_of_line(text, pass_blanks_back(text, sign - 1))};
}

std::vector<Comment> comments_of(std::string_view text) {
  std::vector<Comment> comments;
  for (std::size_t at = text.find(ignore_mark); at != std::string_view::npos;
       at = text.find(ignore_mark, at)) {
    const std::optional<Comment> comment = comment_at(text, at);
    if (comment) comments.push_back(*comment);
    at = comment ? comment->end : at + ignore_mark.size();
  }
  return comments;
}

// Where the first line that is no comment begins after the line of a place. Where it
// comes upon a place of which that is known already, it stops.
std::size_t line_after_comments(std::string_view text, std::size_t at, std::size_t known_at,
                                std::size_t known) {
  for (;;) {
    at = text.find('\n', at);
    if (at == std::string_view::npos) return text.size();
    const std::size_t line = at + 1;
    const std::size_t begin = text.find_first_not_of(blanks_in_line, line);
    if (begin == std::string_view::npos || text[begin] != '#') return line;
    if (known_at >= line && known_at < text.find('\n', line)) return known;
    at = line;
  }
}

bool is_before(Position left, Position right) {
  return left.line != right.line ? left.line < right.line : left.column < right.column;
}

// Finds the entry that a finding is about.
class EntriesOfFindings {
 public:
  explicit EntriesOfFindings(const std::vector<ReportEntry> &entries) : entries_(entries) {
    for (const ReportEntry &entry : entries) by_name_[entry.name].push_back(&entry);
  }

  // Null for none.
  const ReportEntry *entry_of(const Finding &finding) const {
    const auto is_after = [](Position place, const ReportEntry &entry) {
      return is_before(place, entry.position);
    };
    if (finding.entry.empty()) {
      const auto next =
          std::upper_bound(entries_.begin(), entries_.end(), finding.position, is_after);
      return next == entries_.begin() ? nullptr : &*std::prev(next);
    }
    const auto found = by_name_.find(finding.entry);
    if (found == by_name_.end()) return nullptr;
    const auto next = std::upper_bound(
        found->second.begin(), found->second.end(), finding.position,
        [&](Position place, const ReportEntry *entry) { return is_after(place, *entry); });
    return next == found->second.begin() ? nullptr : *std::prev(next);
  }

 private:
  const std::vector<ReportEntry> &entries_;
  std::unordered_map<std::string_view, std::vector<const ReportEntry *>> by_name_;
};

}  // namespace

Ignores::Ignores(const NamesText &text) {
  const std::vector<Comment> comments = comments_of(text.text());
  std::size_t known_at = std::string::npos;
  std::size_t known = 0;
  // From the last to the first, since one above another holds for the same entry.
  for (auto comment = comments.rbegin(); comment != comments.rend(); ++comment) {
    const RuleSet rules = read_rules(comment->names, comment->list);
    if (rules.any()) by_line_[text.position(comment->at).line] |= rules;
    if (!comment->alone) continue;
    known = line_after_comments(text.text(), comment->at, known_at, known);
    known_at = comment->at;
    if (rules.any()) by_line_of_entry_[text.position(static_cast<Offset>(known)).line] |= rules;
  }
  std::reverse(unknown_.begin(), unknown_.end());
}

RuleSet Ignores::read_rules(std::string_view list, Offset at) {
  RuleSet rules;
  bool names_some = false;
  for (std::size_t begin = 0; begin < list.size();) {
    const std::size_t end = std::min(list.find_first_of(", \t", begin), list.size());
    const std::string_view word = list.substr(begin, end - begin);
    const std::optional<Rule> rule = rule_of(word);
    if (rule) rules.set(static_cast<std::size_t>(*rule));
    if (!rule && !word.empty() && unknown_.size() < most_unknown)
      unknown_.push_back({at + static_cast<Offset>(begin), word});
    names_some = names_some || !word.empty();
    begin = end + 1;
  }
  if (!names_some) unknown_.push_back({at - static_cast<Offset>(verb.size()), {}});
  return rules;
}

void Ignores::report_unknown(Findings &findings) const {
  for (const auto &[at, word] : unknown_) {
    findings.add(Rule::unknown_rule, [&, at = at, word = word] {
      const std::string_view near = near_word(word, rule_ids());
      return NewFinding{.at = at,
                        .text = word.empty() ? "this comment names no rule to ignore"
                                             : "unknown rule " + excerpt(word) + " in a comment",
                        .remedy = near.empty() ? "" : "did you mean " + std::string(near) + "?"};
    });
  }
}

void Ignores::apply(CheckReport &report) const {
  const auto holds = [](const RulesOfLines &lines, std::uint32_t line, Rule rule) {
    const auto found = lines.find(line);
    return found != lines.end() && found->second[static_cast<std::size_t>(rule)];
  };
  const EntriesOfFindings entries(report.entries);
  std::erase_if(report.findings, [&](const Finding &finding) {
    if (holds(by_line_, finding.position.line, finding.rule)) return true;
    const ReportEntry *const entry = entries.entry_of(finding);
    return entry != nullptr && holds(by_line_of_entry_, entry->position.line, finding.rule);
  });
}

}  // namespace kztns
