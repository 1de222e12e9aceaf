#include "scan/commented_items.h"

#include <algorithm>

#include "scan/item_text.h"
#include "scan/tokens.h"
#include "text/characters.h"
#include "text/words.h"

namespace kztns {
namespace {

// Between parentheses on lines of comments.
constexpr std::string_view not_of_comments = " \t\r)";

// Where the comments end on the line of a place and on the lines after it, up to one without.
Offset end_of_comments(std::string_view text, Offset at) {
  for (;;) {
    std::size_t next = text.find_first_not_of(not_of_comments, at);
    if (next != text.npos && text[next] == '\n')
      next = text.find_first_not_of(not_of_comments, next + 1);
    if (next == text.npos || text[next] != '#') return at;
    at = end_of_comment(text, static_cast<Offset>(next));
  }
}

// The key of "(KEY ="; none where something else begins.
ItemWord key_of_item(std::string_view text, Offset open) {
  const ItemWord word = key_after(text, open);
  if (!word) return {};
  const Offset equal = pass_blanks(text, end_of_word(text, pass_blanks(text, open + 1)));
  return equal < text.size() && text[equal] == '=' ? word : ItemWord();
}

// Whether a comment begins or ends with an item: others have words about one.
bool is_of_items(std::string_view comment) {
  const std::size_t begin = comment.find_first_not_of("# \t");
  const std::size_t last = comment.find_last_not_of(blanks_of_line);
  return begin != comment.npos && (comment[begin] == '(' || comment[last] == ')');
}

}  // namespace

std::optional<Offset> commented_item(std::string_view text, Offset open,
                                     std::initializer_list<KZCILBKeyType> keys) {
  const auto end = end_of_item(text, open);
  if (!end) return std::nullopt;
  const ItemWord block = key_after(text, open);
  const auto is_wanted = [&](ItemWord word) {
    if (keys.size() > 0) return std::find(keys.begin(), keys.end(), word.type) != keys.end();
    return placement_of(word, placement_of(block, {}).content).fit == Fit::good;
  };
  std::optional<Offset> found;
  bool other_block = false;
  const auto search = [&](Offset comment, Offset comment_end) {
    const std::string_view line = text.substr(0, comment_end);
    if (!is_of_items(line.substr(comment))) return;
    for (Offset at = comment; at < comment_end && !found && !other_block; ++at) {
      const ItemWord word = key_of_item(line, at);
      other_block = word && (word.type == block.type || word.type == LB_DESCRIPTION);
      if (word && !other_block && is_wanted(word)) found = at;
    }
  };
  for_each_comment(text, open, end_of_comments(text, *end), search);
  return found;
}

std::optional<Offset> item_in_comment(std::string_view text, Offset comment, Offset end) {
  const std::string_view line = text.substr(0, end);
  const std::size_t cr = line.find('\r', comment);
  if (cr != line.npos && cr + 1 < line.size()) return std::nullopt;  // lines of another system
  const std::size_t equal = line.find('=', comment);  // in "# NAME = (KEY =" before the item
  for (std::size_t at = line.find('(', comment); at < equal; at = line.find('(', at + 1))
    if (key_of_item(line, static_cast<Offset>(at))) return static_cast<Offset>(at);
  return std::nullopt;
}

std::string_view key_text(std::string_view text, Offset open) {
  const Offset begin = pass_blanks(text, open + 1);
  return text.substr(begin, end_of_word(text, begin) - begin);
}

}  // namespace kztns
