#include "rules/diagnosis.h"

#include <algorithm>

#include "kzoci/oci_tnsname/reserved_entry.h"
#include "scan/hidden_text.h"
#include "text/characters.h"
#include "text/spelling.h"
#include "text/words.h"
#include "trace/library_number.h"

namespace kztns {
namespace {

// In the name of the reserved entry.
constexpr std::size_t most_slips = 3;

class FaultExplainer {
 public:
  FaultExplainer(const Subject &subject, const Trace &trace, std::string_view name)
      : subject_(subject), trace_(trace), fault_(trace.fault()), name_(name) {}

  // Without a default, so that the compiler asks for a kind that is missing.
  Diagnosis diagnose() const {
    switch (fault_.kind) {
      case FaultKind::no_block:
        return no_block();
      case FaultKind::empty_block:
        return found(Rule::empty_block, key() + " is empty");
      case FaultKind::value_for_block:
        return found(Rule::value_for_block,
                     "expected a block as the value of " + key() + ", found " + met());
      case FaultKind::not_closed:
        return not_closed();
      case FaultKind::missing_key:
        return found(Rule::missing_key, "expected a key after \"(\", found " + met());
      case FaultKind::missing_equal:
        return found(Rule::missing_equal, "expected \"=\" after " + key() + ", found " + met());
      case FaultKind::missing_value:
        return found(Rule::missing_value, key() + " has no value");
      case FaultKind::block_for_value:
        return found(Rule::block_for_value, key() + " takes a value, not a block");
      case FaultKind::value_goes_on:
        return value_goes_on();
      case FaultKind::unknown_key:
        return unknown_key();
      case FaultKind::misplaced_key:
      case FaultKind::not_description:
        return misplaced_key();
      case FaultKind::bad_protocol:
        return found(Rule::bad_protocol,
                     "unsupported protocol " + value() + ": only TCP is supported");
      case FaultKind::bad_word:
        return bad_word();
      case FaultKind::bad_number:
        return bad_number();
      case FaultKind::second_address:
        return found(Rule::second_address,
                     "this ADDRESS follows another ADDRESS or an ADDRESS_LIST");
      case FaultKind::second_connect_data:
        return found(Rule::second_connect_data,
                     "second CONNECT_DATA: it is dropped, and ends its description");
      case FaultKind::input_ended:
        return input_ended();
      case FaultKind::key_unended:
        return key_unended();
      case FaultKind::key_too_long:
        return found(Rule::key_refused, "a token of " + std::to_string(longest_token) +
                                            " characters ends at a 1024-byte read boundary");
      case FaultKind::none:
      case FaultKind::unexplained:
        break;
    }
    return found(Rule::unexplained, "the library refuses the entry");
  }

 private:
  const Item *item() const {
    if (fault_.item < 0) return nullptr;
    return &trace_.items()[static_cast<std::size_t>(fault_.item)];
  }
  const Frame &frame() const { return trace_.frames()[static_cast<std::size_t>(fault_.frame)]; }
  std::string key() const {
    return item() == nullptr ? "the key" : excerpt(trace_.key_word_of(*item()));
  }
  std::string value() const {
    return item() == nullptr ? "\"\"" : quoted(excerpt(trace_.value_of(*item())));
  }
  std::string met() const { return quoted_token(subject_, fault_.at); }
  std::string_view text() const { return subject_.text.text(); }
  std::string end() const {
    return "the " + std::string(subject_.noun) + " ends at " +
           subject_.text.place(subject_.text.size());
  }

  Diagnosis found(Rule rule, std::string text, std::string remedy = {}) const {
    return found_at(rule, fault_.at, std::move(text), std::move(remedy));
  }
  Diagnosis found_at(Rule rule, Offset at, std::string text, std::string remedy = {}) const {
    return {rule, at, std::move(text), std::move(remedy), {}, trace_.path(fault_.frame)};
  }

  // Where the current block was opened.
  Offset block_open() const {
    const int opener = frame().item >= 0 ? frame().item : 0;
    return trace_.items()[static_cast<std::size_t>(opener)].open;
  }

  Diagnosis unknown_key() const {
    const std::string_view word = trace_.key_word_of(*item());
    if (item()->key.end - item()->key.begin >= longest_token) return cut(item()->key, "this key");
    const std::string_view near = near_key(word, frame().block);
    std::string remedy;
    if (!near.empty())
      remedy = "did you mean " + std::string(near) + "?";
    else if (frame().block == Block::entry)
      remedy = "an entry is made of DESCRIPTION blocks";
    return found(Rule::unknown_key, "unknown key " + key(), remedy);
  }

  Diagnosis misplaced_key() const {
    const std::string_view reserved = kzoci::tns::reserved_name;
    const bool is_misspelt =
        frame().block == Block::entry && edit_distance(name_, reserved, most_slips) <= most_slips;
    return found(Rule::misplaced_key,
                 "misplaced key " + key() + ": it belongs in " + places_of(item()->type),
                 is_misspelt ? "did you mean " + std::string(reserved) + "?" : "");
  }

  Diagnosis no_block() const {
    if (fault_.at >= text().size())
      return found(Rule::no_block, "expected \"(\" after \"=\", found " + met());
    const Offset after_word = pass_blanks(text(), end_of_word(text(), fault_.at));
    const bool is_entry = after_word < text().size() && text()[after_word] == '=';
    if (equal_but_for_case(name_, "IFILE") && is_entry)
      return found_at(Rule::ifile, trace_.body() - 1, "IFILE is read as a name, and names no file",
                      "remove its line");
    if (equal_but_for_case(name_, "IFILE"))
      return found(Rule::ifile, "IFILE is read as a name: included files are not supported");
    const std::string_view odd = odd_character(text().substr(fault_.at, 4));
    if (!odd.empty() && text().substr(fault_.at).starts_with(odd))
      return found(Rule::odd_bytes,
                   "expected \"(\" after \"=\", found the invisible character " + visible(odd));
    if (text().substr(fault_.at).starts_with("\"("))
      return found(Rule::quoted_entry, "expected \"(\" after \"=\", found a value in quotes");
    const bool is_reserved = equal_but_for_case(name_, kzoci::tns::reserved_name);
    return found(Rule::no_block, "expected \"(\" after \"=\", found " + met(),
                 is_reserved ? "write " + std::string(name_) + " = (KEY = value)" : "");
  }

  // A comment between the value and what was met, which hides a ")".
  std::optional<Offset> hiding_comment() const {
    if (item() == nullptr || !item()->has_value) return std::nullopt;
    const auto hidden = find_hidden(text(), item()->value.end, fault_.at, ')');
    if (!hidden || !hidden->in_comment) return std::nullopt;
    return static_cast<Offset>(text().find('#', item()->value.end));
  }

  // A comment where the value is due, "(PORT = #{port}))", which hides a ")" that is not its own:
  // what is read for the value is in the next entry.
  std::optional<Offset> comment_for_value() const {
    if (!item()->has_value || item()->value.begin < subject_.end) return std::nullopt;
    const std::string_view entry = text().substr(0, subject_.end);
    const std::size_t comment = entry.find('#', item()->key.end);
    if (comment == std::string_view::npos) return std::nullopt;
    const Offset end = end_of_comment(text(), static_cast<Offset>(comment));
    std::int64_t depth = 0;
    for (std::size_t at = comment; at < end && depth >= 0; ++at) depth += depth_change(text()[at]);
    return depth < 0 ? std::optional(static_cast<Offset>(comment)) : std::nullopt;
  }

  Diagnosis comment_in_value(Offset at) const {
    return found_at(Rule::comment_in_value, at,
                    "this comment after the value of " + key() + " hides the \")\": found " +
                        met() + " at " + subject_.text.place(fault_.at));
  }

  // The quote between two places that is not closed. Quotes of the next entry may close it
  // for the library, but do not.
  std::optional<Offset> unclosed_quote(Offset from, Offset to) const {
    const auto quote = open_quote(text(), from, std::min(to, subject_.end));
    return quote ? quote : open_quote(text(), from, to);
  }

  // Quotes of a later entry, before a place, may close it for the library.
  Diagnosis unterminated(Offset quote, Offset to, const std::string &otherwise) const {
    const bool is_closed = text().substr(0, to).find('"', quote + 1) != std::string_view::npos;
    return found_at(
        Rule::unclosed_quote, quote,
        "unterminated quote: " + (is_closed ? "not closed before the next entry" : otherwise));
  }

  // Quotes of a later value close it, as the library reads it.
  std::optional<Diagnosis> quote_closed_late(Offset from, Offset to) const {
    const auto quotes = quotes_around_items(text(), from, std::min(to, subject_.end));
    if (!quotes) return std::nullopt;
    return found_at(
        Rule::unclosed_quote, quotes->first,
        "unterminated quote: the next one is at " + subject_.text.place(quotes->second));
  }

  Diagnosis cut(Span token, const std::string &what) const {
    const auto quote = unclosed_quote(token.begin, token.end);
    if (quote)
      return unterminated(*quote, token.end,
                          "not closed within " + std::to_string(longest_token) + " characters");
    return found_at(Rule::key_cut, token.begin,
                    what + " is cut at " + std::to_string(longest_token) + " characters");
  }

  Diagnosis value_goes_on() const {
    if (item() != nullptr && item()->text_length >= longest_token)
      return cut(item()->value, "the value of " + key());
    if (item() != nullptr)
      if (const auto comment = comment_for_value())
        return found_at(Rule::comment_in_value, *comment,
                        "this comment is where the value of " + key() +
                            " is expected, and hides the \")\": found " + met() + " at " +
                            subject_.text.place(fault_.at));
    if (const auto comment = hiding_comment()) return comment_in_value(*comment);
    if (item() != nullptr)
      if (auto quote = quote_closed_late(item()->value.begin, item()->value.end))
        return *std::move(quote);
    if (item() != nullptr && item()->value.end > subject_.end)
      if (const auto quote = open_quote(text(), item()->value.begin, subject_.end))
        return unterminated(*quote, item()->value.end, end());
    const std::string text = "expected \")\" after the value of " + key() + ", found " + met();
    if (fault_.met == TNS_LEFT_PARENTHESES) return found(Rule::missing_close, text);
    return found(Rule::unquoted_value, text);
  }

  Diagnosis input_ended() const {
    if (const auto comment = hiding_comment(); comment && !fault_.between)
      return comment_in_value(*comment);
    const bool in_item = !fault_.between || fault_.frame == 0;
    const Offset open = in_item && item() != nullptr ? item()->open : block_open();
    return found_at(Rule::unclosed_block, open, "this \"(\" is never closed: " + end());
  }

  Diagnosis key_unended() const {
    const auto size = static_cast<Offset>(text().size());
    const auto quote = unclosed_quote(fault_.at, size);
    if (quote)
      if (auto early = quote_closed_late(fault_.at, size)) return *std::move(early);
    if (quote) return unterminated(*quote, size, end());
    return found(Rule::unclosed_block, "the " + std::string(subject_.noun) + " ends with " + met());
  }

  Diagnosis bad_number() const {
    const bool is_number = item() != nullptr && library_number(trace_.value_of(*item())).digits;
    return found(Rule::bad_number, key() + " is " + value() + ": expected a 64-bit integer",
                 is_number ? "write a number in range" : "");
  }

  Diagnosis bad_word() const {
    const std::vector<std::string_view> words = choices(*trace_.row_of(*item()));
    const std::string_view near = near_word(trace_.value_of(*item()), words);
    return found(Rule::bad_word, key() + " is " + value() + ": expected " + one_of(words),
                 near.empty() ? "" : "did you mean " + std::string(near) + "?");
  }

  Diagnosis not_closed() const {
    return found(Rule::missing_close, "expected \"(\" or \")\", found " + met() +
                                          ": the block was opened at " +
                                          subject_.text.place(block_open()));
  }

  const Subject &subject_;
  const Trace &trace_;
  const Fault &fault_;
  std::string_view name_;
};

}  // namespace

Diagnosis diagnose(const Subject &subject, const Trace &trace, std::string_view name) {
  return FaultExplainer(subject, trace, name).diagnose();
}

std::string quoted_token(const Subject &subject, Offset at) {
  const std::string_view text = std::string_view(subject.text.text()).substr(at, 64);
  if (text.empty()) return "the end of the " + std::string(subject.noun);
  if (text[0] == '"') {
    const std::size_t close = text.find('"', 1);
    return excerpt(text.substr(0, close == std::string_view::npos ? close : close + 1));
  }
  const std::size_t length = text.find_first_of(word_ends);
  return quoted(excerpt(text.substr(0, std::max<std::size_t>(length, 1))));
}

std::string_view odd_character(std::string_view text) {
  constexpr std::string_view sequences[] = {"\xC2\xA0",     byte_order_mark, zero_width_space,
                                            "\xE2\x80\xA8", "\xE2\x80\xAF",  "\xE3\x80\x80",
                                            soft_hyphen};
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < 0x20 || byte == 0x7F) return text.substr(i, 1);
    for (const std::string_view sequence : sequences)
      if (text.substr(i).starts_with(sequence)) return text.substr(i, sequence.size());
    // A lone byte of the usual 8-bit sets.
    if (byte == 0xA0 && (i == 0 || static_cast<unsigned char>(text[i - 1]) < 0x80))
      return text.substr(i, 1);
  }
  return {};
}

}  // namespace kztns
