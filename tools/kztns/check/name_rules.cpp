#include "check/name_rules.h"

#include <algorithm>

#include "fixes/invisible_fixes.h"
#include "kzoci/oci_tnsname/reserved_entry.h"
#include "kzoci/platform/letter_case.h"
#include "rules/diagnosis.h"
#include "scan/reserved_names.h"
#include "text/characters.h"
#include "text/name_index.h"
#include "text/words.h"

namespace kztns {
namespace {

using kzoci::tns::reserved_name;

void fold(std::string_view name, std::string &into) {
  into.resize(name.size());
  std::transform(name.begin(), name.end(), into.begin(), kzoci::capital);
}

// What quoted mails, lists and other notations put around names.
constexpr std::string_view foreign_signs = "><{}[];:'`*|";
// Typographic quotes and a bullet.
constexpr std::string_view typographic_signs[] = {"\u2018", "\u2019", "\u201C", "\u201D",
                                                  "\u201E", "\u00AB", "\u00BB", "\u2022"};

// The one that a name begins with; empty for none.
std::string_view leading_sign(std::string_view name) {
  constexpr std::string_view signs_of_diffs = "+-";
  if (!name.empty() && (foreign_signs.find(name.front()) != name.npos ||
                        signs_of_diffs.find(name.front()) != name.npos))
    return name.substr(0, 1);
  for (const std::string_view sign : typographic_signs)
    if (name.starts_with(sign)) return sign;
  return {};
}

// The one that it ends with.
std::string_view trailing_sign(std::string_view name) {
  if (!name.empty() && foreign_signs.find(name.back()) != name.npos)
    return name.substr(name.size() - 1);
  for (const std::string_view sign : typographic_signs)
    if (name.ends_with(sign)) return sign;
  return {};
}

class NameRules {
 public:
  NameRules(const FileScan &scan, NameLists &lists, Findings &findings)
      : text_(scan.text()), scan_(scan), lists_(lists), findings_(findings) {}

  void report() {
    for (std::size_t i = 0; i < entries().size(); ++i) report_entry(i);
  }

 private:
  const std::vector<Entry> &entries() const { return scan_.entries(); }

  void report_entry(std::size_t i) {
    const Entry &entry = entries()[i];
    report_name(entry);
    const std::string_view name = scan_.name(entry);
    if (entry.reached && entry.verdict == Verdict::unreachable)
      findings_.add(Rule::unreachable,
                    {.at = entry.at,
                     .entry = name,
                     .text = "a name like this is read as a descriptor, and never looked up"});
    // No lookup finds the names of a list.
    if (entry.in_list) return;
    const std::uint32_t same = first_same(i, name);
    const std::uint32_t alike = first_alike(i, name);
    if (same != NameIndex::none) {
      report_duplicate(entry, entries()[same]);
    } else if (alike != NameIndex::none) {
      report_case(entry, entries()[alike]);
    }
  }

  std::uint32_t first_same(std::size_t i, std::string_view name) {
    return exact_.find_or_add(
        name_hash(name), static_cast<std::uint32_t>(i),
        [&](std::uint32_t other) { return same_name(scan_.name(entries()[other]), name); });
  }

  std::uint32_t first_alike(std::size_t i, std::string_view name) {
    fold(name, folded_);
    return alike_.find_or_add(name_hash(folded_), static_cast<std::uint32_t>(i),
                              [&](std::uint32_t other) {
                                std::string other_folded;
                                fold(scan_.name(entries()[other]), other_folded);
                                return same_name(other_folded, folded_);
                              });
  }

  // Fixes that were applied to a copy may have changed the order of the file.
  void report_duplicate(const Entry &entry, const Entry &first) {
    if (text_.origin(first.at) > text_.origin(entry.at)) return report_duplicate(first, entry);
    const bool passed_over =
        first.at < entry.at && first.verdict == Verdict::shadowed && entry.verdict == Verdict::ok;
    findings_.add(Rule::duplicate, [&] {
      return NewFinding{
          .at = entry.at,
          .entry = scan_.name(entry),
          .text = "duplicate name: the first entry, at " + text_.place(first.at) +
                  (passed_over ? ", is not reached"
                               : ", is used; other readers of such files use the last one"),
          .related = first.at};
    });
  }

  void report_case(const Entry &entry, const Entry &first) {
    findings_.add(Rule::case_differs, [&] {
      return NewFinding{.at = entry.at,
                        .entry = scan_.name(entry),
                        .text = "differs only in case from " + excerpt(scan_.name(first)) + " at " +
                                text_.place(first.at),
                        .related = first.at};
    });
  }

  void report_name(const Entry &entry) {
    const std::string_view name = scan_.name(entry);
    if (entry.reached && entry.verdict != Verdict::shadowed && is_reserved(name) &&
        name != reserved_name)
      report_reserved_part(entry, name);
    if (entry.name_length == longest_token)
      findings_.add(Rule::key_cut, {.at = entry.at,
                                    .entry = name,
                                    .text = "a name of " + std::to_string(longest_token) +
                                            " characters may be cut"});
    if (entry.reached && name.find(',') != std::string_view::npos) report_commas(entry, name);
    if (entry.built && !entry.quoted) report_foreign_signs(entry, name);
    if (entry.built) report_foreign_dash(entry, name);
    const std::string_view odd = odd_character(name);
    if (odd.empty()) return;
    findings_.add(rule_of_odd(entry, odd), [&] {
      NewFinding found = {.at = entry.at,
                          .entry = name,
                          .text = "invisible character " + visible(odd) +
                                  " in the name: the entry is found only by a name with it"};
      if (!entry.quoted)
        found.fix = fix_of_invisible(text_.text(), entry.at, entry.at + entry.name_length);
      return found;
    });
  }

  void report_foreign_signs(const Entry &entry, std::string_view name) {
    const bool first = !leading_sign(name).empty();
    const std::string_view sign = first ? leading_sign(name) : trailing_sign(name);
    if (sign.empty()) return;
    const std::size_t at = first ? 0 : name.size() - sign.size();
    findings_.add(Rule::odd_name, {.at = entry.at + static_cast<Offset>(at),
                                   .entry = name,
                                   .text = (first ? "begins with " : "ends with ") + quoted(sign) +
                                           ": the entry is found only by a name with it"});
  }

  void report_foreign_dash(const Entry &entry, std::string_view name) {
    const std::string_view dash = foreign_dash(name);
    if (dash.empty()) return;
    const std::size_t at = entry.quoted ? 0 : static_cast<std::size_t>(dash.data() - name.data());
    findings_.add(Rule::odd_name,
                  {.at = entry.at + static_cast<Offset>(at),
                   .entry = name,
                   .text = "has the dash " + quoted(dash) +
                           " for \"-\": the entry is found only by a name with it"});
  }

  static Rule rule_of_odd(const Entry &entry, std::string_view odd) {
    return entry.at == 0 && odd == byte_order_mark ? Rule::byte_order_mark : Rule::odd_bytes;
  }

  // The commas around a name that has none within.
  static std::vector<Edit> commas_around(const Entry &entry, std::string_view name) {
    const auto place = [&](std::size_t index) {
      return entry.at + static_cast<Offset>(std::min(index, name.size()));
    };
    const std::size_t first = name.find_first_not_of(',');
    const std::size_t after = name.find(',', first);
    std::vector<Edit> edits;
    if (first != 0) edits.push_back({entry.at, place(first), {}});
    if (after != name.npos && name.find_first_not_of(',', after) == name.npos)
      edits.push_back({place(after), place(name.size()), {}});
    return edits;
  }

  void report_commas(const Entry &entry, std::string_view name) {
    if (std::vector<Edit> commas = commas_around(entry, name); !commas.empty()) {
      findings_.add(Rule::stray_comma, {.at = entry.at,
                                        .entry = name,
                                        .text = "the comma is read as part of the name",
                                        .fix = entry.quoted ? Fix{} : safe_fix(std::move(commas))});
    } else {
      findings_.add(Rule::comma_list, [&] {
        return NewFinding{.at = entry.at,
                          .entry = name,
                          .text = "a list of names is read as one name: no lookup finds its parts",
                          .fix = entry.quoted ? Fix{} : lists_.split(entry.at).fix};
      });
    }
  }

  void report_reserved_part(const Entry &entry, std::string_view name) {
    const bool stops = scan_.stop().kind == StopKind::reserved && ends_lookups(name);
    const bool whole = name.size() == std::string_view(reserved_name).size();
    std::string text = (whole ? "not in capitals: " : "a prefix of ") + std::string(reserved_name);
    text += entry.built ? ": read as system variables" : ": read as system variables, and refused";
    if (stops) text += "; the entries after it are lost";
    findings_.add(Rule::reserved_part, {.at = entry.at,
                                        .entry = name,
                                        .text = std::move(text),
                                        .remedy = whole ? "write it in capitals" : ""});
  }

  const NamesText &text_;
  const FileScan &scan_;
  NameLists &lists_;
  Findings &findings_;
  NameIndex exact_;
  NameIndex alike_;
  std::string folded_;
};

}  // namespace

void report_names(const FileScan &scan, NameLists &lists, Findings &findings) {
  NameRules(scan, lists, findings).report();
}

}  // namespace kztns
