#include "fixes/moved_entries.h"

#include <algorithm>

#include "fixes/file_fixes.h"
#include "scan/item_text.h"
#include "scan/name_list.h"
#include "scan/reserved_names.h"
#include "scan/written_entries.h"
#include "text/characters.h"
#include "text/words.h"

namespace kztns {
namespace {

Offset line_begin(std::string_view text, Offset at) {
  return static_cast<Offset>(text.substr(0, at).find_last_of('\n') + 1);
}

// After the line's line feed.
Offset line_end(std::string_view text, Offset at) {
  const std::size_t feed = text.find('\n', at);
  return static_cast<Offset>(feed == std::string_view::npos ? text.size() : feed + 1);
}

// After the line, when nothing but blanks and a comment are left of it.
std::optional<Offset> end_with_line(std::string_view text, Offset at) {
  return ends_line(text, at) ? std::optional(line_end(text, at)) : std::nullopt;
}

bool is_comment_line(std::string_view text, Offset begin) {
  const std::size_t first = text.find_first_not_of(" \t", begin);
  return first != std::string_view::npos && text[first] == '#';
}

// The lines of an entry, with the comment lines directly above it; absent when something
// else is on them.
std::optional<Span> lines_of(std::string_view text, Offset at, Offset end) {
  Offset begin = line_begin(text, at);
  const auto after = end_with_line(text, end);
  if (!after || text.substr(begin, at - begin).find_first_not_of(" \t") != std::string_view::npos)
    return std::nullopt;
  while (begin > 0 && is_comment_line(text, line_begin(text, begin - 1)))
    begin = line_begin(text, begin - 1);
  return Span{begin, *after};
}

Offset after_blank_lines(std::string_view text, Offset at) {
  for (Offset end = at; end < text.size(); at = end) {
    end = line_end(text, at);
    if (text.substr(at, end - at).find_first_not_of(blanks) != std::string_view::npos) break;
  }
  return at;
}

Edit copied(std::string_view text, Offset begin, Offset end, Offset to) {
  return {to, to, std::string(text.substr(begin, end - begin)), begin};
}

std::string_view line_feed_of(std::string_view text) {
  const std::size_t feed = text.find('\n');
  return feed != std::string_view::npos && feed > 0 && text[feed - 1] == '\r' ? "\r\n" : "\n";
}

// Moves lines to the beginning of a line further on, in their order. The blank lines after them
// come before them.
std::vector<Edit> move_lines(std::string_view text, const std::vector<Span> &all, Offset to) {
  std::vector<Edit> edits;
  for (const Span lines : all)
    edits.push_back({lines.begin, after_blank_lines(text, lines.end), {}});
  if (text[to - 1] != '\n') edits.push_back({to, to, std::string(line_feed_of(text))});
  for (const Span lines : all) {
    edits.push_back(copied(text, lines.end, after_blank_lines(text, lines.end), to));
    edits.push_back(copied(text, lines.begin, lines.end, to));
  }
  return edits;
}

// The end of the only block of an entry, if lookups of other names come to it, too.
std::optional<Offset> end_if_passed(const FileScan &scan, const Entry &entry) {
  const std::string_view text =
      std::string_view(scan.text().text()).substr(0, scan.next_entry(entry.body));
  const Offset open = pass_blanks(text, entry.body);
  const auto end = end_of_item(text, open);
  if (!end) return std::nullopt;
  const Offset next = pass_blanks(text, *end);
  if (counted_end(text, open, *end) != *end || (next < text.size() && text[next] == '('))
    return std::nullopt;
  return end;
}

// The lines of an entry with all of its items.
std::optional<Span> lines_of_items(const FileScan &scan, const Entry &entry) {
  const std::string_view text = scan.text().text();
  const auto end = end_of_items(text.substr(0, scan.next_entry(entry.body)), entry.body);
  return end ? lines_of(text, entry.at, *end) : std::nullopt;
}

bool any_ends_lookups(const FileScan &scan) {
  return std::any_of(scan.entries().begin(), scan.entries().end(),
                     [&](const Entry &entry) { return ends_lookups(scan.name(entry)); });
}

}  // namespace

Fix move_reserved(const FileScan &scan) {
  const std::string_view text = scan.text().text();
  const std::vector<Stop> &stops = scan.further_stops();
  const Offset obstacle = stops.empty() ? scan.text().size() : stops.front().name;
  std::vector<Span> reserved;  // the first one is in force, and stays the first
  std::size_t moved = 0;       // of those
  std::optional<Offset> to;
  for (auto entry = std::prev(scan.first_after(scan.last_reached()->at));
       entry != scan.entries().end() && entry->at < obstacle; ++entry) {
    if (ends_lookups(scan.name(*entry))) {
      const auto lines = lines_of_items(scan, *entry);
      if (!lines) break;
      reserved.push_back(*lines);
      continue;
    }
    const auto passed = end_if_passed(scan, *entry);
    const auto after = passed ? end_with_line(text, *passed) : std::nullopt;
    if (!after) break;
    to = after;
    moved = reserved.size();
  }
  if (!to || moved == 0) return {};
  reserved.resize(moved);
  return safe_fix(move_lines(text, reserved, *to));
}

Fix move_to_end(const FileScan &scan, const Entry &entry) {
  const std::string_view text = scan.text().text();
  const Entry &last = scan.entries().back();
  if (last.at <= entry.at || any_ends_lookups(scan) || !end_if_passed(scan, last)) return {};
  const auto lines = lines_of_items(scan, entry);
  if (!lines) return {};
  return unsafe_fix(move_lines(text, {*lines}, scan.text().size()));
}

Fix move_out(const NamesText &names_text, const InsertedEntry &inserted) {
  const std::string_view text = names_text.text();
  const auto lines = lines_of(text, inserted.entry.begin, inserted.entry.end);
  const auto to = end_with_line(text, inserted.rest_end);
  if (!lines || !to) return {};
  return {Applicability::unsafe, move_lines(text, {*lines}, *to), true};
}

namespace {

// More bytes than that are not worth copying.
constexpr std::size_t most_copied = 1 << 20;

// Leaves one name of the list, and its comments.
std::vector<Edit> leave_name(std::string_view text, const NameList &list, Span kept) {
  const Offset begin = list.names.front().begin;
  const Offset end = list.end;
  std::vector<Edit> edits;
  if (text.substr(begin, end - begin).find('#') == std::string_view::npos) {
    edits.push_back({begin, kept.begin, {}});
    edits.push_back({kept.end, end, {}});
  } else {
    for (const Span name : list.names) {
      if (name.begin != kept.begin) edits.push_back({name.begin, name.end, {}});
      const Offset comma = pass_blanks(text, name.end);
      if (text[comma] == ',') edits.push_back({comma, comma + 1, {}});
    }
  }
  std::erase_if(edits, [](const Edit &edit) { return edit.begin == edit.end; });
  return edits;
}

// Whether the list of the same names begins at a place, whose entry would be found instead of
// this one's.
bool is_list_of_same(std::string_view text, const NameList &list, Offset at) {
  const auto other = read_name_list(text, at);
  return other && std::equal(list.names.begin(), list.names.end(), other->names.begin(),
                             other->names.end(), [&](Span left, Span right) {
                               return text.substr(left.begin, left.end - left.begin) ==
                                      text.substr(right.begin, right.end - right.begin);
                             });
}

// Where the blocks of an entry end, or the connect string that stands instead of them; absent where
// a parenthesis is left.
std::optional<Offset> end_of_list_value(std::string_view text, Offset value) {
  const bool is_block = text[value] == '(';
  const auto end = is_block ? end_of_items(text, value) : std::optional(end_of_word(text, value));
  const Offset next = end ? pass_blanks(text, *end) : value;
  const bool is_whole = next >= text.size() || (is_block && text[next] != ')');
  return is_whole ? end : std::nullopt;
}

// A list ends the lookups: what is found after it may be found otherwise without it.
Fix put_first(Fix fix) {
  fix.first = true;
  return fix;
}

}  // namespace

Mending NameLists::split(Offset at) {
  const std::string_view text = scan_.text().text();
  const auto list = read_name_list(text, at);
  const auto salutation_end =
      is_salutation(text, at) ? std::optional(end_of_line(text, at)) : std::nullopt;
  if (const auto end = list ? end_of_no_name(text, *list) : salutation_end)
    return {fix_of_lines(text, at, *end), "begin the line with \"#\", if it is no name"};
  if (!list) return {};
  const Offset limit = scan_.next_entry(list->equal);
  const Offset value = pass_blanks(text, list->equal + 1);
  if (value >= limit)
    return {put_first(fix_of_lines(text, at, limit)), "give it a block, or remove its line"};
  const auto end = end_of_list_value(text.substr(0, limit), value);
  if (!end && is_list_of_same(text, *list, limit))
    return {put_first(fix_of_lines(text, at, limit)),
            "remove its lines: another list of the names follows"};
  if (find_nameless(text, value, limit)) return {};
  const auto after = end ? end_with_line(text, *end) : std::nullopt;
  std::vector<Span> names = list->names;
  std::erase_if(names, [&](Span name) {
    return last_of(text.substr(name.begin, name.end - name.begin)) > list->equal;
  });
  const bool all_names =
      std::none_of(names.begin(), names.end(), [&](Span name) { return is_signs(text, name); });
  if (!after || !all_names || names.empty() || names.size() * (*end - list->equal) > most_copied)
    return {};
  std::vector<Edit> edits = leave_name(text, *list, names.front());
  const Offset to = *after;
  const std::string feed(line_feed_of(text));
  const bool has_feed = text[to - 1] == '\n';
  for (std::size_t i = 1; i < names.size(); ++i) {
    if (!has_feed) edits.push_back({to, to, feed});
    edits.push_back(copied(text, names[i].begin, names[i].end, to));
    edits.push_back({to, to, " "});
    edits.push_back(copied(text, list->equal, *end, to));
    if (has_feed) edits.push_back({to, to, feed});
  }
  return {put_first(safe_fix(std::move(edits)))};
}

Offset NameLists::last_of(std::string_view name) {
  if (last_.empty())
    for (const Entry &entry : scan_.entries())
      if (!entry.in_list) last_[scan_.name(entry)] = entry.at;
  const auto found = last_.find(name);
  return found == last_.end() ? 0 : found->second;
}

}  // namespace kztns
