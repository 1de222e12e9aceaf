#include "scan/written_items.h"

#include <algorithm>

#include "scan/item_text.h"
#include "scan/tokens.h"
#include "text/words.h"

namespace kztns {

std::optional<WrittenItem> item_at(std::string_view text, Offset open) {
  const std::optional<Offset> end = end_of_item(text, open);
  if (!end) return std::nullopt;
  WrittenItem item = {open, {open + 1, open + 1}, open + 1, *end};
  TokenReader tokens(text, open + 1);
  const Token key = tokens.next();
  if (key.kind != TokenKind::word) return item;
  item.key = key.span;
  item.value = key.span.end;
  if (const Token equal = tokens.next(); equal.kind == TokenKind::equal)
    item.value = equal.span.end;
  return item;
}

std::vector<WrittenItem> items_from(std::string_view text, Offset at) {
  std::vector<WrittenItem> items;
  for (at = pass_blanks(text, at); at < text.size() && text[at] == '(';
       at = pass_blanks(text, items.back().end)) {
    const std::optional<WrittenItem> item = item_at(text, at);
    if (!item) break;
    items.push_back(*item);
  }
  return items;
}

ItemWord key_word(std::string_view text, const WrittenItem &item) {
  return item_word(text.substr(item.key.begin, item.key.end - item.key.begin));
}

std::optional<Span> word_of(std::string_view text, const WrittenItem &item) {
  TokenReader tokens(text, item.value);
  const Token word = tokens.next();
  if (word.kind != TokenKind::word || tokens.next().span.end != item.end) return std::nullopt;
  return word.span;
}

std::string unquoted(std::string_view word) {
  std::string text(word);
  text.erase(std::remove(text.begin(), text.end(), '"'), text.end());
  return text;
}

}  // namespace kztns
