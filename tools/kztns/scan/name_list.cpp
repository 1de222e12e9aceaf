#include "scan/name_list.h"

#include <algorithm>

#include "scan/item_text.h"
#include "scan/written_entries.h"
#include "text/characters.h"
#include "text/words.h"

namespace kztns {

std::optional<NameList> read_name_list(std::string_view text, Offset at) {
  NameList list;
  for (bool more = true; more;) {
    const std::size_t end = std::min(text.find_first_of(" \t\r\n()=,#\"", at), text.size());
    if (end == at) return std::nullopt;
    if (list.names.size() == most_names_of_list) return std::nullopt;
    list.names.push_back({at, static_cast<Offset>(end)});
    list.end = static_cast<Offset>(end);
    at = pass_blanks(text, list.end);
    more = at < text.size() && text[at] == ',';
    if (!more) break;
    list.end = at + 1;
    at = pass_blanks(text, list.end);
    more = at >= text.size() || text[at] != '=';
  }
  list.equal = at;
  if (at >= text.size() || text[at] != '=') return std::nullopt;
  return list;
}

bool is_salutation(std::string_view text, Offset at) {
  const Offset end = end_of_line(text, at);
  const std::string_view line = trimmed(text.substr(at, end - at));
  const Offset next = pass_blanks(text, end);
  const Offset word_end = end_of_word(text, next);
  const Offset after = pass_blanks(text, word_end);
  return line.ends_with(',') && line.find_first_of("()=#\"") == line.npos &&
         text[word_end - 1] != ',' && !text.substr(after).starts_with('=') &&
         !key_after(text, after);
}

bool is_signs(std::string_view text, Span name) {
  return !has_word_character(text.substr(name.begin, name.end - name.begin));
}

std::optional<Offset> end_of_no_name(std::string_view text, const NameList &list) {
  if (list.names.size() < 2) return std::nullopt;
  const Offset line = end_of_line(text, list.names[0].end);
  if (line >= list.names[1].begin) return std::nullopt;
  const bool gap = text.find_first_not_of(blanks_of_line, line + 1) == end_of_line(text, line + 1);
  return gap || is_signs(text, list.names[0]) ? std::optional(line) : std::nullopt;
}

}  // namespace kztns
