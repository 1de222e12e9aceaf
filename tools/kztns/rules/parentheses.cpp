#include "rules/parentheses.h"

#include <algorithm>

#include "rules/parenthesis_causes.h"
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

}  // namespace

std::optional<Diagnosis> find_parenthesis_fault(const Subject &subject, EntryRange range,
                                                std::string_view name) {
  const std::string_view text = subject.text.text();
  const auto tokens = entry_tokens(text, range.body, range.end);
  if (!tokens) return std::nullopt;
  if (auto cause = find_parenthesis_cause(subject, *tokens, range.end)) return cause;
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
