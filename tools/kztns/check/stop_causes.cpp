#include "check/stop_causes.h"

#include <algorithm>

#include "fixes/file_fixes.h"
#include "fixes/fixes.h"
#include "kzoci/oci_tnsname/reserved_entry.h"
#include "rules/parentheses.h"
#include "scan/hidden_text.h"
#include "scan/item_text.h"
#include "scan/item_words.h"
#include "scan/quoted_entry.h"
#include "scan/skip_mismatches.h"
#include "scan/stray_text.h"
#include "text/characters.h"
#include "text/spelling.h"
#include "text/words.h"

namespace kztns {
namespace {

Diagnosis found_parenthesis(const HiddenParenthesis &hidden, std::string_view consequence) {
  const char *const where = hidden.in_comment ? "comment" : "quotes";
  return {hidden.in_comment ? Rule::paren_in_comment : Rule::paren_in_quotes, hidden.at,
          "lookups of later names count this parenthesis, although it is in " +
              std::string(hidden.in_comment ? "a " : "") + where + std::string(consequence)};
}

std::string read_on(const NamesText &text, Offset to) {
  const bool whole = to == text.size();
  return std::string(", and read on to ") + (whole ? "the end of the file at " : "") +
         text.place(to);
}

constexpr const char *no_equal_follows = " is read as a name, but no \"=\" follows";

// Says why no name could be read.
class StopExplainer {
 public:
  StopExplainer(const FileScan &scan, const Stop &stop)
      : subject_{scan.text(), "file"}, scan_(scan), stop_(stop) {}

  Diagnosis explain() const {
    if (auto cause = led_astray()) return *std::move(cause);
    if (stop_.kind == StopKind::no_name) {
      if (auto fault = parenthesis_fault()) return *std::move(fault);
      if (is_after_block()) return after_block();
      if (auto hidden = hidden_parenthesis()) return *std::move(hidden);
    }
    if (stop_.kind == StopKind::no_open && is_foreign_comment(text().substr(stop_.name, 2)))
      return foreign_comment();
    switch (stop_.kind) {
      case StopKind::no_open:
      case StopKind::never_balanced:
      case StopKind::reserved:
        return at_entry();
      default:
        return explain_further();
    }
  }

  // What stands before a further stop is passed over rightly.
  Diagnosis explain_further() const {
    switch (stop_.kind) {
      case StopKind::no_name:
        return no_name();
      case StopKind::after_block:
        return after_block();
      case StopKind::no_equal:
        return no_equal();
      case StopKind::no_open:
        return no_open();
      case StopKind::lost_name:
        return lost_name();
      case StopKind::name_too_long:
        return {Rule::key_refused, stop_.at,
                "a name of " + std::to_string(longest_token) +
                    " characters ends at a 1024-byte read boundary"};
      default:
        return {Rule::gave_up, stop_.at,
                "the entries up to here overlap too often: the check stops here"};
    }
  }

 private:
  std::string_view text() const { return subject_.text.text(); }

  // The parenthesis through which lookups look for a name within an entry.
  std::optional<Diagnosis> led_astray() const {
    for (const SkipMismatch &mismatch : scan_.skip_mismatches())
      if (mismatch.reached && mismatch.passed_to <= stop_.at && stop_.at < mismatch.built_to)
        return cause_of_skip_mismatch(subject_.text, mismatch);
    return std::nullopt;
  }

  // What makes the entry before end too early.
  std::optional<Diagnosis> parenthesis_fault() const {
    const Entry *const entry = scan_.last_reached();
    if (entry == nullptr) return std::nullopt;
    const EntryRange range = EntryRanges(subject_.text).range_of(entry->body);
    auto fault = find_parenthesis_fault(subject_, range, scan_.name(*entry));
    if (!fault || !closes_early(fault->rule) || fault->at > stop_.at) return std::nullopt;
    return fault;
  }

  std::optional<Diagnosis> hidden_parenthesis() const {
    const Entry *const entry = scan_.last_reached();
    if (entry == nullptr) return std::nullopt;
    // What comes after the counted parentheses is passed over with its comments.
    const Offset end = std::min(counted_end(text(), entry->body, stop_.at), stop_.at);
    if (end_of_first_block(text().substr(0, stop_.at), entry->body) == end) return std::nullopt;
    const auto hidden = find_hidden(text(), entry->body, end, ')');
    if (!hidden) return std::nullopt;
    return found_parenthesis(*hidden, "; they end at " + subject_.text.place(stop_.at));
  }

  // Whether the stop is a "(" right after the first block of the entry before.
  bool is_after_block() const {
    const Entry *const entry = scan_.last_reached();
    if (entry == nullptr || stop_.met != TNS_LEFT_PARENTHESES) return false;
    const auto end = end_of_first_block(text().substr(0, stop_.at), entry->body);
    return end && pass_blanks(text(), *end) == stop_.at;
  }

  // Whether an entry's block, which may lack those around it, begins at a place.
  bool begins_block(Offset open) const {
    const ItemWord key = key_after(text(), open);
    return key.type == LB_DESCRIPTION || key.type == LB_ADDRESS || key.type == LB_ADDRESS_LIST ||
           placement_of(key, content_of(Block::entry)).content.kind == Content::description_list;
  }

  // Whether a setting is after the reserved name and the "(" of the stop.
  bool begins_settings(std::string_view name) const {
    const ItemWord key = key_after(text(), stop_.at);
    return trimmed(name) == kzoci::tns::reserved_name &&
           placement_of(key, content_of(Block::system_variables)).fit == Fit::good;
  }

  Diagnosis no_name() const {
    if (stop_.met == TNS_RIGHT_PARENTHESES) return {Rule::extra_close, stop_.at, "unmatched \")\""};
    return {Rule::stray_text, stop_.at,
            "expected a name, found " + quoted_token(subject_, stop_.at)};
  }

  Diagnosis after_block() const {
    const Entry &entry = *scan_.entry_at_or_before(stop_.at);
    if (!begins_block(stop_.at) && !(entry.built && entry.end > stop_.at)) return no_name();
    return {Rule::second_block, stop_.at, "second block of " + excerpt(scan_.name(entry))};
  }

  Diagnosis no_equal() const {
    if (stop_.name == 0 && text().starts_with(byte_order_mark))
      return {Rule::byte_order_mark, 0, "the byte order mark is read as part of the first name"};
    const std::string_view name = text().substr(stop_.name, stop_.at - stop_.name);
    if (name.starts_with(',')) return {Rule::stray_comma, stop_.name, "a comma after an entry"};
    if (has_comma(stop_.name, stop_.at + 1))
      return {Rule::comma_list, stop_.name, "a list of names is not an entry"};
    if (is_invisible(stop_.name)) return invisible();
    if (equal_but_for_case(trimmed(name), "IFILE"))
      return {Rule::ifile, stop_.name, "IFILE is read as a name: included files are not supported",
              "put the file's entries here"};
    if (const auto colon = colon_after_name()) return *colon;
    const std::string word = quoted_token(subject_, stop_.name);
    if (stop_.met == TNS_LEFT_PARENTHESES && (begins_block(stop_.at) || begins_settings(name)))
      return {Rule::missing_equal, stop_.at, "expected \"=\" after the name " + word,
              "put \"=\" after the name"};
    if (quoted_entry_at(text(), stop_.name)) return quoted_entry(word);
    return {Rule::stray_text, stop_.name, word + no_equal_follows};
  }

  // Whether a comma is between two places, in no comment.
  bool has_comma(Offset begin, Offset end) const {
    const std::string_view words = text().substr(0, end);
    for (Offset at = begin; at < words.size();) {
      const Offset word_end = std::max(end_of_word(words, at), at + 1);
      if (words.substr(at, word_end - at).find(',') != words.npos) return true;
      at = pass_blanks(words, word_end);
    }
    return false;
  }

  Diagnosis quoted_entry(const std::string &word) const {
    return {Rule::stray_text, stop_.name, word + no_equal_follows,
            "write NAME = (DESCRIPTION = ...), without quotes"};
  }

  // "NAME : (DESCRIPTION", "NAME := (DESCRIPTION", "NAME - (DESCRIPTION" and "NAME: (DESCRIPTION".
  std::optional<Diagnosis> colon_after_name() const {
    Offset name_end = end_of_word(text(), stop_.name);
    Offset colon = pass_blanks(text(), name_end);
    if (name_end > stop_.name + 1 && text()[name_end - 1] == ':') colon = --name_end;
    const Offset end = end_of_foreign_equal(text(), colon);
    if (end == colon) return std::nullopt;
    const Offset open = pass_blanks(text(), end);
    if (open >= text().size() || text()[open] != '(' || !begins_block(open)) return std::nullopt;
    return Diagnosis{Rule::missing_equal, colon,
                     "expected \"=\" after the name " +
                         quoted(excerpt(text().substr(stop_.name, name_end - stop_.name))) +
                         ", found " + quoted(text().substr(colon, end - colon)),
                     "put \"=\" instead of it"};
  }

  // Whether the word at a place is made of invisible characters, a comment after it excepted.
  bool is_invisible(Offset begin) const {
    std::string_view word = text().substr(begin, end_of_word(text(), begin) - begin);
    bool any = false;
    for (std::string_view odd = odd_character(word); word.starts_with(odd) && !odd.empty();
         odd = odd_character(word)) {
      word.remove_prefix(odd.size());
      any = true;
    }
    return any && (word.empty() || word.starts_with('#'));
  }

  Diagnosis invisible() const {
    return {Rule::odd_bytes, stop_.name,
            "the invisible character " + visible(odd_character(text().substr(stop_.name, 4))) +
                " is read as a name"};
  }

  Diagnosis foreign_comment() const {
    return {Rule::stray_text, stop_.name,
            quoted_token(subject_, stop_.name) + " is read as a name"};
  }

  Diagnosis no_open() const {
    const Offset name_end = end_of_word(text(), stop_.name);
    const Offset equal = pass_blanks(text(), name_end);
    const std::string_view name = text().substr(stop_.name, name_end - stop_.name);
    if (is_foreign_comment(name)) return foreign_comment();
    Trace trace(subject_.text.text());
    build_entry(subject_.text.text(), equal + 1, name, trace);
    Subject subject = subject_;
    subject.end = end_of_bare_value(text(), stop_.at);
    return diagnose_with_fix(subject, trace, name);
  }

  Diagnosis lost_name() const {
    if (quoted_entry_at(text(), stop_.name))
      return quoted_entry(quoted_token(subject_, stop_.name));
    const auto quote = open_quote(text(), stop_.name, subject_.text.size());
    if (quote) return {Rule::unclosed_quote, *quote, "unterminated quote"};
    if (is_invisible(stop_.name)) return invisible();
    if (text()[stop_.name] == ',') return {Rule::stray_comma, stop_.name, "a comma after an entry"};
    if (is_foreign_comment(text().substr(stop_.name, 2))) return foreign_comment();
    return {Rule::lost_name, stop_.name,
            quoted_token(subject_, stop_.name) + " at the end of the file is lost"};
  }

  Diagnosis at_entry() const {
    const Entry &entry = *scan_.last_reached();
    const std::string name = excerpt(scan_.name(entry));
    if (stop_.kind == StopKind::reserved)
      return {Rule::reserved_part, entry.at, name + " ends every lookup"};
    if (stop_.kind == StopKind::no_open)
      return {Rule::no_block, stop_.at, "expected \"(\" after \"=\""};
    const auto end = entry.built
                         ? entry.end
                         : end_if_led_astray(text(), entry.body, scan_.next_entry(entry.body))
                               .value_or(entry.body);
    if (const auto hidden = find_hidden(text(), entry.body, end, '('))
      return found_parenthesis(*hidden, read_on(subject_.text, subject_.text.size()));
    return {Rule::unclosed_block, pass_blanks(text(), entry.body),
            "the parentheses of " + name + " never balance"};
  }

  Subject subject_;
  const FileScan &scan_;
  const Stop &stop_;
};

}  // namespace

bool goes_on_with_loss(Rule rule) {
  switch (rule) {
    case Rule::paren_in_comment:
    case Rule::paren_in_quotes:
    case Rule::lost_name:
    case Rule::unclosed_quote:
    case Rule::gave_up:
      return false;
    default:
      return true;
  }
}

Diagnosis cause_of_stop(const FileScan &scan) { return StopExplainer(scan, scan.stop()).explain(); }

Diagnosis cause_of_further_stop(const FileScan &scan, const Stop &stop) {
  return StopExplainer(scan, stop).explain_further();
}

std::optional<Diagnosis> cause_of_skip_mismatch(const NamesText &text,
                                                const SkipMismatch &skip_mismatch) {
  const bool too_far = skip_mismatch.passed_to > skip_mismatch.built_to;
  const auto hidden =
      find_hidden(text.text(), skip_mismatch.body, skip_mismatch.built_to, too_far ? '(' : ')');
  if (!hidden) return std::nullopt;
  if (!skip_mismatch.reached) return found_parenthesis(*hidden, {});
  if (too_far) return found_parenthesis(*hidden, read_on(text, skip_mismatch.passed_to));
  const Offset next = pass_blanks(text.text(), skip_mismatch.passed_to);
  return found_parenthesis(*hidden, ", and look for the next name at " + text.place(next));
}

}  // namespace kztns
