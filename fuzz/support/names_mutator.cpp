#include "names_mutator.h"

#include <algorithm>
#include <utility>

#include "tests/support/keys.h"
#include "tests/support/random_input.h"
#include "tests/support/random_mutation.h"

namespace fuzz {
namespace {

using support::Key;
using support::Random;
using support::Takes;

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool is_sign(char c) { return c == '(' || c == ')' || c == '='; }

std::size_t skip_space(std::string_view text, std::size_t at) {
  bool in_comment = false;
  for (; at < text.size(); ++at) {
    if (text[at] == '\n') in_comment = false;
    if (text[at] == '#') in_comment = true;
    if (!in_comment && !is_blank(text[at])) break;
  }
  return at;
}

std::size_t word_end(std::string_view text, std::size_t at) {
  bool quoted = false;
  for (; at < text.size() && (quoted || (!is_blank(text[at]) && !is_sign(text[at]))); ++at)
    if (text[at] == '"') quoted = !quoted;
  return at;
}

// The end of the block that this "(" begins, or of the tokens; as an index.
std::size_t block_end(const std::vector<Token> &tokens, std::size_t open) {
  std::size_t depth = 0;
  std::size_t i = open;
  for (; i < tokens.size(); ++i) {
    if (tokens[i].kind == '(') ++depth;
    if (tokens[i].kind == ')' && --depth == 0) break;
  }
  return i;
}

bool is_item(const std::vector<Token> &tokens, std::size_t i) {
  return i + 2 < tokens.size() && tokens[i].kind == '(' && tokens[i + 1].kind == 'w' &&
         tokens[i + 2].kind == '=';
}

// The place of a token, or the end of the text.
std::size_t random_place(Random &random, const std::string &text) {
  const std::vector<Token> tokens = tokens_of(text);
  const std::size_t i = random.below(tokens.size() + 1);
  return i < tokens.size() ? tokens[i].begin : text.size();
}

bool duplicate_item(Random &random, std::string &text) {
  const std::vector<Item> items = items_of(text);
  if (items.empty()) return false;
  const Item &item = random.pick(items);
  const std::string copy = text.substr(item.begin, item.end - item.begin);
  text.insert(random.one_in(2) ? item.end : random_place(random, text), copy);
  return true;
}

bool remove_item(Random &random, std::string &text) {
  const std::vector<Item> items = items_of(text);
  if (items.empty()) return false;
  const Item &item = random.pick(items);
  text.erase(item.begin, item.end - item.begin);
  return true;
}

// Items of which one is in the other change nothing.
bool swap_items(Random &random, std::string &text) {
  const std::vector<Item> items = items_of(text);
  if (items.empty()) return false;
  Item first = random.pick(items);
  Item second = random.pick(items);
  if (second.begin < first.begin) std::swap(first, second);
  if (second.begin < first.end) return false;
  const std::string moved = text.substr(second.begin, second.end - second.begin);
  text.replace(second.begin, moved.size(), text, first.begin, first.end - first.begin);
  text.replace(first.begin, first.end - first.begin, moved);
  return true;
}

bool change_key(Random &random, std::string &text) {
  const std::vector<Item> items = items_of(text);
  if (items.empty()) return false;
  const Token key = random.pick(items).key;
  const std::string_view word = random.pick(support::keys).word;
  text.replace(key.begin, key.end - key.begin,
               random.one_in(4) ? support::random_case(random, word) : std::string(word));
  return true;
}

// A text that is one character below, at or above a limit.
std::string text_at_limit(Random &random, std::size_t limit) {
  return std::string(random.between(limit - 1, limit + 1), 'x');
}

std::string boundary_value(Random &random, const Key &key) {
  switch (key.takes) {
    case Takes::integer:
      return support::random_integer(random);
    case Takes::word: {
      const std::string_view word = random.pick(key.words).text;
      return support::random_case(random, word.substr(0, random.between(1, word.size())));
    }
    default:
      return text_at_limit(random, std::clamp<std::size_t>(key.limit, 1, 256));
  }
}

// A value as keys of this name take it; for others and now and then one of any key.
std::string new_value(Random &random, std::string_view name) {
  std::vector<const Key *> fitting;
  for (const Key &key : support::keys)
    if (key.word == name && key.takes != Takes::block) fitting.push_back(&key);
  if (fitting.empty() || random.one_in(8))
    return boundary_value(random, random.pick(support::keys));
  return boundary_value(random, *random.pick(fitting));
}

bool change_value(Random &random, std::string &text) {
  std::vector<Item> leaves = items_of(text);
  std::erase_if(leaves, [](const Item &item) { return !item.is_leaf; });
  if (leaves.empty()) return false;
  const Item &item = random.pick(leaves);
  const std::string_view name =
      std::string_view(text).substr(item.key.begin, item.key.end - item.key.begin);
  std::string value = new_value(random, name);
  if (std::any_of(value.begin(), value.end(), is_blank)) value = '"' + value + '"';
  const std::size_t begin = skip_space(text, item.value);
  text.replace(begin, word_end(text, begin) - begin, value);
  return true;
}

bool move_parenthesis(Random &random, std::string &text) {
  std::vector<Token> tokens = tokens_of(text);
  std::erase_if(tokens, [](const Token &t) { return t.kind != '(' && t.kind != ')'; });
  if (tokens.empty()) return false;
  const std::size_t at = random.pick(tokens).begin;
  const char moved = text[at];
  text.erase(at, 1);
  text.insert(random_place(random, text), 1, moved);
  return true;
}

bool add_space(Random &random, std::string &text) {
  constexpr std::string_view added[] = {" ",      "\t",      "\n",   "\r\n",
                                        "  \n  ", " # ()\n", " #\n", "\"\""};
  text.insert(random_place(random, text), random.pick(added));
  return true;
}

// Blanks that an earlier change has put there go first, or the text would grow and grow.
bool cross_refill(Random &random, std::string &text) {
  text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
  const std::vector<Item> items = items_of(text);
  if (items.empty()) return false;
  const Item &item = random.pick(items);
  support::put_after_refill(text, random.between(item.begin + 1, item.end - 1));
  return true;
}

std::string written(Random &random, const support::Entry &entry) {
  const support::Layout layout = {random.one_in(4), random.one_in(4), false, random.one_in(4),
                                  random.one_in(4)};
  return support::write_tokens(entry.tokens, random, layout) + '\n';
}

bool join_reserved(Random &random, std::string &text) {
  const std::string name =
      random.one_in(4) ? support::random_special_name(random) : "KZCISYSTEMVARIABLES";
  const std::string entry = written(random, support::random_reserved_entry(random, name));
  if (random.one_in(2))
    text.insert(0, entry);
  else
    text += '\n' + entry;
  return true;
}

bool add_entry(Random &random, std::string &text) {
  const std::string name = support::random_name(random, random.below(4));
  const std::string entry = written(random, support::random_entry(random, name));
  text.insert(random.one_in(2) ? 0 : random_place(random, text), entry);
  return true;
}

bool change_text(Random &random, std::string &text) {
  if (text.empty()) return false;
  support::mutate_text(random, text);
  return true;
}

constexpr bool (*changes[])(Random &, std::string &) = {
    duplicate_item, remove_item,  swap_items,    change_key, change_value, move_parenthesis,
    add_space,      cross_refill, join_reserved, add_entry,  change_text};
static_assert(std::size(changes) == static_cast<std::size_t>(Change::count));

std::size_t head_size(std::string_view input, Head head) {
  const std::size_t after_option = std::min<std::size_t>(input.size(), 1);
  if (head == Head::options) return after_option;
  const std::size_t line_feed = input.find('\n', after_option);
  return line_feed == std::string_view::npos ? input.size() : line_feed + 1;
}

// A name to look up that stands in the text, or none that does.
std::string new_name(Random &random, const std::string &text) {
  std::vector<Token> words = tokens_of(text);
  std::erase_if(words, [](const Token &token) { return token.kind != 'w'; });
  if (words.empty() || random.one_in(8)) return support::random_special_name(random);
  const Token word = random.one_in(2) ? words.front() : random.pick(words);
  return text.substr(word.begin, word.end - word.begin);
}

std::string new_head(Random &random, Head head, const std::string &text) {
  const char option = static_cast<char>('0' + (random.one_in(2) ? 0 : random.below(32)));
  if (head == Head::options) return std::string(1, option);
  return option + new_name(random, text) + '\n';
}

}  // namespace

std::vector<Token> tokens_of(std::string_view text) {
  std::vector<Token> tokens;
  for (std::size_t at = skip_space(text, 0); at < text.size(); at = skip_space(text, at)) {
    const bool sign = is_sign(text[at]);
    const std::size_t end = sign ? at + 1 : word_end(text, at);
    tokens.push_back({sign ? text[at] : 'w', at, end});
    at = end;
  }
  return tokens;
}

std::vector<Item> items_of(std::string_view text) {
  const std::vector<Token> tokens = tokens_of(text);
  std::vector<Item> items;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (!is_item(tokens, i)) continue;
    const std::size_t close = block_end(tokens, i);
    const bool is_leaf = close == i + 4 && close < tokens.size() && tokens[i + 3].kind == 'w';
    items.push_back({tokens[i].begin, close < tokens.size() ? tokens[close].end : text.size(),
                     tokens[i + 1], tokens[i + 2].end, is_leaf});
  }
  return items;
}

bool change_names(Change change, Random &random, std::string &text) {
  return changes[static_cast<std::size_t>(change)](random, text);
}

std::string mutated_input(std::string_view input, Head head, Random &random) {
  const std::size_t size = head_size(input, head);
  std::string text(input.substr(size));
  if (random.one_in(8)) return new_head(random, head, text) + text;
  for (std::size_t left = random.between(1, 3); left > 0; --left)
    changes[random.below(std::size(changes))](random, text);
  return std::string(input.substr(0, size)) + text;
}

}  // namespace fuzz
