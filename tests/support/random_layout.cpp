// The ways to write tokens down.
#include <algorithm>
#include <span>

#include "random_input.h"

namespace support {
namespace {

bool is_word(const Token &token) {
  return token.kind != TokenKind::open && token.kind != TokenKind::close &&
         token.kind != TokenKind::equal;
}

bool needs_quotes(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '(' || c == ')' || c == '=';
}

std::string quoted_where_needed(const std::string &text) {
  const bool plain =
      !text.empty() && text.front() != '#' && std::none_of(text.begin(), text.end(), needs_quotes);
  return plain ? text : '"' + text + '"';
}

// A pair of quotes around a part, which may be all or nothing of the text.
std::string quoted_in_part(const std::string &text, Random &random) {
  if (random.one_in(3)) return quoted_where_needed(text);
  const std::size_t size = text.size();
  const auto first = std::find_if(text.begin(), text.end(), needs_quotes);
  const auto last = std::find_if(text.rbegin(), text.rend(), needs_quotes);
  std::size_t open = random.below(static_cast<std::size_t>(first - text.begin()) + 1);
  if (!text.empty() && text.front() == '#') open = 0;
  const std::size_t close =
      random.between(std::max(open, static_cast<std::size_t>(text.rend() - last)), size);
  return text.substr(0, open) + '"' + text.substr(open, close - open) + '"' + text.substr(close);
}

std::string written(const Token &token, Random &random, const Layout &layout) {
  const bool has_case = token.kind == TokenKind::key_word || token.kind == TokenKind::word;
  const std::string text =
      layout.change_case && has_case ? random_case(random, token.text) : token.text;
  return layout.quotes ? quoted_in_part(text, random) : quoted_where_needed(text);
}

void append_blanks(std::string &out, Random &random) {
  constexpr std::string_view blanks = " \t\r\n";
  std::size_t left = random.one_in(60) ? random.between(4, 60) : random.below(4);
  for (; left > 0; --left) out += random.pick(blanks);
}

void append_comment(std::string &out, Random &random, bool parentheses) {
  constexpr std::string_view characters = "abc \t\r\"#==;KZ()()";
  constexpr std::size_t parentheses_at_end = 4;
  const std::string_view allowed =
      characters.substr(0, characters.size() - (parentheses ? 0 : parentheses_at_end));
  out += '#';
  std::size_t left = random.one_in(50) ? random.between(20, 200) : random.below(8);
  for (; left > 0; --left) out += random.pick(allowed);
  out += '\n';
}

void append_space(std::string &out, bool after_word, bool before_word, Random &random,
                  const Layout &layout) {
  const std::size_t size = out.size();
  if (layout.blanks && random.one_in(3)) append_blanks(out, random);
  if (layout.comments && random.one_in(12)) {
    // A "#" right after a word would belong to it.
    if (after_word && out.size() == size) out += ' ';
    append_comment(out, random, layout.parentheses_in_comments);
    append_blanks(out, random);
  }
  if (after_word && before_word && out.size() == size) out += ' ';
}

void append(std::string &out, std::span<const Token> tokens, Random &random, const Layout &layout) {
  bool after_word = false;
  for (const Token &token : tokens) {
    const bool word = is_word(token);
    append_space(out, after_word, word, random, layout);
    if (word)
      out += written(token, random, layout);
    else
      out += token.text;
    after_word = word;
  }
}

}  // namespace

std::string write_tokens(const Tokens &tokens, Random &random, const Layout &layout) {
  std::string out;
  append(out, tokens, random, layout);
  return out;
}

std::string write_plain(const Tokens &tokens) {
  Random unused(0);
  return write_tokens(tokens, unused, {});
}

std::string write_literal(const Tokens &tokens, Random &random, const Layout &layout) {
  constexpr std::size_t beginning = 3;  // "(", "DESCRIPTION" and "="
  Layout at_start = layout;
  at_start.comments = false;
  at_start.quotes = false;
  const std::span<const Token> all = tokens;
  const std::size_t size = std::min(beginning, all.size());
  std::string out;
  append(out, all.first(size), random, at_start);
  append(out, all.subspan(size), random, layout);
  return out;
}

}  // namespace support
