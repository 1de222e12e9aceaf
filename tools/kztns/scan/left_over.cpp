#include "scan/left_over.h"

#include <algorithm>
#include <string>

#include "scan/item_text.h"
#include "scan/item_words.h"
#include "scan/tokens.h"
#include "scan/written_items.h"
#include "text/characters.h"
#include "text/spelling.h"
#include "text/words.h"

namespace kztns {
namespace {

// DESCRIPTION, ADDRESS_LIST, ADDRESS: blocks are not nested deeper.
constexpr int deepest = 3;

// Whether an item with a value is among some items, or in their blocks.
bool is_set(std::string_view text, const std::vector<WrittenItem> &items,
            const std::vector<KZCILBKeyType> &types, int depth = 1) {
  return std::any_of(items.begin(), items.end(), [&](const WrittenItem &item) {
    const bool wanted =
        std::find(types.begin(), types.end(), key_word(text, item).type) != types.end();
    if (wanted) return word_of(text, item).has_value();
    return depth < deepest && is_set(text, items_from(text, item.value), types, depth + 1);
  });
}

bool is_complete_description(std::string_view text, const WrittenItem &block) {
  const std::vector<WrittenItem> items = items_from(text, block.value);
  return key_word(text, block).type == LB_DESCRIPTION && is_set(text, items, {LB_HOST}) &&
         is_set(text, items, {LB_SERVICE_NAME, LB_SID});
}

bool is_complete_block(std::string_view text, const WrittenItem &block) {
  const Placement entry = placement_of(key_word(text, block), content_of(Block::entry));
  if (entry.content.kind != Content::description_list) return is_complete_description(text, block);
  const std::vector<WrittenItem> items = items_from(text, block.value);
  return !items.empty() && std::all_of(items.begin(), items.end(), [&](const WrittenItem &item) {
    return is_complete_description(text, item);
  });
}

// The name of the service in a block; empty for none.
std::string service_of(std::string_view text, const WrittenItem &block, int depth = 0) {
  for (const WrittenItem &item : items_from(text, block.value)) {
    const KZCILBKeyType type = key_word(text, item).type;
    if (type == LB_SERVICE_NAME || type == LB_SID) {
      const auto word = word_of(text, item);
      return word ? unquoted(text.substr(word->begin, word->end - word->begin)) : std::string();
    }
    if (depth == deepest) continue;
    if (std::string service = service_of(text, item, depth + 1); !service.empty()) return service;
  }
  return {};
}

bool has_empty_line(std::string_view text) {
  int line_feeds = 0;
  for (const char c : text) {
    if (c == '\n' && ++line_feeds == 2) return true;
    if (!is_blank(c)) line_feeds = 0;
  }
  return false;
}

// The parentheses from a place on, up to a word outside of them.
class Rest {
 public:
  Rest(std::string_view text, Offset at) : begin_(at), end_(at) {
    TokenReader tokens(text, at);
    for (Token token = tokens.next(); token.kind != TokenKind::end; token = tokens.next()) {
      if (token.kind == TokenKind::open) ++depth_;
      if (token.kind == TokenKind::word || token.kind == TokenKind::equal) {
        if (depth_ == 0) return;
        if (before_ == TokenKind::open)
          take_key(item_word(text.substr(token.span.begin, token.span.end - token.span.begin)));
      }
      if (token.kind == TokenKind::close && depth_ > 0) --depth_;
      before_ = token.kind;
      end_ = token.span.end;
    }
  }

  Span span() const { return {begin_, end_}; }
  bool has_connection() const { return has_connection_; }
  bool has_description() const { return has_description_; }

 private:
  void take_key(ItemWord key) {
    if (key.type == LB_CONNECT_DATA || key.type == LB_ADDRESS || key.type == LB_ADDRESS_LIST)
      has_connection_ = true;
    if (key.type == LB_DESCRIPTION) has_description_ = true;
  }

  Offset begin_;
  Offset end_;
  std::int64_t depth_ = 0;
  TokenKind before_ = TokenKind::end;
  bool has_connection_ = false;  // an address, or a service
  bool has_description_ = false;
};

// The lines after the first block of an entry that is complete with it.
std::optional<Rest> rest_after(std::string_view text, Offset body) {
  if (!is_complete(text, body)) return std::nullopt;
  const Offset begin = pass_blanks(text, *end_of_first_block(text, body));
  if (begin >= text.size() || !is_sign(text[begin]) || !begins_line(text, begin))
    return std::nullopt;
  const Rest rest(text, begin);
  if (rest.has_description() || !ends_line(text, rest.span().end)) return std::nullopt;
  return rest;
}

}  // namespace

bool is_complete(std::string_view text, Offset body) {
  const Offset open = pass_blanks(text, body);
  if (open >= text.size() || text[open] != '(') return false;
  const std::optional<WrittenItem> block = item_at(text, open);
  return block && is_complete_block(text, *block);
}

std::optional<Span> find_left_over(std::string_view text, Offset body, Offset end) {
  const auto rest = rest_after(text.substr(0, end), body);
  return rest && rest->has_connection() ? std::optional(rest->span()) : std::nullopt;
}

std::optional<Span> find_nameless(std::string_view text, Offset body, Offset end) {
  text = text.substr(0, end);
  const std::vector<WrittenItem> blocks = items_from(text, body);
  if (blocks.size() < 2 || !is_complete_description(text, blocks[0])) return std::nullopt;
  const std::string service = service_of(text, blocks[0]);
  for (std::size_t i = 1; i < blocks.size(); ++i) {
    const Offset from = blocks[i - 1].end;
    const bool apart = has_empty_line(text.substr(from, blocks[i].open - from)) &&
                       begins_line(text, blocks[i].open) && ends_line(text, blocks.back().end);
    if (apart && is_complete_description(text, blocks[i]) &&
        !equal_but_for_case(service_of(text, blocks[i]), service))
      return Span{blocks[i].open, blocks.back().end};
  }
  return std::nullopt;
}

std::optional<InsertedEntry> find_inserted(std::string_view text, Span cut, Span inner) {
  const auto after = rest_after(text.substr(0, inner.end), inner.begin);
  if (!after) return std::nullopt;
  const Span rest = after->span();
  const std::string whole = std::string(text.substr(cut.begin, cut.end - cut.begin))
                                .append(text.substr(rest.begin, rest.end - rest.begin));
  const auto whole_end = end_of_first_block(whole, 0);
  if (whole_end != whole.size() || !is_complete(whole, 0)) return std::nullopt;
  return InsertedEntry{{cut.end, *end_of_first_block(text, inner.begin)}, rest.end};
}

}  // namespace kztns
