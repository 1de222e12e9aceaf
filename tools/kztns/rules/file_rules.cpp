#include "rules/file_rules.h"

#include <algorithm>
#include <cctype>

#include "kzoci/oci_tnsname/reserved_entry.h"
#include "rules/diagnosis.h"
#include "rules/parentheses.h"
#include "scan/written_entries.h"
#include "text/name_index.h"

namespace kztns {
namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
using kzoci::tns::reserved_name;

// Whether the library reads an entry of this name as system variables.
bool is_reserved(std::string_view name) {
  return kzoci::tns::is_reserved_name(name.data(), static_cast<ub4>(name.size()));
}

StopCause found_parenthesis(const HiddenParenthesis &hidden, std::string_view consequence) {
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

// Says why no name could be read.
class StopExplainer {
 public:
  StopExplainer(const NamesText &text, const FileScan &scan)
      : subject_{text, "file"}, scan_(scan), stop_(scan.stop()) {}

  StopCause explain() const {
    switch (stop_.kind) {
      case StopKind::no_name:
        return no_name();
      case StopKind::no_equal:
        return no_equal();
      case StopKind::lost_name:
        return lost_name();
      case StopKind::name_too_long:
        return {Rule::key_refused, stop_.at,
                "a name of " + std::to_string(longest_token) +
                    " characters ends at a 1024-byte read boundary"};
      case StopKind::gave_up:
        return {Rule::gave_up, stop_.at,
                "the entries up to here overlap too often: the check stops here"};
      default:
        return at_entry();
    }
  }

 private:
  std::string_view text() const { return subject_.text.text(); }

  StopCause no_name() const {
    if (scan_.last_reached() != nullptr)
      if (auto cause = no_name_after(*scan_.last_reached())) return *std::move(cause);
    if (stop_.met == TNS_RIGHT_PARENTHESES)
      return {Rule::extra_close, stop_.at, "unmatched \")\": the entries after it are lost",
              unsafe_fix({{stop_.at, stop_.at + 1, ""}})};
    return {Rule::stray_text, stop_.at,
            "expected a name, found " + quoted_token(subject_, stop_.at) +
                ": the entries after it are lost"};
  }

  // Why the name after an entry is none, as far as that lies with the entry.
  std::optional<StopCause> no_name_after(const Entry &before) const {
    const EntryRange range = EntryRanges(subject_.text).range_of(before.body);
    auto fault = find_parenthesis_fault(subject_.text, range, scan_.name(before));
    if (fault && closes_early(fault->rule) && fault->at <= stop_.at)
      return StopCause{fault->rule, fault->at, fault->text + ": the entries after it are lost",
                       std::move(fault->fix)};
    const bool goes_on = fault || (before.built && before.end > stop_.at);
    if (goes_on && stop_.met == TNS_LEFT_PARENTHESES && scan_.skip_mismatches().empty())
      return StopCause{
          Rule::second_block, stop_.at,
          "second block of " + excerpt(scan_.name(before)) + ": the entries after it are lost"};
    if (const auto hidden = find_hidden(text(), before.body, stop_.at, ')'))
      return found_parenthesis(*hidden, "; they end at " + subject_.text.place(stop_.at));
    return std::nullopt;
  }

  StopCause no_equal() const {
    if (stop_.name == 0 && text().starts_with(byte_order_mark))
      return {
          Rule::byte_order_mark, 0,
          "the byte order mark is read as part of the first name: the entries after it are lost"};
    const std::string_view name = text().substr(stop_.name, stop_.at - stop_.name);
    const bool comma =
        name.find(',') != std::string_view::npos || text().substr(stop_.at).starts_with(',');
    if (comma)
      return {Rule::comma_list, stop_.name,
              "a list of names is not an entry: the entries after it are lost"};
    const std::string word = quoted_token(subject_, stop_.name);
    if (stop_.met == TNS_LEFT_PARENTHESES)
      return {Rule::missing_equal, stop_.at,
              "expected \"=\" after the name " + word + ": the entries after it are lost"};
    return {Rule::stray_text, stop_.name,
            word + " is read as a name, but no \"=\" follows: the entries after it are lost"};
  }

  StopCause lost_name() const {
    const auto quote = open_quote(text(), stop_.name, subject_.text.size());
    if (quote) return {Rule::unclosed_quote, *quote, "unterminated quote"};
    return {Rule::lost_name, stop_.name,
            quoted_token(subject_, stop_.name) + " at the end of the file is lost"};
  }

  StopCause at_entry() const {
    const Entry &entry = *scan_.last_reached();
    const std::string name = excerpt(scan_.name(entry));
    if (stop_.kind == StopKind::reserved)
      return {Rule::reserved_part, entry.at,
              name + " ends every lookup: the entries after it are lost"};
    if (stop_.kind == StopKind::no_open)
      return {Rule::no_block, stop_.at,
              "expected \"(\" after \"=\": the entries after it are lost"};
    if (const auto hidden = find_hidden(text(), entry.body, subject_.text.size(), '(');
        entry.built && hidden && hidden->at < entry.end)
      return found_parenthesis(*hidden, read_on(subject_.text, subject_.text.size()));
    return {Rule::unclosed_block, pass_blanks(text(), entry.body),
            "the parentheses of " + name + " never balance: the entries after it are lost"};
  }

  Subject subject_;
  const FileScan &scan_;
  const Stop &stop_;
};

class FileRules {
 public:
  FileRules(const NamesText &text, const FileScan &scan, const std::optional<StopCause> &reported,
            Findings &findings)
      : text_(text), scan_(scan), reported_(reported), findings_(findings) {}

  void report() {
    if (is_utf_16(text_.text()))
      return add(Rule::utf_16, 0, {}, "the file is in UTF-16, in which no name can be read");
    if (scan_.stop().kind != StopKind::end) take_stop();
    for (const SkipMismatch &skip_mismatch : scan_.skip_mismatches())
      report_skip_mismatch(skip_mismatch);
    for (std::size_t i = 0; i < scan_.entries().size(); ++i) report_entry(i);
  }

 private:
  const std::vector<Entry> &entries() const { return scan_.entries(); }

  void add(Rule rule, Offset at, std::string_view entry, std::string text, Fix fix = {}) {
    if (findings_.wanted(rule))
      findings_.add({rule, at, entry, {}, std::move(text), {}, std::move(fix)});
  }

  // The stop is a finding of its own unless an entry's finding explains it.
  void take_stop() {
    cause_ = reported_ ? *reported_ : cause_of_stop(text_, scan_);
    const Entry *const last = scan_.last_reached();
    const bool told_by_skip_mismatch =
        is_parenthesis(cause_.rule) && !scan_.skip_mismatches().empty();
    if (reported_ || told_by_skip_mismatch || scan_.stop().kind == StopKind::reserved) return;
    const bool in_entry = is_parenthesis(cause_.rule) || cause_.rule == Rule::second_block;
    add(cause_.rule, cause_.at, in_entry && last ? scan_.name(*last) : std::string_view(),
        cause_.text, cause_.fix);
  }

  static bool is_parenthesis(Rule rule) {
    return rule == Rule::paren_in_comment || rule == Rule::paren_in_quotes;
  }

  const Entry &entry_of(const SkipMismatch &skip_mismatch) const {
    return *std::find_if(entries().begin(), entries().end(), [&](const Entry &entry) {
      return entry.reached && entry.body == skip_mismatch.body;
    });
  }

  // The entries from a place on that no lookup reaches.
  std::string lost_after(Offset from) const {
    constexpr std::size_t most = 3;
    std::string names;
    std::size_t count = 0;
    for (const Entry &entry : entries()) {
      if (entry.at < from || entry.reached || entry.verdict != Verdict::unreachable) continue;
      if (++count <= most) names += (count > 1 ? ", " : "") + excerpt(scan_.name(entry));
    }
    if (count > most) names += " and " + std::to_string(count - most) + " more";
    return names;
  }

  void report_skip_mismatch(const SkipMismatch &skip_mismatch) {
    const auto cause = cause_of_skip_mismatch(text_, skip_mismatch);
    if (!cause || !findings_.wanted(cause->rule)) return;
    const std::string lost = lost_after(skip_mismatch.body);
    findings_.add({cause->rule,
                   cause->at,
                   scan_.name(entry_of(skip_mismatch)),
                   {},
                   cause->text + (lost.empty() ? "" : "; entries lost: " + lost)});
  }

  void report_entry(std::size_t i) {
    const Entry &entry = entries()[i];
    report_name(entry);
    if (entry.verdict == Verdict::unreachable) report_unreachable(entry);
    const std::string_view name = scan_.name(entry);
    const std::uint32_t same = first_same(i, name);
    const std::uint32_t alike = first_alike(i, name);
    if (same != NameIndex::none) {
      report_duplicate(entry, entries()[same]);
    } else if (alike != NameIndex::none && findings_.wanted(Rule::case_differs)) {
      findings_.add({Rule::case_differs,
                     entry.at,
                     name,
                     {},
                     "differs only in case from " + excerpt(scan_.name(entries()[alike])) + " at " +
                         text_.place(entries()[alike].at)});
    }
  }

  std::uint32_t first_same(std::size_t i, std::string_view name) {
    return exact_.find_or_add(
        name_hash(name), static_cast<std::uint32_t>(i),
        [&](std::uint32_t other) { return same_name(scan_.name(entries()[other]), name); });
  }

  std::uint32_t first_alike(std::size_t i, std::string_view name) {
    folded_ = name;
    for (char &c : folded_) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const auto folded = [](std::string_view text) {
      std::string lower(text);
      for (char &c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      return lower;
    };
    return alike_.find_or_add(name_hash(folded_), static_cast<std::uint32_t>(i),
                              [&](std::uint32_t other) {
                                return same_name(folded(scan_.name(entries()[other])), folded_);
                              });
  }

  void report_duplicate(const Entry &entry, const Entry &first) {
    if (!findings_.wanted(Rule::duplicate)) return;
    findings_.add({Rule::duplicate,
                   entry.at,
                   scan_.name(entry),
                   {},
                   "duplicate name: the first entry, at " + text_.place(first.at) +
                       ", is used; other readers of such files use the last one"});
  }

  void report_name(const Entry &entry) {
    const std::string_view name = scan_.name(entry);
    if (entry.reached && entry.verdict != Verdict::shadowed && is_reserved(name) &&
        name != reserved_name)
      report_reserved_part(entry, name);
    if (entry.name_length == longest_token)
      add(Rule::key_cut, entry.at, name,
          "a name of " + std::to_string(longest_token) + " characters may be cut");
    if (entry.in_list || name.find(',') != std::string_view::npos) {
      if (entry.reached)
        add(Rule::comma_list, entry.at, name,
            "a list of names is read as one name: no lookup finds its parts");
    }
    const std::string_view odd = odd_character(name);
    if (odd.empty()) return;
    const bool at_file_start = entry.at == 0 && odd == byte_order_mark;
    add(at_file_start ? Rule::byte_order_mark : Rule::odd_bytes, entry.at, name,
        "invisible character " + visible(odd) +
            " in the name: the entry is found only by a name with it");
  }

  void report_reserved_part(const Entry &entry, std::string_view name) {
    const bool stops = scan_.stop().kind == StopKind::reserved && ends_lookups(name);
    std::string text = "a prefix of " + std::string(reserved_name);
    text += entry.built ? ": read as system variables" : ": read as system variables, and refused";
    if (stops) text += "; the entries after it are lost";
    if (findings_.wanted(Rule::reserved_part))
      findings_.add({Rule::reserved_part, entry.at, name, {}, std::move(text)});
  }

  void report_unreachable(const Entry &entry) {
    const bool after_reserved = scan_.stop().kind == StopKind::reserved && !entry.reached &&
                                entry.at > scan_.last_reached()->at;
    const Rule rule = after_reserved  ? Rule::after_reserved
                      : entry.in_list ? Rule::comma_list
                                      : Rule::unreachable;
    if (!findings_.wanted(rule)) return;
    findings_.add({rule, entry.at, scan_.name(entry), {}, why_unreachable(entry)});
  }

  std::string why_unreachable(const Entry &entry) const {
    if (entry.reached) return "a name like this is read as a descriptor, and never looked up";
    const Entry *const last = scan_.last_reached();
    if (scan_.stop().kind == StopKind::reserved && last != nullptr && entry.at > last->at)
      return "comes after " + excerpt(scan_.name(*last)) + " at " + text_.place(last->at) +
             ", where every lookup ends";
    if (scan_.stop().kind == StopKind::end || entry.at < scan_.stop().name)
      return "lookups skip it as part of the entry before";
    if (entry.in_list) return "one of a list of names: no lookup finds it";
    return "no lookup gets here: see the finding at " + text_.place(cause_.at) + " [" +
           std::string(row_of(cause_.rule).id) + "]";
  }

  const NamesText &text_;
  const FileScan &scan_;
  const std::optional<StopCause> &reported_;
  Findings &findings_;
  StopCause cause_ = {};
  NameIndex exact_;
  NameIndex alike_;
  std::string folded_;
};

}  // namespace

bool is_utf_16(std::string_view text) {
  return text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF");
}

StopCause cause_of_stop(const NamesText &text, const FileScan &scan) {
  return StopExplainer(text, scan).explain();
}

std::optional<StopCause> cause_of_skip_mismatch(const NamesText &text,
                                                const SkipMismatch &skip_mismatch) {
  const bool too_far = skip_mismatch.passed_to > skip_mismatch.built_to;
  const auto hidden =
      find_hidden(text.text(), skip_mismatch.body, skip_mismatch.built_to, too_far ? '(' : ')');
  if (!hidden) return std::nullopt;
  if (too_far) return found_parenthesis(*hidden, read_on(text, skip_mismatch.passed_to));
  const Offset next = pass_blanks(text.text(), skip_mismatch.passed_to);
  return found_parenthesis(*hidden, ", and look for the next name at " + text.place(next));
}

void apply_file_rules(const NamesText &text, const FileScan &scan,
                      const std::optional<StopCause> &reported, Findings &findings) {
  FileRules(text, scan, reported, findings).report();
}

}  // namespace kztns
