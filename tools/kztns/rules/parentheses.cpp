#include "rules/parentheses.h"

#include <algorithm>

#include "scan/parenthesis_search.h"
#include "scan/reserved_names.h"
#include "scan/written_entries.h"
#include "text/characters.h"
#include "text/spelling.h"
#include "text/words.h"

namespace kztns {
namespace {

class ParenthesisExplainer {
 public:
  // last says whether no entry comes after this one.
  ParenthesisExplainer(const Subject &subject, const std::vector<EntryToken> &tokens,
                       const ParenthesisChange &change, bool last)
      : subject_(subject),
        text_(subject.text),
        tokens_(tokens),
        change_(change),
        at_(tokens[change.token]),
        last_(last) {}

  Diagnosis diagnose() const {
    switch (change_.edit) {
      case ParenthesisEdit::add_close:
        return never_closed();
      case ParenthesisEdit::add_open:
        return {Rule::missing_open,
                at_.at,
                "expected \"(\" before " + word(at_),
                {},
                unsafe_fix({{at_.at, after_other_bracket(), "("}}),
                path()};
      case ParenthesisEdit::remove_close:
        return surplus(Rule::extra_close, "unmatched \")\"");
      default:
        return surplus(Rule::extra_open, "unmatched \"(\"");
    }
  }

 private:
  std::string_view slice(const EntryToken &token) const {
    return std::string_view(text_.text()).substr(token.at, token.end - token.at);
  }
  std::string word(const EntryToken &token) const { return excerpt(slice(token)); }

  // Where the word at fault goes on after what is no parenthesis here.
  Offset after_other_bracket() const {
    for (const std::string_view bracket :
         {full_width_open, std::string_view("{"), std::string_view("[")})
      if (slice(at_).starts_with(bracket)) return at_.at + static_cast<Offset>(bracket.size());
    return at_.at;
  }

  // The key of the item that a "(" begins; null for none.
  const EntryToken *key_of(std::size_t open) const {
    return tokens_[open].kind == '('   ? key_at(open + 1)
           : tokens_[open].kind == 'w' ? key_at(open)
                                       : nullptr;
  }
  const EntryToken *key_at(std::size_t i) const {
    return tokens_[i].kind == 'w' ? &tokens_[i] : nullptr;
  }

  Diagnosis surplus(Rule rule, std::string text) const {
    return {rule, at_.at, std::move(text), {}, unsafe_fix({{at_.at, at_.end, ""}}), path()};
  }

  Diagnosis never_closed() const {
    const std::size_t open = change_.blocks.back();
    const EntryToken *const key = key_of(open);
    const EntryToken &last = tokens_[last_of_items()];
    std::string text = key == nullptr ? "this \"(\"" : word(*key);
    text += " is not closed: expected \")\" " + next();
    return {Rule::unclosed_block,
            tokens_[open].at,
            std::move(text),
            "put \")\" at " + text_.place(last.end),
            unsafe_fix({{last.end, last.end, ")"}}),
            path_of(change_.blocks.size() - 1)};
  }

  // Before the place of the change, without words after an item, which may be another entry's.
  std::size_t last_of_items() const {
    std::size_t last = change_.token - 1;
    while (last > 0 && tokens_[last].kind == 'w') --last;
    return tokens_[last].kind == ')' ? last : change_.token - 1;
  }

  std::string next() const {
    const std::string place = " at " + text_.place(at_.at);
    if (at_.kind == '(' && key_of(change_.token) != nullptr)
      return "before " + word(*key_of(change_.token)) + place;
    if (at_.kind != '\0') return "before \"" + word(at_) + "\"" + place;
    if (last_) return "before the end of the " + std::string(subject_.noun) + place;
    return "before the next entry" + place;
  }

  // The blocks around what is at fault, as they are known by their keys.
  std::string path() const { return path_of(change_.blocks.size()); }
  std::string path_of(std::size_t depth) const {
    std::string path;
    for (std::size_t i = 0; i < depth; ++i) {
      const std::size_t open = change_.blocks[i];
      const EntryToken *const key = key_of(open);
      if (key == nullptr || !opens_block(item_word(slice(*key)))) continue;
      if (!path.empty()) path += '/';
      for (const char c : word(*key)) path += kzoci::capital(c);
    }
    return path;
  }

  const Subject &subject_;
  const NamesText &text_;
  const std::vector<EntryToken> &tokens_;
  const ParenthesisChange &change_;
  const EntryToken &at_;
  bool last_;
};

// The "(KEY =" that stands twice, where a block of that key has none of the same in it: the second
// one's index.
std::optional<std::size_t> find_repeated_opening(std::string_view text,
                                                 const std::vector<EntryToken> &tokens) {
  const auto key_at = [&](std::size_t open) {
    const bool opens =
        tokens[open].kind == '(' && tokens[open + 1].kind == 'w' && tokens[open + 2].kind == '=';
    const EntryToken &key = tokens[open + 1];
    return opens ? text.substr(key.at, key.end - key.at) : std::string_view();
  };
  for (std::size_t i = 0; i + 6 < tokens.size(); ++i) {
    const std::string_view key = key_at(i);
    if (key.empty() || !equal_but_for_case(key, key_at(i + 3))) continue;
    const Placement outer = placement_of(item_word(key), {Content::foreign});
    if (opens_block(item_word(key)) && placement_of(item_word(key), outer.content).fit == Fit::bad)
      return i + 3;
  }
  return std::nullopt;
}

bool is_short_of_closes(const std::vector<EntryToken> &tokens) {
  std::int64_t depth = 0;
  for (const EntryToken &token : tokens) depth += depth_change(token.kind);
  return depth > 0;
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
                                                      const std::vector<EntryToken> &tokens) {
  std::int64_t depth = 0;
  for (const EntryToken &token : tokens) depth += depth_change(token.kind);
  for (std::size_t i = 1; i + 1 < tokens.size() && depth != 0; ++i) {
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
                                           const std::vector<EntryToken> &tokens) {
  const std::string_view text = subject.text.text();
  std::int64_t depth = 0;
  for (const EntryToken &token : tokens) depth += depth_change(token.kind);
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

}  // namespace

std::optional<Diagnosis> find_parenthesis_fault(const Subject &subject, EntryRange range,
                                                std::string_view name) {
  const std::string_view text = subject.text.text();
  const auto tokens = entry_tokens(text, range.body, range.end);
  if (!tokens) return std::nullopt;
  if (const auto open = find_repeated_opening(text, *tokens); open && is_short_of_closes(*tokens))
    return repeated_opening(text, *tokens, *open);
  if (auto closes = find_other_closes(subject, *tokens)) return closes;
  if (const auto comment = find_unbalanced_comment(text, *tokens))
    return unbalanced_comment(subject, *tokens, *comment);
  // A literal descriptor has no name.
  const bool reserved = !name.empty() && is_reserved(name);
  const auto change =
      first_parenthesis_change(text, *tokens, reserved ? Block::system_variables : Block::entry);
  if (!change) return std::nullopt;
  return ParenthesisExplainer(subject, *tokens, *change, range.last).diagnose();
}

std::optional<Offset> no_name_after(std::string_view text, Offset body) {
  Offset at = pass_blanks(text, body);
  std::int64_t depth = 0;
  for (; at < text.size(); ++at) {
    depth += text[at] == '(' ? 1 : text[at] == ')' ? -1 : 0;
    if (depth <= 0) break;
  }
  const Offset next = pass_blanks(text, at + 1);
  const bool name_follows =
      next >= text.size() || std::string_view("()=").find(text[next]) == std::string_view::npos;
  if (name_follows) return std::nullopt;
  return next;
}

void EntryRanges::find_names() {
  names_ = foreign_entries(text_.text());
  for_each_written_entry(
      text_.text(), [this](const WrittenEntry &written) { names_.push_back(written.name_begin); });
  std::sort(names_.begin(), names_.end());
  known_ = true;
}

EntryRange EntryRanges::range_of(Offset body) {
  if (!known_) find_names();
  const auto next = std::upper_bound(names_.begin(), names_.end(), body);
  const Offset end = next == names_.end() ? text_.size() : *next;
  spent_ += end - body;
  const bool overlaps = spent_ > most_times_over * text_.size();
  return {body, overlaps ? body : end, next == names_.end()};
}

}  // namespace kztns
