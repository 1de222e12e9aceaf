#include "mend/comment_out.h"

#include <algorithm>
#include <map>
#include <optional>
#include <unordered_map>

#include "check/conflicts.h"
#include "check/entry_faults.h"
#include "fixes/file_fixes.h"
#include "scan/file_scan.h"
#include "scan/name_list.h"
#include "scan/tokens.h"
#include "text/characters.h"

namespace kztns {
namespace {

Offset line_start(std::string_view text, Offset at) {
  return static_cast<Offset>(text.substr(0, at).rfind('\n') + 1);
}

bool is_blank_text(std::string_view text) {
  return text.find_first_not_of(blanks_of_line) == text.npos;
}

// Whether more than a comment follows on the line.
bool goes_on(std::string_view text, Offset at) {
  const std::string_view rest = text.substr(at, text.find('\n', at) - at);
  const std::size_t next = rest.find_first_not_of(blanks_of_line);
  return next != rest.npos && rest[next] != '#';
}

// What a finding says of the text; what it says of the check is for its reader only.
std::string reason_of(const Finding &finding) {
  std::string text = finding.text;
  const std::size_t unchecked = text.find(rest_is_unchecked);
  if (unchecked != std::string::npos) text.erase(unchecked, rest_is_unchecked.size());
  return text + " [" + std::string(row_of(finding.rule).id) + "]";
}

// What is to become a comment, with the finding that tells why.
struct Candidate {
  CommentedPart part;
  Finding finding;
};

// One scan of the current text.
class Unserved {
 public:
  explicit Unserved(Mender &mender) : text_(mender.text().text()), scan_(mender.text()) {
    for (const Entry &entry : scan_.entries()) starts_[scan_.name(entry)].push_back(entry.at);
    for (const Finding &finding : mender.report().findings) {
      if (finding.severity != Severity::error || is_lost_elsewhere(finding)) continue;
      const std::optional<Offset> start = start_of_named(finding);
      errors_.push_back({&finding, start.value_or(finding.at)});
      if (start) of_entries_.emplace(*start, &finding);
    }
  }

  const FileScan &scan() const { return scan_; }

  std::vector<Candidate> faulty() {
    std::vector<Candidate> found;
    for (const Entry &entry : scan_.entries())
      if (is_unserved(entry)) add(entry.at, found);
    if (const auto stray = stray_text(scan_.stop())) add(*stray, found);
    std::sort(found.begin(), found.end(), [](const Candidate &left, const Candidate &right) {
      return left.part.begin < right.part.begin;
    });
    return found;
  }

  // What would end the lookups if something else did not.
  std::vector<Candidate> further() {
    std::vector<Candidate> found;
    for (const Stop &stop : scan_.further_stops()) {
      if (stop.kind == StopKind::no_open)
        add(stop.name, found);
      else if (const auto stray = stray_text(stop))
        add(*stray, found);
    }
    return found;
  }

  // To where the entry is built, or up to the next one, without the comments and blanks
  // before that. Names of a list are one entry.
  Offset end_of_part(Offset begin) const {
    if (const auto list = read_name_list(text_, begin))
      if (const auto end = end_of_no_name(text_, *list)) return *end;
    const auto &entries = scan_.entries();
    auto next = scan_.first_after(begin);
    if (next != entries.begin())
      for (const Offset body = std::prev(next)->body; next != entries.end() && next->body == body;)
        ++next;
    Offset limit = next == entries.end() ? static_cast<Offset>(text_.size()) : next->at;
    if (next != entries.begin() && std::prev(next)->at == begin && std::prev(next)->built)
      limit = std::min(limit, std::prev(next)->end);
    Offset end = begin;
    TokenReader tokens(text_.substr(0, limit), begin);
    for (Token token = tokens.next(); token.kind != TokenKind::end; token = tokens.next())
      end = token.span.end;
    return end;
  }

 private:
  struct Error {
    const Finding *finding;
    Offset about;  // where the entry that it names begins, or its own place
  };

  static bool is_unserved(const Entry &entry) {
    return entry.verdict == Verdict::unreachable ||
           (!entry.built && entry.verdict != Verdict::reserved);
  }

  // Where text begins that ends the lookups, and is no entry.
  std::optional<Offset> stray_text(const Stop &stop) const {
    if (stop.kind == StopKind::no_equal || stop.kind == StopKind::lost_name) return stop.name;
    if (stop.kind == StopKind::no_name || stop.kind == StopKind::name_too_long) return stop.at;
    return std::nullopt;
  }

  // A part without an error stays: what is wrong is ignored, or is wrong elsewhere.
  void add(Offset begin, std::vector<Candidate> &found) const {
    if (!found.empty() && begin < found.back().part.end) return;
    const Offset end = end_of_part(begin);
    const Finding *const error = end == begin ? nullptr : error_about(begin, end);
    if (error != nullptr) found.push_back({{begin, end, reason_of(*error)}, *error});
  }

  // Whether something before an entry keeps lookups from it.
  bool is_lost_elsewhere(const Finding &finding) const {
    if (finding.rule == Rule::after_reserved) return true;
    const Entry *const entry = scan_.entry_at_or_before(finding.at);
    return finding.rule == Rule::unreachable && entry != nullptr && !entry->reached;
  }

  // The parenthesis that is one too many may be told before the one at which lookups end.
  const Finding *error_about(Offset begin, Offset end) const {
    const Finding *const error = first_error(begin, end);
    const bool is_stop = scan_.stop().kind == StopKind::no_name && begin == scan_.stop().at;
    if (error != nullptr || !is_stop) return error;
    const Entry *const before = scan_.last_reached();
    return before == nullptr ? nullptr : first_error(before->at, begin);
  }

  // Null for none. An entry that goes on into what comes after its part has its error there, which
  // is not that of what it goes on into.
  const Finding *first_error(Offset begin, Offset end) const {
    auto first = std::lower_bound(
        errors_.begin(), errors_.end(), begin,
        [](const Error &error, Offset place) { return error.finding->at < place; });
    while (first != errors_.end() && first->finding->at < end && first->about < begin) ++first;
    const bool is_within = first != errors_.end() && first->finding->at < end;
    const Finding *const within = is_within ? first->finding : nullptr;
    const auto found = of_entries_.find(begin);
    if (found == of_entries_.end()) return within;
    return within != nullptr && within->at <= found->second->at ? within : found->second;
  }

  // Where the entry begins that a finding names; absent for none.
  std::optional<Offset> start_of_named(const Finding &finding) const {
    const auto starts = starts_.find(finding.entry);
    if (finding.entry.empty() || starts == starts_.end()) return std::nullopt;
    const auto after = std::upper_bound(starts->second.begin(), starts->second.end(), finding.at);
    if (after == starts->second.begin()) return std::nullopt;
    return *std::prev(after);
  }

  std::string_view text_;
  FileScan scan_;
  std::unordered_map<std::string_view, std::vector<Offset>> starts_;  // of entries, by their names
  std::vector<Error> errors_;                                         // in the order of the text
  std::unordered_map<Offset, const Finding *> of_entries_;  // the first error that names an entry
};

bool try_parts(Mender &mender, const std::vector<Candidate> &found,
               const std::vector<Offset> &exempt = {}) {
  std::vector<CommentedPart> parts;
  parts.reserve(found.size());
  for (const Candidate &one : found) parts.push_back(one.part);
  if (!mender.try_edits(as_comments(mender.text().text(), parts), exempt)) return false;
  for (const Candidate &one : found) {
    MendedFinding mended = {one.finding, "commented out"};
    mended.finding.fix = {};  // it is not what was done
    mender.add_mended(std::move(mended));
  }
  return true;
}

// All of them or, when that would lose a name, the first one that does not.
bool comment_out(Mender &mender, const std::vector<Candidate> &found) {
  if (try_parts(mender, found)) return true;
  for (const Candidate &one : found)
    if (mender.spend_check() && try_parts(mender, {one})) return true;
  return false;
}

// The entries of one name.
using Namesakes = std::vector<const Entry *>;

std::map<std::string_view, Namesakes> namesakes(const FileScan &scan) {
  std::map<std::string_view, Namesakes> all;
  for (const Entry &entry : scan.entries())
    if (!entry.in_list) all[scan.name(entry)].push_back(&entry);
  return all;
}

// Which of the entries of a name is the last one.
enum class Last {
  built,   // that the library builds: it is found when those before it are comments
  reached  // that lookups come to as the text is
};

const Entry *kept_of(const Namesakes &entries, Keep keep, Last which) {
  if (keep == Keep::first) return entries.front();
  const auto last = std::find_if(entries.rbegin(), entries.rend(), [&](const Entry *entry) {
    return entry->built && (entry->reached || which == Last::built);
  });
  return last == entries.rend() ? entries.front() : *last;
}

Finding duplicate(const Mender &mender, const FileScan &scan, const Entry &entry,
                  const Entry &kept) {
  Finding finding = {};
  finding.rule = Rule::duplicate;
  finding.severity = Severity::warning;
  finding.at = entry.at;
  finding.position = mender.text().position(entry.at);
  finding.entry = scan.name(entry);
  finding.text = "duplicate name: the entry at " + mender.text().place(kept.at) + " is kept";
  return finding;
}

}  // namespace

std::vector<Edit> as_comments(std::string_view text, const std::vector<CommentedPart> &parts) {
  std::vector<Edit> edits;
  for (const CommentedPart &part : parts) {
    const Offset line = line_start(text, part.begin);
    const bool alone = is_blank_text(text.substr(line, part.begin - line));
    const Offset begin = alone ? line : part.begin;
    edits.push_back({begin, begin, (alone ? "# " : "\n# ") + part.reason + "\n# "});
    for (Offset at = begin; at < part.end; ++at)
      if (text[at] == '\n' && at + 1 < part.end) edits.push_back({at + 1, at + 1, "# "});
    write_out_zero_bytes(text, begin, part.end, edits);
    if (goes_on(text, part.end)) edits.push_back({part.end, part.end, "\n"});
  }
  sort_edits(edits);
  return edits;
}

namespace {

// Whether there was nothing to do, or it was done.
bool try_to_keep(Mender &mender, Keep keep, Last which) {
  Unserved unserved(mender);
  std::vector<Candidate> found;
  std::vector<Offset> exempt;
  for (const auto &[name, entries] : namesakes(unserved.scan())) {
    const Entry *const kept = kept_of(entries, keep, which);
    for (const Entry *const entry : entries) {
      if (entry == kept) continue;
      Finding finding = duplicate(mender, unserved.scan(), *entry, *kept);
      found.push_back(
          {{entry->at, unserved.end_of_part(entry->at), finding.text}, std::move(finding)});
      exempt.push_back(entry->at);
    }
  }
  std::sort(found.begin(), found.end(), [](const Candidate &left, const Candidate &right) {
    return left.part.begin < right.part.begin;
  });
  return found.empty() || try_parts(mender, found, exempt);
}

}  // namespace

void comment_out_duplicates(Mender &mender, Keep keep) {
  if (!try_to_keep(mender, keep, Last::built)) try_to_keep(mender, keep, Last::reached);
}

void comment_out_unserved(Mender &mender) {
  // Where no error is left, what keeps lookups from entries is ignored, too.
  while (mender.spend_check() && count(mender.report(), Severity::error) > 0) {
    Unserved unserved(mender);
    std::vector<Candidate> found = unserved.faulty();
    if (found.empty()) found = unserved.further();
    if (found.empty() || !comment_out(mender, found)) return;
  }
}

void mend(Mender &mender, const Commenting &commenting) {
  mender.apply_fixes();
  if (!commenting.keep && !commenting.unserved) return;
  // One of a conflict's two versions would be served, and which one is not decided.
  if (!Conflicts(mender.text().text()).all().empty()) return;
  // What is a comment now may have kept other fixes from being applied.
  std::size_t steps = 0;
  do {
    steps = mender.steps();
    if (commenting.keep) comment_out_duplicates(mender, *commenting.keep);
    if (commenting.unserved) comment_out_unserved(mender);
    mender.apply_fixes();
  } while (steps != mender.steps() && !mender.stopped());
}

}  // namespace kztns
