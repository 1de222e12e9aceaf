#include "fixes/file_fixes.h"

#include <algorithm>

#include "fixes/invisible_fixes.h"
#include "scan/further_stops.h"
#include "scan/half_comment.h"
#include "scan/item_text.h"
#include "scan/item_words.h"
#include "scan/left_over.h"
#include "scan/line_prefixes.h"
#include "scan/quoted_entry.h"
#include "scan/stray_text.h"
#include "scan/tokens.h"
#include "scan/written_items.h"
#include "text/characters.h"
#include "text/spelling.h"
#include "text/words.h"

namespace kztns {
namespace {

// "# " before what is between two places of each line.
std::vector<Edit> comment_lines(std::string_view text, Offset begin, Offset end) {
  std::vector<Edit> edits;
  for (Offset at = begin; at < end;) {
    const auto line_end = static_cast<Offset>(std::min<std::size_t>(text.find('\n', at), end));
    const std::string_view line = text.substr(at, line_end - at);
    const std::size_t first = line.find_first_not_of(blanks_of_line);
    if (first != std::string_view::npos && line[first] != '#') {
      const bool whole = at == 0 || text[at - 1] == '\n';
      const Offset place = at + static_cast<Offset>(whole ? 0 : first);
      edits.push_back({place, place, "# "});
    }
    at = line_end + 1;
  }
  write_out_zero_bytes(text, begin, end, edits);
  sort_edits(edits);
  return edits;
}

// Makes a comment of text that is no entry.
Fix commented(std::string_view text, Span span) {
  if (may_be_entry(text, span)) return {};
  return unsafe_fix(comment_lines(text, span.begin, span.end));
}

// "(NAME = (DESCRIPTION = ...))"
Fix without_parentheses_of_entry(std::string_view text, Offset open) {
  const std::optional<WrittenItem> entry = item_at(text, open);
  if (!entry || entry->key.begin == entry->key.end) return {};
  const std::vector<WrittenItem> items = items_from(text, entry->value);
  if (items.empty() || pass_blanks(text, items.back().end) + 1 != entry->end) return {};
  const std::string_view name = text.substr(entry->key.begin, entry->key.end - entry->key.begin);
  if (item_word(name) || !may_be_value(name, key_word(text, items[0]))) return {};
  return unsafe_fix({{open, open + 1, {}}, {entry->end - 1, entry->end, {}}});
}

// After semicolons before an item or an entry on their line; absent for others, which begin a
// comment for other readers.
std::optional<Offset> end_of_separator(std::string_view text, Offset at) {
  const std::size_t before = text.substr(0, at).find_last_not_of(" \t");
  if (text[at] != ';' || before == std::string_view::npos || text[before] == '\n')
    return std::nullopt;
  const std::string_view line = text.substr(0, end_of_line(text, at));
  const std::size_t end = std::min(line.find_first_not_of(';', at), line.size());
  std::size_t open = std::min(line.find_first_not_of(" \t", end), line.size());
  if (line.substr(open).find('=') < line.substr(open).find('('))
    open = std::min(line.find_first_not_of("= \t", end_of_word(line, static_cast<Offset>(open))),
                    line.size());
  const std::vector<WrittenItem> items = items_from(line, static_cast<Offset>(open));
  if (items.empty() || !key_word(text, items[0])) return std::nullopt;
  return static_cast<Offset>(end);
}

// "NAME NAME ="
Fix without_repeated_name(std::string_view text, Offset at) {
  const Offset end = end_of_word(text, at);
  const Offset next = pass_blanks(text, end);
  const std::string_view name = text.substr(at, end - at);
  const Offset next_end = end_of_word(text, next);
  const bool repeats = !name.empty() && text.substr(at, next - at).find('#') == text.npos &&
                       text.substr(next, next_end - next) == name &&
                       text.substr(pass_blanks(text, next_end)).starts_with('=');
  return repeats ? safe_fix({{at, next, {}}}) : Fix();
}

// "NAME": "(...)", of other notations
Fix without_quotes_of_entry(std::string_view text, Offset at) {
  const auto entry = quoted_entry_at(text, at);
  if (!entry) return {};
  const std::string name(text.substr(entry->name.begin, entry->name.end - entry->name.begin));
  return unsafe_fix({{at, entry->value.begin, name + " = "}, {entry->value.end, entry->end, {}}});
}

bool has_entry(const FileScan &scan, std::string_view name) {
  return std::any_of(scan.entries().begin(), scan.entries().end(), [&](const Entry &entry) {
    return equal_but_for_case(scan.name(entry), name);
  });
}

Fix fix_of_stray_text(const FileScan &scan, Offset at) {
  const std::string_view text = scan.text().text();
  if (Fix fix = without_repeated_name(text, at)) return fix;
  if (Fix fix = without_quotes_of_entry(text, at)) return fix;
  if (const auto name = name_joined_before(text, at)) {
    const std::string_view word = text.substr(name->begin, name->end - name->begin);
    return has_entry(scan, word) ? Fix() : fix_of_joined_name(text, name->begin);
  }
  const Offset line_end = end_of_line(text, at);
  if (const auto end = end_of_separator(text, at)) return unsafe_fix({{at, *end, {}}});
  if (is_foreign_comment(text.substr(at, 2))) return safe_fix(comment_lines(text, at, line_end));
  if (Fix fix = fix_of_long_comment(text, at)) return fix;
  if (text[at] == '(') {
    if (Fix fix = without_parentheses_of_entry(text.substr(0, scan.next_entry(at)), at)) return fix;
    if (may_belong_to_entry_before(scan, at)) return {};
  }
  const Offset limit = scan.next_entry(at);
  const Offset end = end_of_stray_text(text, at, limit);
  // Without a name nothing is served, and the entries after it are lost.
  if (is_nameless_entry(scan, at) && limit < text.size())
    return unsafe_fix(comment_lines(text, at, end));
  // It holds the name of what comes after it.
  if (const Offset next = pass_blanks(text, end); next < text.size() && text[next] == '=')
    return {};
  // The entry that begins on the same line would become a comment, too.
  if (value_on_line(text.substr(0, limit), at) || (end == limit && limit < line_end)) return {};
  return commented(text, {at, end == limit ? std::min(line_end, limit) : end});
}

// "NAME (remark)"
bool is_name_with_remark(std::string_view line) {
  const char first = line[line.find_first_not_of(blanks)];
  return !is_sign(first) && line.find('=') == line.npos &&
         std::count(line.begin(), line.end(), '(') == std::count(line.begin(), line.end(), ')');
}

// Whether a word, which may hold the name, is before the comments and blanks before a line.
bool follows_word(std::string_view text, Offset line) {
  for (std::size_t end = text.substr(0, line).find_last_not_of(blanks); end != text.npos;) {
    const std::size_t begin = text.substr(0, end).rfind('\n') + 1;
    const std::string_view before = text.substr(begin, end + 1 - begin);
    const std::string_view words = before.substr(0, before.find('#'));
    const std::size_t last = words.find_last_not_of(blanks);
    if (last != words.npos) return words[last] != ')' || is_name_with_remark(words);
    end = text.substr(0, begin).find_last_not_of(blanks);
  }
  return false;
}

// Of lines that are quoted from a mail, or numbered.
Fix without_line_prefixes(std::string_view text, Offset at) {
  std::vector<Edit> edits;
  for (const Span prefix : line_prefixes(text, at)) edits.push_back({prefix.begin, prefix.end, {}});
  return edits.empty() ? Fix() : unsafe_fix(std::move(edits));
}

// Those that follow each other on the line.
Fix fix_of_closes(std::string_view text, Offset at) {
  const std::size_t next = std::min(text.find_first_not_of(") \t", at), text.size());
  const std::size_t last = text.substr(0, next).find_last_of(')');
  return unsafe_fix({{at, static_cast<Offset>(last + 1), {}}});
}

Fix fix_of_missing_equal(std::string_view text, Offset at) {
  if (end_of_foreign_equal(text, at) > at) return unsafe_fix({equal_for_foreign(text, at)});
  const auto before = static_cast<Offset>(text.substr(0, at).find_last_not_of(blanks) + 1);
  const std::size_t line = text.substr(0, before).rfind('\n') + 1;
  const bool on_other_line = text.substr(before, at - before).find('\n') != text.npos;
  // A comment may stand on the line of the name.
  if (on_other_line && text.substr(line, before - line).find('#') == text.npos)
    return unsafe_fix({{before, before, " ="}});
  return unsafe_fix({{at, at, before < at ? "= " : " = "}});
}

// Commas at the beginning of a word.
Fix fix_of_commas(std::string_view text, Offset at) {
  const auto end = static_cast<Offset>(std::min(text.find_first_not_of(',', at), text.size()));
  return safe_fix({{at, end, {}}});
}

// What another block of an entry is made of.
Fix fix_of_second_block(const FileScan &scan, Offset at) {
  const std::string_view text = scan.text().text();
  const auto end = end_of_items(text.substr(0, scan.next_entry(at)), at);
  if (!end || !begins_line(text, at) || !ends_line(text, *end)) return {};
  return unsafe_fix(comment_lines(text, at, *end));
}

// The parentheses of comments that have no partner in them. Comments one after the other are read
// as one: lines of an entry that is commented out balance together.
class UnmatchedOfComments {
 public:
  explicit UnmatchedOfComments(std::string_view text) : text_(text) {}

  void read(Offset begin, Offset end) {
    if (text_.substr(end_, begin - end_).find_first_not_of(blanks) != text_.npos) end_comments();
    for (Offset at = begin; at < end; ++at) {
      if (text_[at] == '(') open_.push_back(at);
      if (text_[at] != ')') continue;
      if (open_.empty())
        found_.push_back(at);
      else
        open_.pop_back();
    }
    end_ = end;
  }

  std::vector<Edit> brackets() {
    end_comments();
    std::sort(found_.begin(), found_.end());
    std::vector<Edit> edits;
    for (const Offset at : found_) edits.push_back({at, at + 1, text_[at] == '(' ? "[" : "]"});
    return edits;
  }

 private:
  void end_comments() {
    found_.insert(found_.end(), open_.begin(), open_.end());
    open_.clear();
  }

  std::string_view text_;
  Offset end_ = 0;  // of the last comment
  std::vector<Offset> open_;
  std::vector<Offset> found_;
};

}  // namespace

bool may_belong_to_entry_before(const FileScan &scan, Offset at) {
  const std::string_view text = std::string_view(scan.text().text()).substr(0, scan.next_entry(at));
  const Entry *const entry = scan.entry_at_or_before(at);
  const ItemWord key = key_after(text, at);
  if (entry == nullptr || !key) return false;
  return !is_complete(text, entry->body) || (opens_block(key) && end_of_items(text, at));
}

bool is_nameless_entry(const FileScan &scan, Offset at) {
  const std::string_view text = std::string_view(scan.text().text()).substr(0, scan.next_entry(at));
  const Offset body = text[at] == '=' ? at + 1 : at;
  if (!begins_line(text, at) || follows_word(text, at) || !is_complete(text, body)) return false;
  return ends_line(text, *end_of_first_block(text, body));
}

void write_out_zero_bytes(std::string_view text, Offset begin, Offset end,
                          std::vector<Edit> &edits) {
  text = text.substr(0, end);
  for (std::size_t at = text.find('\0', begin); at != text.npos; at = text.find('\0', at + 1)) {
    const auto zero = static_cast<Offset>(at);
    edits.push_back({zero, zero + 1, "\\x00"});
  }
}

Fix fix_of_lines(std::string_view text, Offset begin, Offset end) {
  const auto line = static_cast<Offset>(text.substr(0, begin).find_last_of('\n') + 1);
  const bool is_whole =
      text.substr(line, begin - line).find_first_not_of(blanks_of_line) == std::string_view::npos;
  return unsafe_fix(comment_lines(text, is_whole ? line : begin, end));
}

Fix fix_of_joined_name(std::string_view text, Offset name) {
  const auto words = static_cast<Offset>(text.substr(0, name).find_last_not_of(blanks_of_line) + 1);
  return {Applicability::unsafe, {{words, name, "\n"}}, true};
}

Fix fix_of_part(std::string_view text, Offset begin, Offset end) {
  std::vector<Edit> edits = comment_lines(text, begin, end);
  const std::size_t next = std::min(text.find_first_not_of(blanks_of_line, end), text.size());
  if (!ends_line(text, end)) edits.push_back({end, static_cast<Offset>(next), "\n"});
  return unsafe_fix(std::move(edits));
}

Fix fix_of_long_comment(std::string_view text, Offset at) {
  const std::optional<Offset> end = end_of_long_comment(text, at);
  return end ? fix_of_part(text, at, *end) : Fix();
}

Offset end_of_foreign_equal(std::string_view text, Offset at) {
  using namespace std::string_view_literals;
  for (const std::string_view sign : {":="sv, "->"sv, ":"sv, "-"sv, full_width_equal})
    if (text.substr(at).starts_with(sign)) return at + static_cast<Offset>(sign.size());
  return at;
}

Edit equal_for_foreign(std::string_view text, Offset colon) {
  const bool after_blank = colon > 0 && is_blank(text[colon - 1]);
  return {colon, end_of_foreign_equal(text, colon), after_blank ? "=" : " ="};
}

Fix fix_of_stop(const FileScan &scan, const Stop &stop, Rule rule, Offset at) {
  const std::string_view text = scan.text().text();
  if (rule == Rule::stray_text || rule == Rule::missing_equal)
    if (Fix fix = without_line_prefixes(text.substr(0, scan.next_entry(stop.name)), stop.name))
      return fix;
  switch (rule) {
    case Rule::byte_order_mark:
      return safe_fix({{0, 3, {}}});
    case Rule::stray_comma:
      return fix_of_commas(text, at);
    case Rule::missing_equal:
      return fix_of_missing_equal(text, at);
    case Rule::stray_text:
      return fix_of_stray_text(scan, at);
    case Rule::extra_close:
      return fix_of_closes(text, at);
    case Rule::second_block:
      return fix_of_second_block(scan, stop.at);
    case Rule::odd_bytes:
      return stop.name == at ? fix_of_invisible(text, at, end_of_word(text, at)) : Fix{};
    case Rule::lost_name:
      return commented(text, {at, scan.text().size()});
    default:
      return {};
  }
}

Fix fix_of_comments(std::string_view text, Offset body, Offset end) {
  UnmatchedOfComments unmatched(text);
  for_each_comment(text, body, end, [&](Offset comment, Offset comment_end) {
    unmatched.read(comment, comment_end);
  });
  std::vector<Edit> edits = unmatched.brackets();
  return edits.empty() ? Fix{} : safe_fix(std::move(edits));
}

std::optional<Offset> hiding_carriage_return(std::string_view text) {
  std::size_t lone = text.find('\r');
  while (lone != std::string_view::npos && lone + 1 < text.size() && text[lone + 1] == '\n')
    lone = text.find('\r', lone + 1);
  if (lone == std::string_view::npos) return std::nullopt;
  std::optional<Offset> found;
  for_each_comment(text, 0, static_cast<Offset>(text.size()), [&](Offset begin, Offset end) {
    if (found) return;
    const std::string_view comment = text.substr(begin, end - begin);
    const std::size_t cr = comment.find('\r');
    if (cr != std::string_view::npos &&
        comment.find_first_not_of(blanks_of_line, cr) != std::string_view::npos)
      found = begin + static_cast<Offset>(cr);
  });
  return found;
}

Fix fix_of_line_ends(std::string_view text) {
  // From so many on, one edit of all the text takes less memory.
  constexpr std::size_t most = 100'000;
  std::vector<Edit> edits;
  std::string all(text);
  for (std::size_t at = text.find('\r'); at != std::string_view::npos;
       at = text.find('\r', at + 1)) {
    if (at + 1 < text.size() && text[at + 1] == '\n') continue;
    all[at] = '\n';
    if (edits.size() <= most)
      edits.push_back({static_cast<Offset>(at), static_cast<Offset>(at + 1), "\n"});
  }
  if (edits.size() > most) return safe_fix({{0, static_cast<Offset>(text.size()), std::move(all)}});
  return safe_fix(std::move(edits));
}

}  // namespace kztns
