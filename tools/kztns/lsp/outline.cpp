#include "lsp/outline.h"

#include <algorithm>

#include "format/pieces.h"
#include "scan/item_words.h"
#include "scan/written_entries.h"
#include "scan/written_items.h"
#include "text/characters.h"

namespace kztns::lsp {
namespace {

// Reads one entry's value.
class OutlineReader {
 public:
  OutlineReader(std::string_view text, Outline &entry) : text_(text), open_{{entry, true}} {}

  void read(const std::vector<Piece> &pieces) {
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      if (pieces[i].kind == PieceKind::word && depth_ == 0 && opened_) return;
      if (pieces[i].kind != PieceKind::comment) extend(pieces[i].span.end);
      if (pieces[i].kind == PieceKind::open) begin_item(pieces, i);
      if (pieces[i].kind == PieceKind::close && depth_ > 0) end_item();
    }
  }

  // The entry, with what is not closed.
  Outline finish() {
    while (open_.size() > 1) close_last();
    return std::move(open_.front().outline);
  }

 private:
  struct Open {
    Outline outline;
    bool shown;  // whether it is a block to be told of
  };

  void begin_item(const std::vector<Piece> &pieces, std::size_t open) {
    opened_ = true;
    if (++depth_ >= most_depth) return;
    const bool has_key = open + 1 < pieces.size() && pieces[open + 1].kind == PieceKind::word;
    const Span key = has_key ? pieces[open + 1].span : Span{};
    const std::string word = unquoted(text_.substr(key.begin, key.end - key.begin));
    open_.push_back({{pieces[open].span, key, {}}, opens_block(item_word(word))});
  }

  void end_item() {
    if (depth_-- < most_depth) close_last();
  }

  void close_last() {
    Open ended = std::move(open_.back());
    open_.pop_back();
    if (ended.shown) open_.back().outline.inner.push_back(std::move(ended.outline));
  }

  void extend(Offset end) {
    for (Open &open : open_) open.outline.whole.end = end;
  }

  std::string_view text_;
  std::vector<Open> open_;
  std::size_t depth_ = 0;
  bool opened_ = false;
};

}  // namespace

std::vector<Outline> outline_of(std::string_view text) {
  std::vector<WrittenEntry> entries;
  for_each_written_entry(text, [&](const WrittenEntry &entry) { entries.push_back(entry); });
  std::vector<Outline> outlines;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const WrittenEntry &entry = entries[i];
    const auto limit =
        static_cast<Offset>(i + 1 < entries.size() ? entries[i + 1].name_begin : text.size());
    Outline outline{{entry.name_begin, entry.body}, {entry.name_begin, entry.name_end}, {}};
    OutlineReader reader(text, outline);
    // Of several names, the last one has the value.
    if (limit > entry.body) reader.read(pieces_of(text.substr(0, limit), entry.body, limit));
    outlines.push_back(reader.finish());
  }
  return outlines;
}

std::vector<Span> comment_runs(std::string_view text) {
  std::vector<Span> runs;
  bool in_run = false;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    const std::string_view line = trimmed(text.substr(begin, end - begin));
    const bool is_comment = line.starts_with('#');
    if (is_comment && !in_run) runs.push_back({static_cast<Offset>(begin), 0});
    if (is_comment) runs.back().end = static_cast<Offset>(end);
    in_run = is_comment;
    begin = end + 1;
  }
  return runs;
}

}  // namespace kztns::lsp
