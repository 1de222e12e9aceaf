#include "rules/parenthesis_causes.h"

#include "scan/commented_items.h"
#include "scan/item_text.h"
#include "scan/tokens.h"
#include "text/characters.h"
#include "text/spelling.h"
#include "text/words.h"

namespace kztns {
namespace {

// How many parentheses are open at the end.
std::int64_t depth_of(const std::vector<EntryToken> &tokens) {
  std::int64_t depth = 0;
  for (const EntryToken &token : tokens) depth += depth_change(token.kind);
  return depth;
}

// Whether a block is of little use without an item of that key.
bool counts(KZCILBKeyType key) {
  return key == LB_ADDRESS || key == LB_ADDRESS_LIST || key == LB_CONNECT_DATA || key == LB_HOST ||
         key == LB_PORT || key == LB_SERVICE_NAME || key == LB_SID;
}

// The key of "(KEY =" where that begins with a token; empty where something else does.
std::string_view key_at(std::string_view text, const std::vector<EntryToken> &tokens,
                        std::size_t open) {
  const bool opens = open + 2 < tokens.size() && tokens[open].kind == '(' &&
                     tokens[open + 1].kind == 'w' && tokens[open + 2].kind == '=';
  if (!opens) return {};
  return text.substr(tokens[open + 1].at, tokens[open + 1].end - tokens[open + 1].at);
}

// Whether a block of that key has none of the same in it.
bool is_not_nested(ItemWord key) {
  const Placement outer = placement_of(key, {Content::foreign});
  return opens_block(key) && placement_of(key, outer.content).fit == Fit::bad;
}

// The "(KEY =" that stands twice, with nothing that counts between the two: the second one's index.
std::optional<std::size_t> find_repeated_opening(std::string_view text,
                                                 const std::vector<EntryToken> &tokens) {
  struct Opened {
    std::string_view key;
    bool has_what_counts = false;
  };
  std::vector<Opened> opened;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind == ')' && !opened.empty()) opened.pop_back();
    if (tokens[i].kind != '(') continue;
    const std::string_view key = key_at(text, tokens, i);
    const ItemWord word = item_word(key);
    if (!opened.empty() && !opened.back().has_what_counts &&
        equal_but_for_case(key, opened.back().key) && is_not_nested(word))
      return i;
    if (counts(word.type))
      for (auto block = opened.rbegin(); block != opened.rend() && !block->has_what_counts; ++block)
        block->has_what_counts = true;
    opened.push_back({key});
  }
  return std::nullopt;
}

Diagnosis repeated_opening(std::string_view text, const std::vector<EntryToken> &tokens,
                           std::size_t open) {
  const EntryToken &key = tokens[open + 1];
  // Without the blanks before it, so that what comes after it keeps its line.
  const Offset before = tokens[open - 1].end;
  const Offset begin =
      trimmed(text.substr(before, tokens[open].at - before)).empty() ? before : tokens[open].at;
  return {Rule::extra_open, tokens[open].at,
          "unmatched \"(\": " + excerpt(text.substr(key.at, key.end - key.at)) + " is opened twice",
          "remove one of them", unsafe_fix({{begin, tokens[open + 2].end, {}}})};
}

// What other readers take as a comment, after an item, up to the end of its line: its tokens.
struct ForeignComment {
  std::size_t begin;
  std::size_t end;
  std::int64_t depth_change;
};

// The first one without which the parentheses balance.
std::optional<ForeignComment> find_unbalanced_comment(std::string_view text,
                                                      const std::vector<EntryToken> &tokens,
                                                      std::int64_t depth) {
  for (std::size_t i = 1; i + 1 < tokens.size(); ++i) {
    const std::string_view word = text.substr(tokens[i].at, tokens[i].end - tokens[i].at);
    const bool begins_comment = tokens[i].kind == 'w' && tokens[i - 1].kind == ')' &&
                                (word.starts_with("--") || word.starts_with("//"));
    if (!begins_comment) continue;
    const Offset line_end = end_of_line(text, tokens[i].at);
    ForeignComment found = {i, i, 0};
    for (; found.end + 1 < tokens.size() && tokens[found.end].at < line_end; ++found.end)
      found.depth_change += depth_change(tokens[found.end].kind);
    if (found.depth_change == depth) return found;
    i = found.end - 1;
  }
  return std::nullopt;
}

// Lookups count parentheses in comments: those without a partner there become brackets.
Diagnosis unbalanced_comment(const Subject &subject, const std::vector<EntryToken> &tokens,
                             const ForeignComment &comment) {
  const EntryToken &begin = tokens[comment.begin];
  std::vector<Edit> edits = {{begin.at, begin.at, "# "}};
  std::vector<Offset> open;
  for (std::size_t i = comment.begin; i < comment.end; ++i) {
    if (tokens[i].kind == '(') open.push_back(tokens[i].at);
    if (tokens[i].kind != ')') continue;
    if (open.empty())
      edits.push_back({tokens[i].at, tokens[i].end, "]"});
    else
      open.pop_back();
  }
  for (const Offset at : open) edits.push_back({at, at + 1, "["});
  sort_edits(edits);
  const bool is_close = comment.depth_change < 0;
  std::string text = "unmatched ";
  text += is_close ? "\")\"" : "\"(\"";
  text += " after " + quoted_token(subject, begin.at);
  return {is_close ? Rule::extra_close : Rule::extra_open, begin.at, std::move(text),
          "begin the comment with \"#\", and remove the parenthesis from it",
          unsafe_fix(std::move(edits))};
}

// A bracket at the end of a value that nothing opened in it: "(HOST = h]". Its length; 0 for none.
Offset other_close(std::string_view value) {
  struct Brackets {
    std::string_view all, close;
  };
  constexpr Brackets kinds[] = {{"[]", "]"}, {"{}", "}"}};
  for (const auto &[all, close] : kinds)
    if (value.ends_with(close) && value.find_first_of(all) + 1 == value.size()) return 1;
  const bool full_width = value.ends_with(full_width_close) &&
                          value.find(full_width_open) == std::string_view::npos &&
                          value.find(full_width_close) + full_width_close.size() == value.size();
  return static_cast<Offset>(full_width ? full_width_close.size() : 0);
}

// Those of an entry that lacks as many ")" at least.
std::optional<Diagnosis> find_other_closes(const Subject &subject,
                                           const std::vector<EntryToken> &tokens,
                                           std::int64_t depth) {
  const std::string_view text = subject.text.text();
  std::vector<Edit> edits;
  for (std::size_t i = 1; i < tokens.size(); ++i) {
    if (tokens[i].kind != 'w' || tokens[i - 1].kind != '=') continue;
    const Offset end = tokens[i].end;
    const Offset length = other_close(text.substr(tokens[i].at, end - tokens[i].at));
    if (length > 0) edits.push_back({end - length, end, ")"});
  }
  if (edits.empty() || static_cast<std::int64_t>(edits.size()) > depth) return std::nullopt;
  const Edit &first = edits[0];
  const std::string_view found = text.substr(first.begin, first.end - first.begin);
  return Diagnosis{Rule::unclosed_block, first.begin, "expected \")\", found " + quoted(found),
                   "put \")\" instead of it", unsafe_fix(std::move(edits))};
}

// Items of the entry that stand in a comment, up to its end.
struct CommentedItems {
  Offset comment;
  Offset open;
  bool after_words;
};

std::int64_t depth_of(std::string_view text) {
  std::int64_t depth = 0;
  for (const char c : text) depth += depth_change(c);
  return depth;
}

// Whether what comes after the comment belongs into the block that it begins.
bool goes_on_after(std::string_view text, Offset open, Offset comment_end) {
  const Placement block = placement_of(key_after(text, open), {});
  const ItemWord next = key_after(text, pass_blanks(text, comment_end));
  return next && placement_of(next, block.content).fit == Fit::good;
}

// Whether an item of a key is among the tokens, or one that sets the same.
bool is_given(std::string_view text, const std::vector<EntryToken> &tokens, ItemWord word) {
  for (std::size_t i = 0; i + 1 < tokens.size(); ++i)
    if (tokens[i].kind == '(' && item_word(key_at(text, tokens, i)).type == word.type) return true;
  return false;
}

// Those with which the parentheses balance: a block that the entry lacks otherwise. After words,
// "# words (KEY = ...", a line end is gone before them; without, the beginning of a block alone was
// made a comment.
std::optional<CommentedItems> find_commented_items(std::string_view text,
                                                   const std::vector<EntryToken> &tokens,
                                                   Offset end, std::int64_t depth) {
  std::optional<CommentedItems> found;
  for_each_comment(text, tokens[0].at, end, [&](Offset comment, Offset comment_end) {
    const auto open = item_in_comment(text, comment, comment_end);
    if (found || !open || depth_of(text.substr(*open, comment_end - *open)) != -depth) return;
    const bool after_words = text.find_first_not_of("# \t", comment) < *open;
    const ItemWord word = key_after(text, *open);
    if (after_words && (!opens_block(word) || is_given(text, tokens, word))) return;
    if (after_words || (depth == -1 && goes_on_after(text, *open, comment_end)))
      found = {comment, *open, after_words};
  });
  return found;
}

Diagnosis commented_items(const Subject &subject, const CommentedItems &items, bool has_close) {
  const std::string_view text = subject.text.text();
  const std::size_t last = text.substr(0, items.open).find_last_not_of(blanks_of_line);
  const auto end_of_words = static_cast<Offset>(last + 1);
  std::string told = has_close ? "unmatched \")\": " : "expected \")\": ";
  told += excerpt(key_text(text, items.open));
  told += " at " + subject.text.place(items.open) + " is in this comment";
  return {has_close ? Rule::extra_close : Rule::unclosed_block, items.comment, std::move(told),
          items.after_words ? "begin a line with it" : "uncomment it",
          unsafe_fix({items.after_words ? Edit{end_of_words, items.open, "\n    "}
                                        : Edit{items.comment, end_of_words, {}}})};
}

}  // namespace

std::optional<Diagnosis> find_parenthesis_cause(const Subject &subject,
                                                const std::vector<EntryToken> &tokens, Offset end) {
  const std::string_view text = subject.text.text();
  const std::int64_t depth = depth_of(tokens);
  if (depth == 0) return std::nullopt;
  if (const auto open = find_repeated_opening(text, tokens); open && depth > 0)
    return repeated_opening(text, tokens, *open);
  if (auto closes = find_other_closes(subject, tokens, depth)) return closes;
  if (const auto comment = find_unbalanced_comment(text, tokens, depth))
    return unbalanced_comment(subject, tokens, *comment);
  if (const auto items = find_commented_items(text, tokens, end, depth))
    return commented_items(subject, *items, depth < 0);
  return std::nullopt;
}

}  // namespace kztns
