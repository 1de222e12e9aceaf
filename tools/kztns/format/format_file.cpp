#include "format/format_file.h"

#include <algorithm>
#include <set>
#include <unordered_map>

#include "check/ignores.h"
#include "scan/file_scan.h"
#include "scan/tree_digest.h"
#include "text/characters.h"

namespace kztns {
namespace {

// An entry as lookups meet it.
struct SeenEntry {
  Offset at;
  Offset end;
  bool single;  // not one of several names
  bool built;
  Verdict verdict;
  std::uint64_t digest;  // of the name and the tree

  bool same_as(const SeenEntry &other) const {
    return built == other.built && verdict == other.verdict && digest == other.digest;
  }
};

class Trees : public EntryVisitor {
 public:
  void visit(const EntryView &view) override {
    Digest digest;
    digest.add(view.name);
    if (view.service != nullptr) digest.add(tree_digest(*view.service));
    digests_[view.entry.at] = digest.value();
  }
  void progress(Offset) override {}

  std::uint64_t of(Offset at) const { return digests_.at(at); }

 private:
  std::unordered_map<Offset, std::uint64_t> digests_;
};

std::vector<SeenEntry> seen_in(const NamesText &text) {
  Trees trees;
  const FileScan scan(text, trees);
  std::vector<SeenEntry> seen;
  for (const Entry &entry : scan.entries())
    seen.push_back({entry.at, entry.end, entry.in_list == 0, entry.built != 0, entry.verdict,
                    trees.of(entry.at)});
  return seen;
}

// The edits of one layout of a file.
class Layouter {
 public:
  Layouter(const NamesText &text, const FormatOptions &options, const std::optional<Span> &range,
           const std::set<Offset> &excluded)
      : text_(text.text()), options_(options), range_(range), excluded_(excluded) {
    // Those before everything else are removed, and say little about what stays.
    std::size_t first = text_.find('\n', text_.find_first_not_of(blanks));
    if (first == std::string_view::npos) first = text_.find('\n');
    crlf_ = first != std::string_view::npos && first > 0 && text_[first - 1] == '\r';
  }

  Formatted run(const std::vector<SeenEntry> &entries) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const bool is_last = i + 1 == entries.size();
      const Offset next = is_last ? static_cast<Offset>(text_.size()) : entries[i + 1].at;
      if (entries[i].at >= from_) take(entries[i], next);
    }
    if (clean_ && !range_) end_file();
    return std::move(result_);
  }

 private:
  void take(const SeenEntry &entry, Offset next) {
    if (range_ && !is_touched(entry)) return;
    const std::optional<KeptBecause> kept = lay_out(entry);
    if (!kept) {
      clean_ = true;
      return;
    }
    result_.kept.push_back({entry.at, *kept});
    const std::optional<Offset> end = end_of_kept(entry.at, next);
    clean_ = end.has_value();
    from_ = std::max(from_, end.value_or(entry.at + 1));
  }

  // A selection has to hold some of the entry's text; a cursor may stand at its end, too.
  bool is_touched(const SeenEntry &entry) const {
    if (entry.at > range_->end || entry.end < range_->begin) return false;
    const std::vector<Piece> pieces = pieces_of_entry(entry);
    const Offset end = pieces.empty() ? entry.at : pieces.back().span.end;
    if (range_->begin >= range_->end) return range_->begin <= end;
    return entry.at < range_->end && range_->begin < end;
  }

  // Up to its last token.
  std::vector<Piece> pieces_of_entry(const SeenEntry &entry) const {
    std::vector<Piece> pieces = pieces_of(text_, entry.at, entry.end);
    while (!pieces.empty() && pieces.back().kind == PieceKind::comment) pieces.pop_back();
    return pieces;
  }

  std::optional<KeptBecause> lay_out(const SeenEntry &entry) {
    if (excluded_.count(entry.at) > 0) return KeptBecause::would_differ;
    const std::vector<Piece> before =
        clean_ ? pieces_of(text_, from_, entry.at) : std::vector<Piece>{};
    const bool comes_after_blanks = clean_ && is_clean(before, entry.at);
    const bool moves = comes_after_blanks && !range_;
    const std::string_view indentation = indentation_of(entry.at);
    const auto keep = [&](KeptBecause reason) {
      const auto line = static_cast<Offset>(entry.at - indentation.size());
      if (moves && begins_line(text_, entry.at)) lay_out_gap(before, line, GapEnd::entry);
      return reason;
    };
    if (!entry.built) return keep(KeptBecause::refused);
    if (!entry.single || (!comes_after_blanks && !begins_line(text_, entry.at)))
      return KeptBecause::unclear;
    const std::vector<Piece> pieces = pieces_of_entry(entry);
    const std::vector<std::string> gaps = layout_of(text_, pieces, options_);
    if (gaps.empty()) return KeptBecause::unclear;
    if (ignores_findings_of_line(pieces)) return keep(KeptBecause::ignores);
    if (moves) lay_out_gap(before, entry.at, GapEnd::entry);
    for (std::size_t i = 1; i < pieces.size(); ++i)
      replace(pieces[i - 1].span.end, pieces[i].span.begin,
              further_in(gaps[i], moves ? "" : indentation));
    from_ = pieces.back().span.end;
    return std::nullopt;
  }

  // Where the text of an entry ends that keeps it. Absent where that is not certain: unless
  // nothing but comments is between its last ")" and the next entry.
  std::optional<Offset> end_of_kept(Offset at, Offset next) const {
    std::vector<Piece> pieces = pieces_of(text_, at, next);
    std::erase_if(pieces, [](const Piece &piece) { return piece.kind == PieceKind::comment; });
    if (pieces.size() < 3 || pieces[0].kind != PieceKind::word ||
        pieces[1].kind != PieceKind::equal)
      return std::nullopt;
    std::size_t depth = 0;
    for (std::size_t i = 2; i < pieces.size(); ++i) {
      if (pieces[i].kind == PieceKind::open)
        ++depth;
      else if (depth == 0)
        return std::nullopt;
      else if (pieces[i].kind == PieceKind::close)
        --depth;
    }
    return depth == 0 ? std::optional(pieces.back().span.end) : std::nullopt;
  }

  // Whether nothing but comments comes before a place.
  bool is_clean(const std::vector<Piece> &before, Offset at) const {
    for (const Piece &piece : before)
      if (piece.kind != PieceKind::comment || piece.span.end > at) return false;
    return true;
  }

  // The blanks before a place that begins its line; empty for another one.
  std::string_view indentation_of(Offset at) const {
    Offset begin = at;
    while (begin > 0 && (text_[begin - 1] == ' ' || text_[begin - 1] == '\t')) --begin;
    const bool begins = begin == 0 || text_[begin - 1] == '\n';
    return begins ? text_.substr(begin, at - begin) : std::string_view();
  }

  static std::string further_in(std::string blanks, std::string_view indentation) {
    const std::size_t feed = blanks.rfind('\n');
    if (feed != std::string::npos) blanks.insert(feed + 1, indentation);
    return blanks;
  }

  // Such a comment is about what stands on its line now.
  bool ignores_findings_of_line(const std::vector<Piece> &pieces) const {
    for (const Piece &piece : pieces)
      if (is_such(piece)) return true;
    const Offset end = pieces.back().span.end;
    const std::size_t next = text_.find_first_not_of(blanks_of_line, end);
    if (next == std::string_view::npos || text_[next] != '#') return false;
    return is_such(pieces_of(text_, end, static_cast<Offset>(next) + 1).front());
  }

  bool is_such(const Piece &piece) const {
    const std::string_view words =
        text_.substr(piece.span.begin, piece.span.end - piece.span.begin);
    return piece.kind == PieceKind::comment && piece.line_feeds == 0 &&
           words.find(ignore_mark) != std::string_view::npos;
  }

  enum class GapEnd { entry, file };

  // Comments between entries, and the blanks up to the next one, or to the file's end.
  void lay_out_gap(const std::vector<Piece> &comments, Offset to, GapEnd end) {
    Offset from = from_;
    for (const Piece &comment : comments) {
      const bool begins_file = from == 0;
      const bool same_line = comment.line_feeds == 0;
      replace(from, comment.span.begin,
              begins_file ? ""
              : same_line ? " "
                          : line_feeds_before(comment));
      from = comment.span.end;
    }
    if (end == GapEnd::file) {
      if (from > 0) replace(from, to, "\n");
      return;
    }
    const auto blank_part = text_.substr(from, to - from);
    const auto line_feeds =
        static_cast<std::uint32_t>(std::count(blank_part.begin(), blank_part.end(), '\n'));
    replace(from, to, from == 0 ? "" : line_feeds_before({PieceKind::word, {}, line_feeds}));
  }

  void end_file() {
    const auto size = static_cast<Offset>(text_.size());
    const std::vector<Piece> comments = pieces_of(text_, from_, size);
    if (is_clean(comments, size)) lay_out_gap(comments, size, GapEnd::file);
  }

  void replace(Offset begin, Offset end, std::string blanks) {
    if (crlf_)
      for (std::size_t at = blanks.find('\n'); at != std::string::npos;
           at = blanks.find('\n', at + 2))
        blanks.insert(at, 1, '\r');
    if (text_.substr(begin, end - begin) != blanks)
      result_.edits.push_back({begin, end, std::move(blanks)});
  }

  std::string_view text_;
  const FormatOptions &options_;
  const std::optional<Span> &range_;
  const std::set<Offset> &excluded_;  // entries that keep their text
  bool crlf_ = false;
  Offset from_ = 0;    // after the last entry
  bool clean_ = true;  // whether it is certain that this one ends there
  Formatted result_;
};

// The entries whose layout makes a difference; all of them where that cannot be told.
std::vector<Offset> different(const std::vector<SeenEntry> &before,
                              const std::vector<SeenEntry> &after) {
  std::vector<Offset> places;
  const std::size_t common = std::min(before.size(), after.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (before[i].same_as(after[i])) continue;
    places.push_back(before[i].at);
    if (before.size() != after.size()) return places;
  }
  if (before.size() > common) places.push_back(before[common].at);
  if (after.size() > common && common > 0) places.push_back(before[common - 1].at);
  return places;
}

// Keeps the text of the entry at a place or, where that does not help, of the last one before
// it: lookups come to an entry through those before it.
void exclude(const std::vector<SeenEntry> &entries, Offset at, std::set<Offset> &excluded) {
  auto entry =
      std::upper_bound(entries.begin(), entries.end(), at,
                       [](Offset place, const SeenEntry &seen) { return place < seen.at; });
  while (entry != entries.begin())
    if (excluded.insert((--entry)->at).second) return;
}

}  // namespace

Formatted format_file(const NamesText &text, const FormatOptions &options,
                      const std::optional<Span> &range) {
  // Each walk through the file takes time: a file with more entries of this kind is none that
  // anybody wrote.
  constexpr int most_walks = 8;
  const std::vector<SeenEntry> before = seen_in(text);
  std::set<Offset> excluded;
  for (int walk = 0; walk < most_walks; ++walk) {
    Formatted result = Layouter(text, options, range, excluded).run(before);
    if (result.edits.empty()) return result;
    EditedText edited(text.text());
    edited.apply(result.edits);
    const std::vector<Offset> places = different(before, seen_in(NamesText(edited, text)));
    if (places.empty()) return result;
    for (const Offset place : places) exclude(before, place, excluded);
  }
  Formatted unchanged;
  for (const SeenEntry &entry : before)
    unchanged.kept.push_back({entry.at, KeptBecause::would_differ});
  return unchanged;
}

std::string_view name_of(KeptBecause reason) {
  switch (reason) {
    case KeptBecause::refused:
      return "the library refuses it";
    case KeptBecause::unclear:
      return "its text is not that of one entry";
    case KeptBecause::ignores:
      return "a comment in it ignores findings of its line";
    case KeptBecause::would_differ:
      return "with another layout, lookups would not find the same";
  }
  return "";
}

}  // namespace kztns
