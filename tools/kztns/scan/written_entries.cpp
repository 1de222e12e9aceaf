#include "scan/written_entries.h"

#include <algorithm>
#include <string>
#include <vector>

#include "scan/item_text.h"
#include "scan/stray_text.h"
#include "text/characters.h"
#include "text/spelling.h"
#include "text/words.h"

namespace kztns {
namespace {

class Scanner {
 public:
  Scanner(std::string_view text, const std::function<void(const WrittenEntry &)> &visit)
      : text_(text), visit_(visit) {}

  void run() {
    while (at_ < text_.size())
      if (!pass_long_comment() && !take_entry()) take_token();
  }

 private:
  bool at_line_start() const { return at_ == 0 || text_[at_ - 1] == '\n'; }

  // After a ")" on its line, where no word can be part of the entry before.
  bool after_close() const { return last_ == ')' && line_ > at_; }

  // The names of a list, from a place on; empty when there are none.
  Offset read_names(Offset at, std::vector<WrittenEntry> &names) {
    for (bool more = true; more;) {
      const Offset begin = at;
      while (at < text_.size() && !ends_name(text_[at]) && text_[at] != ',') ++at;
      if (at == begin) return begin;
      if (names.size() == most_names_of_list) {
        // The list's other lines are no beginnings either.
        no_entry_before_ = begin;
        return begin;
      }
      names.push_back({begin, at, 0, false});
      at = pass_blanks(text_, at);
      more = at < text_.size() && text_[at] == ',';
      if (more) at = pass_blanks(text_, at + 1);
    }
    return at;
  }

  // "NAME, NAME = (" from a place on.
  struct Head {
    std::vector<WrittenEntry> names;
    Offset equal = 0;
    Offset open = 0;
  };

  std::optional<Head> head_at(Offset at) {
    Head head;
    if (at >= text_.size() || ends_name(text_[at])) return std::nullopt;
    head.equal = read_names(at, head.names);
    if (head.names.empty() || head.equal >= text_.size() || text_[head.equal] != '=')
      return std::nullopt;
    head.open = pass_blanks(text_, head.equal + 1);
    if (head.open >= text_.size() || text_[head.open] != '(') return std::nullopt;
    return head;
  }

  // Whether an entry begins here; if so, visits it and goes past its "=".
  bool take_entry() {
    if (!at_line_start() && !indentation_only() && !after_close()) return false;
    if (at_ < no_entry_before_) return false;
    std::optional<Head> head = head_at(at_);
    if (!head || !is_plausible(*head)) return false;
    for (WrittenEntry &name : head->names) {
      name.body = head->equal + 1;
      name.in_list = head->names.size() > 1;
      visit_(name);
    }
    at_ = head->open;
    depth_ = 0;
    last_ = '=';
    return true;
  }

  // The less the place of a name tells, the more what follows its "=" must: at the beginning of a
  // line any value will do, after a ")" only a block of an entry.
  bool is_plausible(const Head &head) const {
    if (is_item(head)) return false;
    if (ends_split_key(head.names.front()) && !begins_value(head.open)) return false;
    if (last_ == '(' && !(at_line_start() && begins_value(head.open))) return false;
    if (after_close() && !begins_value(head.open)) return false;
    return at_line_start() || depth_ == 0 || opens_block(key_after(text_, head.open));
  }

  // Whether a name is the key of an item whose "(" was forgotten, or is another bracket.
  bool is_item(const Head &head) const {
    const WrittenEntry &name = head.names.front();
    std::string_view word = text_.substr(name.name_begin, name.name_end - name.name_begin);
    word.remove_prefix(std::min(word.find_first_not_of("{["), word.size()));
    const ItemWord key = item_word(word);
    // An entry may be named as a key of other readers is, which has no block of an entry.
    if (key.foreign != nullptr && key.foreign->treatment != ForeignTreatment::unwrap &&
        begins_value(head.open))
      return false;
    return (depth_ > 0 || last_ == '=') && key;
  }

  // Whether "(CONN" on the line before and a name are one key, which a line end splits.
  bool ends_split_key(const WrittenEntry &name) const {
    if (last_ != 'k' || before_key_ != '(') return false;
    const std::string_view between = text_.substr(key_.end, name.name_begin - key_.end);
    if (between.find('#') != between.npos) return false;
    std::string word(text_.substr(key_.begin, key_.end - key_.begin));
    word += text_.substr(name.name_begin, name.name_end - name.name_begin);
    return static_cast<bool>(item_word(word));
  }

  // The entries in such a comment are not meant to be read.
  bool pass_long_comment() {
    if (depth_ > 0 || !indentation_only()) return false;
    const std::optional<Offset> end = end_of_long_comment(text_, at_);
    if (end) at_ = line_ = *end;
    return end.has_value();
  }

  // Whether the "(" at a place begins what only an entry has as its value.
  bool begins_value(Offset open) const {
    return placement_of(key_after(text_, open), content_of(Block::entry)).fit == Fit::good;
  }

  bool indentation_only() const {
    return line_ <= at_ &&
           text_.substr(line_, at_ - line_).find_first_not_of(" \t") == std::string_view::npos;
  }

  void take_token() {
    const char c = text_[at_];
    if (c == '#') {
      at_ = end_of_comment(text_, at_);
    } else if (is_blank(c)) {
      // Neither an entry nor a long comment begins at one.
      for (; at_ < text_.size() && is_blank(text_[at_]); ++at_)
        if (text_[at_] == '\n') line_ = at_ + 1;
    } else if (is_sign(c)) {
      depth_ = c == '(' ? depth_ + 1 : c == ')' ? std::max<std::int64_t>(depth_ - 1, 0) : depth_;
      last_ = c;
      ++at_;
    } else {
      before_key_ = last_;
      key_.begin = at_;
      pass_key();
      key_.end = at_;
      last_ = 'k';
    }
    // Blanks after another token are no indentation.
    if (!is_blank(c)) line_ = static_cast<Offset>(text_.size());
  }

  void pass_key() {
    bool in_quotes = false;
    for (; at_ < text_.size(); ++at_) {
      const char c = text_[at_];
      if (c == '"') in_quotes = !in_quotes;
      // Quotes that are still open there were forgotten.
      if (in_quotes && c == '\n' && head_at(at_ + 1)) return;
      if (!in_quotes && (is_blank(c) || is_sign(c))) return;
    }
  }

  std::string_view text_;
  const std::function<void(const WrittenEntry &)> &visit_;
  Offset at_ = 0;
  Offset line_ = 0;  // where the line begins; after at_ when it has tokens already
  Offset no_entry_before_ = 0;
  std::int64_t depth_ = 0;
  char last_ = '\0';
  char before_key_ = '\0';
  Span key_ = {};  // the last one
};

// "host:port/service" or "host:port:sid"
bool is_connect_string(std::string_view value) {
  if (value.starts_with("//")) value.remove_prefix(2);
  const std::size_t colon = value.find_first_of(":/()=\"");
  if (colon == value.npos || colon == 0 || value[colon] != ':') return false;
  const std::size_t port_end = value.find_first_not_of("0123456789", colon + 1);
  return port_end != value.npos && port_end > colon + 1 &&
         (value[port_end] == '/' || value[port_end] == ':');
}

bool is_foreign_entry(std::string_view line) {
  const std::size_t name_end =
      static_cast<std::size_t>(std::find_if(line.begin(), line.end(), ends_name) - line.begin());
  const std::string_view name = line.substr(0, name_end);
  const std::size_t equal = line.find_first_not_of(" \t", name_end);
  if (name.empty() || equal == line.npos || line[equal] != '=' || item_word(name)) return false;
  const std::string_view value = trimmed(line.substr(equal + 1));
  return value.starts_with("\"(") || is_connect_string(value) ||
         (equal_but_for_case(name, "IFILE") && !value.empty() && !value.starts_with('('));
}

}  // namespace

void for_each_written_entry(std::string_view text,
                            const std::function<void(const WrittenEntry &)> &visit) {
  Scanner(text, visit).run();
}

std::vector<Offset> foreign_entries(std::string_view text) {
  std::vector<Offset> found;
  for (Offset line = 0; line < text.size(); line = end_of_line(text, line) + 1)
    if (is_foreign_entry(text.substr(line, end_of_line(text, line) - line))) found.push_back(line);
  return found;
}

}  // namespace kztns
