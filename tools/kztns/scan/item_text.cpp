#include "scan/item_text.h"

#include "scan/tokens.h"
#include "text/characters.h"
#include "text/words.h"

namespace kztns {
namespace {

// Together with its line where nothing else is on it.
Span with_its_line(std::string_view text, Span item) {
  Offset begin = item.begin;
  while (begin > 0 && (text[begin - 1] == ' ' || text[begin - 1] == '\t')) --begin;
  const std::size_t after = text.find_first_not_of(blanks_of_line, item.end);
  const bool alone =
      begin > 0 && text[begin - 1] == '\n' && after < text.size() && text[after] == '\n';
  return alone ? Span{begin, static_cast<Offset>(after + 1)} : item;
}

// Whether an item is the first one after an "="; block becomes the "(" of that block,
// absent for the entry's own "=".
bool is_first(std::string_view text, Offset open, std::optional<Offset> &block) {
  const std::size_t equal = text.substr(0, open).find_last_not_of(blanks);
  if (equal == std::string_view::npos || text[equal] != '=') return false;
  const std::size_t sign = text.substr(0, equal).find_last_of("()=");
  if (sign != std::string_view::npos && text[sign] == '(') block = static_cast<Offset>(sign);
  return true;
}

// Whether nothing of its block, or no other block of the entry, comes after an item.
bool is_last(std::string_view text, Offset end, bool in_block) {
  const Offset after = pass_blanks(text, end);
  if (after == text.size()) return true;
  return in_block ? text[after] == ')' : text[after] != '(';
}

}  // namespace

std::optional<Offset> end_of_item(std::string_view text, Offset open) {
  if (open >= text.size() || text[open] != '(') return std::nullopt;
  std::size_t depth = 0;
  TokenReader tokens(text, open);
  for (Token token = tokens.next(); token.kind != TokenKind::end; token = tokens.next()) {
    if (token.kind == TokenKind::open) ++depth;
    if (token.kind == TokenKind::close && --depth == 0) return token.span.end;
  }
  return std::nullopt;
}

std::optional<Offset> end_of_first_block(std::string_view text, Offset body) {
  return end_of_item(text, pass_blanks(text, body));
}

std::optional<Offset> end_of_items(std::string_view text, Offset body) {
  std::optional<Offset> end;
  for (Offset open = pass_blanks(text, body); open < text.size() && text[open] == '(';
       open = pass_blanks(text, *end)) {
    end = end_of_item(text, open);
    if (!end) return std::nullopt;
  }
  return end;
}

Offset counted_end(std::string_view text, Offset from, Offset limit) {
  std::size_t depth = 0;
  for (Offset at = pass_blanks(text, from); at < limit; ++at) {
    if (text[at] == '(') ++depth;
    if (text[at] == ')' && --depth == 0) return at + 1;
  }
  return limit + 1;
}

ItemWord key_after(std::string_view text, Offset open) {
  if (open >= text.size() || text[open] != '(') return {};
  const Offset begin = pass_blanks(text, open + 1);
  Offset end = begin;
  while (end < text.size() && !ends_name(text[end]) && text[end] != ':') ++end;
  return item_word(text.substr(begin, end - begin));
}

bool holds_description(std::string_view text) {
  for (Offset at = 0; at < text.size(); ++at) {
    const bool begins_token = at == 0 || is_blank(text[at - 1]) || is_sign(text[at - 1]);
    if (text[at] == '#' && begins_token) at = end_of_comment(text, at);
    if (key_after(text, at).type != LB_DESCRIPTION) continue;
    const Offset equal = pass_blanks(text, end_of_word(text, pass_blanks(text, at + 1)));
    if (equal < text.size() && text[equal] == '=') return true;
  }
  return false;
}

std::optional<Span> item_to_remove(std::string_view text, Offset open) {
  std::optional<Offset> end = end_of_item(text, open);
  for (std::optional<Offset> block;
       end && is_first(text, open, block) && is_last(text, *end, block.has_value());
       block.reset()) {
    if (!block) return std::nullopt;
    open = *block;
    end = end_of_item(text, open);
  }
  if (!end) return std::nullopt;
  return with_its_line(text, {open, *end});
}

}  // namespace kztns
