#include "scan/further_stops.h"

#include <algorithm>

#include "scan/item_text.h"
#include "scan/item_words.h"
#include "scan/line_prefixes.h"
#include "scan/reserved_names.h"
#include "scan/stray_text.h"
#include "scan/tokens.h"
#include "scan/written_items.h"
#include "text/characters.h"
#include "text/words.h"

namespace kztns {
namespace {

// Later ones are reported by the next run.
constexpr std::size_t most_stops = 100'000;

KZCITnsTokenType type_at(std::string_view text, Offset at) {
  if (at >= text.size()) return TNS_ERROR_TYPE;
  switch (text[at]) {
    case '(':
      return TNS_LEFT_PARENTHESES;
    case ')':
      return TNS_RIGHT_PARENTHESES;
    case '=':
      return TNS_EQUAL_SIGN;
    default:
      return TNS_KEY;
  }
}

class FurtherStops {
 public:
  explicit FurtherStops(const FileScan &scan) : scan_(scan), text_(scan.text().text()) {}

  std::vector<Stop> find() {
    Offset from = after_first();
    for (; next_ < scan_.entries().size(); ++next_) {
      const Entry &entry = scan_.entries()[next_];
      if (entry.reached || entry.at < from) continue;
      pass_gap(from, entry.at);
      after_entry_ = true;
      if (entry.in_list) add(StopKind::no_equal, end_of_first_name(entry.at), entry.at);
      from = after(entry);
    }
    pass_gap(from, size());
    return std::move(stops_);
  }

 private:
  Offset size() const { return static_cast<Offset>(text_.size()); }

  void add(StopKind kind, Offset at, Offset name) {
    if (stops_.size() < most_stops) stops_.push_back({kind, at, name, type_at(text_, at)});
  }

  Offset end_of_first_name(Offset at) const { return pass_blanks(text_, end_of_word(text_, at)); }

  // The first entry after a place that lookups do not reach; the end for none.
  Offset next_entry(Offset at) const {
    const auto found = std::find_if(scan_.first_after(at), scan_.entries().end(),
                                    [](const Entry &entry) { return !entry.reached; });
    return found == scan_.entries().end() ? size() : found->at;
  }

  Offset after_first() {
    const Stop &stop = scan_.stop();
    const Entry *const last = scan_.last_reached();
    switch (stop.kind) {
      case StopKind::reserved:
        return after(*last);
      case StopKind::never_balanced:
        return next_entry(last->at);
      case StopKind::end:
      case StopKind::gave_up:
        return size();
      default:
        break;
    }
    if (const Entry *const list = list_at(stop.name)) return after(*list);
    // A parenthesis in a comment or in quotes leads lookups into an entry.
    if (last != nullptr && after(*last) > stop.at) return after(*last);
    return after(stop, next_entry(stop.at));
  }

  const Entry *list_at(Offset at) const {
    const auto entry =
        std::lower_bound(scan_.entries().begin(), scan_.entries().end(), at,
                         [](const Entry &one, Offset place) { return one.at < place; });
    const bool found = entry != scan_.entries().end() && entry->at == at && entry->in_list;
    return found ? &*entry : nullptr;
  }

  // Where the text after an entry begins.
  Offset after(const Entry &entry) const {
    const Offset limit = next_entry(entry.body);
    const std::string_view before = text_.substr(0, limit);
    const Offset open = pass_blanks(before, entry.body);
    if (type_at(before, open) != TNS_LEFT_PARENTHESES)
      return after_words(scan_.name(entry), open, limit);
    const auto end = ends_lookups(scan_.name(entry)) ? end_of_items(before, entry.body)
                                                     : end_of_item(before, open);
    return end.value_or(limit);
  }

  // After words that are no value, and the value that may follow them, on their line or the next.
  Offset after_words(std::string_view name, Offset at, Offset limit) const {
    const Offset end = std::min(end_of_line(text_, at), limit);
    const std::string_view value = text_.substr(0, std::min(limit, end_of_bare_value(text_, at)));
    const std::vector<WrittenItem> items = items_from(value, next_open(value, at, end));
    const bool is_value = !items.empty() && may_be_value(name, key_word(text_, items[0]));
    return is_value ? std::max(items.back().end, end) : end;
  }

  // The first "(" on a line or, where there is none, what comes after it.
  static Offset next_open(std::string_view text, Offset at, Offset line_end) {
    TokenReader tokens(text.substr(0, line_end), at);
    Token token = tokens.next();
    while (token.kind != TokenKind::open && token.kind != TokenKind::end) token = tokens.next();
    return token.kind == TokenKind::open ? token.span.begin : pass_comments(text, line_end);
  }

  // Where the text after a stop begins that is between entries.
  Offset after(const Stop &stop, Offset limit) const {
    if (is_foreign_comment(text_.substr(stop.name, 2)) || end_of_long_comment(text_, stop.name))
      return end_of_stray_text(text_, stop.name, limit);
    const std::string_view before = text_.substr(0, limit);
    if (const auto prefixes = line_prefixes(before, stop.name); !prefixes.empty())
      return end_of_line(before, prefixes.back().begin);
    switch (stop.met) {
      case TNS_RIGHT_PARENTHESES:
        return after_closes(stop.at, limit);
      case TNS_LEFT_PARENTHESES:
        return end_of_items(text_.substr(0, limit), stop.at).value_or(limit);
      default:
        break;
    }
    const std::string_view name =
        text_.substr(stop.name, end_of_word(text_, stop.name) - stop.name);
    if (stop.kind == StopKind::no_open) return after_words(name, stop.at, limit);
    const Offset end = end_of_stray_text(text_, stop.name, limit);
    return stop.kind == StopKind::no_equal ? std::max(end, after_words(name, stop.name, limit))
                                           : end;
  }

  // Those that follow each other on a line are one fault.
  Offset after_closes(Offset at, Offset limit) const {
    for (Offset next = at; next < limit; ++next) {
      if (text_[next] == ')')
        at = next + 1;
      else if (text_[next] != ' ' && text_[next] != '\t')
        break;
    }
    return at;
  }

  // Text between entries: all of it would end lookups.
  void pass_gap(Offset from, Offset to) {
    for (Offset at = pass_blanks(text_, from); at < to; at = pass_blanks(text_, from)) {
      const std::vector<WrittenItem> settings = settings_from(at, to);
      if (!settings.empty()) {
        from = settings.back().end;
      } else if (type_at(text_, at) != TNS_KEY) {
        const bool block = after_entry_ && text_[at] == '(';
        add(block ? StopKind::after_block : StopKind::no_name, at, at);
        from = after({StopKind::no_name, at, at, type_at(text_, at)}, to);
      } else {
        from = pass_word(at, to);
      }
      after_entry_ = false;
    }
  }

  // Those that are the reserved entry's once what is before them is mended.
  std::vector<WrittenItem> settings_from(Offset at, Offset to) const {
    if (scan_.stop().kind != StopKind::reserved || type_at(text_, at) != TNS_LEFT_PARENTHESES)
      return {};
    std::vector<WrittenItem> items = items_from(text_.substr(0, to), at);
    if (items.empty() || !is_setting(key_word(text_, items[0]))) items.clear();
    return items;
  }

  // A word, with what follows: no entry stands at the beginning of a line.
  Offset pass_word(Offset name, Offset to) {
    const Offset next = end_of_first_name(name);
    const KZCITnsTokenType met = type_at(text_, next);
    if (met != TNS_EQUAL_SIGN) {
      const StopKind kind = next == size() ? StopKind::lost_name : StopKind::no_equal;
      add(kind, next, name);
      return after({kind, next, name, met}, to);
    }
    const Offset value = pass_blanks(text_, next + 1);
    if (value > to) return to;
    if (type_at(text_, value) == TNS_LEFT_PARENTHESES)
      return end_of_item(text_.substr(0, to), value).value_or(to);
    add(StopKind::no_open, value, name);
    return after_words(text_.substr(name, end_of_word(text_, name) - name), value, to);
  }

  const FileScan &scan_;
  std::string_view text_;
  std::size_t next_ = 0;
  bool after_entry_ = false;  // nothing else has come since
  std::vector<Stop> stops_;
};

}  // namespace

std::vector<Stop> find_further_stops(const FileScan &scan) { return FurtherStops(scan).find(); }

bool may_be_value(std::string_view name, ItemWord key) {
  return opens_block(key) || (ends_lookups(name) && is_setting(key));
}

}  // namespace kztns
