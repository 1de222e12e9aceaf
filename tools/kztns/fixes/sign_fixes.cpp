#include "fixes/sign_fixes.h"

#include <utility>

#include "scan/item_words.h"
#include "scan/tokens.h"
#include "text/characters.h"
#include "text/escape.h"

namespace kztns {

std::string remedy_of_removal(std::string_view text) {
  return "remove " + quoted(excerpt(trimmed(text)));
}

namespace {

struct Brackets {
  std::string_view open;
  std::string_view close;
};

constexpr Brackets other_brackets[] = {{"{", "}"}, {"[", "]"}, {full_width_open, full_width_close}};

// Whether the word at a place ends a line on which a shell would go on.
bool is_continuation(const FaultPlace &place, Span word) {
  if (place.slice(word) != "\\") return false;
  const std::size_t next = place.text().find_first_not_of(blanks_of_line, word.end);
  return next == std::string_view::npos || place.text()[next] == '\n';
}

Edit without_blanks_before(const FaultPlace &place, Span word) {
  const std::size_t last = place.text().substr(0, word.begin).find_last_not_of(" \t");
  return {static_cast<Offset>(last + 1), word.end, {}};
}

// Whether a token comes after the entry whose blocks are due.
bool is_after_entry(const FaultPlace &place, const Token &token, std::int64_t depth) {
  return place.is_before_blocks() && depth == 0 && token.kind != TokenKind::open;
}

bool is_sign_of_equal(const FaultPlace &place, const Token &token) {
  return token.kind == TokenKind::equal ||
         (token.kind == TokenKind::word && place.text()[token.span.begin] == '>');
}

// The blanks after them, too, where there are some before them. A ">" may belong to a value that
// touches it.
void add_removal_of_signs(const FaultPlace &place, Offset at, Fix &fix) {
  const std::string_view text = place.text();
  const Offset end = place.after("=>", at);
  const Offset next = place.after("=> \t", at);
  fix.edits.push_back({at, is_blank(text[at - 1]) ? next : end, {}});
  const bool touches = end < text.size() && !is_blank(text[end]) && text[end] != '(';
  if (touches && text[end - 1] == '>') fix.applicability = Applicability::unsafe;
}

// Removes the signs after the "=" of each key of the entry, from one that ends at a place on; those
// before the second place, too, where the entry ends earlier.
Fix without_signs(const FaultPlace &place, Offset at, Offset end) {
  Fix fix = safe_fix({});
  std::int64_t depth = 0;
  Token before[2] = {{TokenKind::open, {at, at}}, {TokenKind::word, {at, at}}};
  Token token = {TokenKind::equal, {at, at}};
  TokenReader tokens(place.text(), at);
  while (token.kind != TokenKind::end) {
    const bool after_key = token.kind == TokenKind::equal && before[1].kind == TokenKind::word &&
                           before[0].kind == TokenKind::open;
    depth += depth_change(token);
    before[0] = std::exchange(before[1], token);
    token = tokens.next();
    if (after_key && is_sign_of_equal(place, token)) {
      add_removal_of_signs(place, token.span.begin, fix);
      while (token.kind != TokenKind::end && token.span.begin < fix.edits.back().end)
        token = tokens.next();
    }
    if (is_after_entry(place, token, depth) && token.span.begin >= end) break;
  }
  return fix;
}

bool begins_value(const FaultPlace &place, Offset at) {
  return place.has_sign(at, '(') || (!place.is_before_blocks() && !place.word_at(at).empty());
}

// For the bracket at fault, those in it and its partner; empty when it has none.
std::vector<Edit> parentheses_for(const FaultPlace &place, const Brackets &brackets) {
  const std::string_view text = place.text();
  std::vector<Edit> edits;
  std::size_t depth = 0;
  const auto take = [&](Offset at, std::string_view bracket, const char *parenthesis) {
    if (!text.substr(at).starts_with(bracket)) return false;
    edits.push_back({at, at + static_cast<Offset>(bracket.size()), parenthesis});
    return true;
  };
  // Open ones that go deeper are of other entries.
  constexpr std::size_t most = 100;
  for (Offset at = place.fault().at; at < text.size() && depth < most; ++at) {
    if (text[at] == '"')
      at = static_cast<Offset>(std::min(text.find('"', at + 1), text.size() - 1));
    if (text[at] == '#') at = end_of_line(text, at);
    if (at >= text.size()) break;
    if (take(at, brackets.open, "(")) ++depth;
    if (take(at, brackets.close, ")") && --depth == 0) return edits;
  }
  return {};
}

}  // namespace

// All of the entry at once: who writes one writes them on each line.
std::optional<Mending> mend_continuations(const FaultPlace &place) {
  std::vector<Edit> edits;
  std::int64_t depth = 0;
  TokenReader tokens(place.text(), place.fault().at);
  for (Token token = tokens.next(); token.kind != TokenKind::end; token = tokens.next()) {
    if (is_continuation(place, token.span))
      edits.push_back(without_blanks_before(place, token.span));
    else if (edits.empty() || is_after_entry(place, token, depth))
      break;
    depth += depth_change(token);
  }
  if (edits.empty()) return std::nullopt;
  return Mending{safe_fix(std::move(edits)), "remove \"\\\": an entry goes on by itself"};
}

std::optional<Mending> mend_equal_signs(const FaultPlace &place, Offset at) {
  const Offset end = place.after("=>", at);
  const bool of_quoted_mail = begins_line(place.text(), at) && place.has_sign(at, '>');
  if (of_quoted_mail || end == at || place.is_after_item() ||
      !begins_value(place, place.after_blanks(end)))
    return std::nullopt;
  return Mending{without_signs(place, at, end), remedy_of_removal(place.slice({at, end}))};
}

// What comes after a semicolon on its line is a comment to other readers, and all of a line that
// begins with it.
std::optional<Mending> mend_separators(const FaultPlace &place) {
  const Offset at = place.fault().at;
  const Offset end = place.after(",;", at);
  const Offset next = place.after_blanks(end);
  if (end == at || !(place.has_sign(next, '(') || place.has_sign(next, ')'))) return std::nullopt;
  const bool may_be_comment = place.has_sign(at, ';') && next < end_of_line(place.text(), at);
  if (may_be_comment && begins_line(place.text(), at)) return std::nullopt;
  const Applicability applicability = may_be_comment ? Applicability::unsafe : Applicability::safe;
  return Mending{{applicability, {{at, end, {}}}}, remedy_of_removal(place.slice({at, end}))};
}

std::optional<Mending> mend_brackets(const FaultPlace &place) {
  const Offset at = place.fault().at;
  for (const Brackets &brackets : other_brackets) {
    if (!place.text().substr(at).starts_with(brackets.open)) continue;
    const Offset key = place.after_blanks(at + static_cast<Offset>(brackets.open.size()));
    std::vector<Edit> edits = parentheses_for(place, brackets);
    if (!item_word(place.slice(place.word_at(key))) || edits.empty()) return std::nullopt;
    return Mending{unsafe_fix(std::move(edits)), "write parentheses instead of brackets"};
  }
  return std::nullopt;
}

}  // namespace kztns
