#include "scan/written_entries.h"

#include <algorithm>
#include <vector>

#include "text/characters.h"
#include "text/spelling.h"
#include "text/words.h"

namespace kztns {
namespace {

bool ends_name(char c) { return is_blank(c) || is_sign(c) || c == '#' || c == '"'; }

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

  // Whether an entry begins here; if so, visits it and goes past its "=".
  bool take_entry() {
    if (!at_line_start() && !indentation_only() && !after_close()) return false;
    if (ends_name(text_[at_]) || at_ < no_entry_before_) return false;
    std::vector<WrittenEntry> names;
    const Offset equal = read_names(at_, names);
    if (names.empty() || equal >= text_.size() || text_[equal] != '=') return false;
    const Offset open = pass_blanks(text_, equal + 1);
    if (open >= text_.size() || text_[open] != '(') return false;
    if (is_item(names.front())) return false;
    if (last_ == '(' && !(at_line_start() && begins_value(open))) return false;
    if (after_close() && !begins_value(open)) return false;
    if (!at_line_start() && depth_ > 0 && !opens_block(key_after(text_, open))) return false;
    for (WrittenEntry &name : names) {
      name.body = equal + 1;
      name.in_list = names.size() > 1;
      visit_(name);
    }
    at_ = open;
    depth_ = 0;
    last_ = '=';
    return true;
  }

  // Whether a name is the key of an item whose "(" was forgotten, or is another bracket.
  bool is_item(const WrittenEntry &name) const {
    std::string_view word = text_.substr(name.name_begin, name.name_end - name.name_begin);
    word.remove_prefix(std::min(word.find_first_not_of("{["), word.size()));
    return (depth_ > 0 || last_ == '=') && item_word(word);
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
      pass_key();
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
      if (in_quotes && c == '\n' && begins_entry(at_ + 1)) return;
      if (!in_quotes && (is_blank(c) || is_sign(c))) return;
    }
  }

  // Whether quotes that are still open at a line feed were forgotten.
  bool begins_entry(Offset line) {
    if (line >= text_.size() || ends_name(text_[line])) return false;
    std::vector<WrittenEntry> names;
    const Offset equal = read_names(line, names);
    if (names.empty() || equal >= text_.size() || text_[equal] != '=') return false;
    const Offset open = pass_blanks(text_, equal + 1);
    return open < text_.size() && text_[open] == '(';
  }

  std::string_view text_;
  const std::function<void(const WrittenEntry &)> &visit_;
  Offset at_ = 0;
  Offset line_ = 0;  // where the line begins; after at_ when it has tokens already
  Offset no_entry_before_ = 0;
  std::int64_t depth_ = 0;
  char last_ = '\0';
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

ItemWord key_after(std::string_view text, Offset open) {
  if (open >= text.size() || text[open] != '(') return {};
  const Offset begin = pass_blanks(text, open + 1);
  Offset end = begin;
  while (end < text.size() && !ends_name(text[end]) && text[end] != ':') ++end;
  return item_word(text.substr(begin, end - begin));
}

std::optional<Offset> end_of_long_comment(std::string_view text, Offset at) {
  if (!text.substr(at).starts_with("/*")) return std::nullopt;
  // One in which another one begins was forgotten to be closed.
  for (std::size_t star = text.find('*', at + 2); star != std::string_view::npos;
       star = text.find('*', star + 1)) {
    if (text.substr(star + 1).starts_with('/')) return static_cast<Offset>(star + 2);
    if (text[star - 1] == '/') return std::nullopt;
  }
  return std::nullopt;
}

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

std::optional<HiddenParenthesis> find_hidden(std::string_view text, Offset from, Offset to,
                                             char parenthesis) {
  text = text.substr(0, to);
  for (Offset at = from; at < text.size();) {
    if (is_blank(text[at]) || is_sign(text[at])) {
      ++at;
      continue;
    }
    // In a word parentheses stand in quotes only.
    const bool in_comment = text[at] == '#';
    const Offset end = in_comment ? end_of_comment(text, at) : end_of_whole_word(text, at).at;
    const std::size_t hidden = text.substr(0, end).find(parenthesis, at);
    if (hidden != text.npos) return HiddenParenthesis{static_cast<Offset>(hidden), in_comment};
    at = end;
  }
  return std::nullopt;
}

std::optional<std::pair<Offset, Offset>> quotes_around_items(std::string_view text, Offset from,
                                                             Offset to) {
  const auto has_items = [](std::string_view quoted) {
    const std::string_view rest = quoted.substr(std::min(quoted.find(')'), quoted.size()));
    return quoted.find('\n') != quoted.npos ||
           (rest.find('(') != rest.npos && rest.find('=') != rest.npos);
  };
  text = text.substr(0, to);
  for (std::size_t open = text.find('"', from); open != text.npos;) {
    const std::size_t close = text.find('"', open + 1);
    if (close == text.npos) return std::nullopt;
    // After a quote that closes, a blank or a sign follows.
    const bool closes = close + 1 >= text.size() || ends_name(text[close + 1]);
    if (!closes && has_items(text.substr(open, close - open)))
      return std::pair(static_cast<Offset>(open), static_cast<Offset>(close));
    open = text.find('"', close + 1);
  }
  return std::nullopt;
}

std::optional<Offset> open_quote(std::string_view text, Offset from, Offset to) {
  std::optional<Offset> open;
  for (Offset at = from; at < to; ++at) {
    if (text[at] != '"') continue;
    if (open)
      open.reset();
    else
      open = at;
  }
  return open;
}

}  // namespace kztns
