#include "mend/describe_edits.h"

#include <algorithm>

#include "text/characters.h"
#include "text/escape.h"

namespace kztns {
namespace {

// A part of a text between quotes that are not in it, without the blanks around it.
std::string part(std::string_view text) {
  if (const std::string_view words = trimmed(text); !words.empty()) text = words;
  const char quote = text.find('"') == std::string_view::npos ? '"' : '\'';
  return quote + excerpt(text) + quote;
}

std::string describe(const Edit &edit, std::string_view text) {
  const std::string_view before = text.substr(edit.begin, edit.end - edit.begin);
  if (before.empty()) return "inserted " + part(edit.text);
  if (edit.text.empty()) return "removed " + part(before);
  return "replaced " + part(before) + " by " + part(edit.text);
}

// Whether a text stands before and after a part now.
bool is_around(const std::vector<Edit> &edits) {
  return edits.size() == 2 && edits[0].begin == edits[0].end && edits[1].begin == edits[1].end &&
         edits[0].text == edits[1].text;
}

// Whether they make comments of lines.
bool make_comments(const std::vector<Edit> &edits) {
  return !edits.empty() && std::all_of(edits.begin(), edits.end(), [](const Edit &edit) {
    return edit.begin == edit.end && edit.text == "# ";
  });
}

// Whether one of the edits has no text of its own: it copies a part.
bool has_copy(const std::vector<Edit> &edits) {
  return std::any_of(edits.begin(), edits.end(),
                     [](const Edit &edit) { return edit.begin == edit.end && edit.text.empty(); });
}

}  // namespace

std::string describe(const std::vector<Edit> &edits, std::string_view text) {
  if (has_copy(edits)) return "rearranged the lines";
  if (make_comments(edits)) return "commented out";
  if (is_around(edits))
    return "put " + part(edits[0].text) + " around " +
           part(text.substr(edits[0].begin, edits[1].begin - edits[0].begin));
  constexpr std::size_t most = 2;
  std::string words;
  for (std::size_t i = 0; i < edits.size() && i < most; ++i)
    words += (i > 0 ? ", " : "") + describe(edits[i], text);
  if (edits.size() > most) words += " and " + std::to_string(edits.size() - most) + " more";
  return words;
}

}  // namespace kztns
