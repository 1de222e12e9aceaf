#include "lsp/context.h"

#include <optional>

#include "format/pieces.h"
#include "scan/reserved_names.h"
#include "scan/written_entries.h"
#include "scan/written_items.h"
#include "text/words.h"

namespace kztns::lsp {
namespace {

// The last entry that begins before a place, as far as lines tell.
std::optional<WrittenEntry> entry_before(std::string_view text, Offset at) {
  std::optional<WrittenEntry> last;
  for_each_written_entry(text, [&](const WrittenEntry &entry) {
    if (entry.name_begin <= at) last = entry;
  });
  return last;
}

// Goes through an entry's value up to a place.
class ContextReader {
 public:
  ContextReader(std::string_view text, Content entry) : text_(text), contents_{entry} {}

  // An entry ends before a word that follows its items.
  bool ends_before(const Piece &piece) const {
    return piece.kind == PieceKind::word && last_ == PieceKind::close && contents_.size() == 1;
  }

  void take(const Piece &piece) {
    if (piece.kind == PieceKind::comment) return;
    if (piece.kind == PieceKind::open) {
      if (!key_.empty()) contents_.push_back(placement().content);
      key_ = {};
    }
    if (piece.kind == PieceKind::close) {
      if (key_.empty() && last_ != PieceKind::open && contents_.size() > 1) contents_.pop_back();
      key_ = {};
    }
    after_word_ = piece.kind == PieceKind::word;
    if (after_word_ && last_ == PieceKind::open) key_ = slice(piece.span);
    if (!after_word_) last_ = piece.kind;
  }

  // What a word is that comes next, or the one that came last.
  Place place(Span word) const {
    Place place{PlaceKind::item, word, key_, contents_.back(), after_word_};
    if (last_ == PieceKind::open) place.kind = PlaceKind::key;
    if (last_ == PieceKind::equal && !key_.empty()) {
      const Content::Kind kind = placement().content.kind;
      const bool holds_items = kind == Content::block || kind == Content::description_list;
      place.kind = holds_items ? PlaceKind::item : PlaceKind::value;
      if (holds_items) place.around = placement().content;
    }
    return place;
  }

 private:
  Placement placement() const { return placement_of(item_word(unquoted(key_)), contents_.back()); }
  std::string_view slice(Span span) const {
    return text_.substr(span.begin, span.end - span.begin);
  }

  std::string_view text_;
  std::vector<Content> contents_;  // of the blocks around
  std::string_view key_;           // of the current item, which is no block so far
  PieceKind last_ = PieceKind::equal;
  bool after_word_ = false;
};

Content content_of_entry(std::string_view text, const WrittenEntry &entry) {
  const std::string name =
      unquoted(text.substr(entry.name_begin, entry.name_end - entry.name_begin));
  return content_of(is_reserved(name) ? Block::system_variables : Block::entry);
}

Place place_in_entry(std::string_view text, const WrittenEntry &entry, Offset at, bool whole_word) {
  ContextReader reader(text, content_of_entry(text, entry));
  const std::string_view read = whole_word ? text : text.substr(0, at);
  for (const Piece &piece : pieces_of(read, entry.body, at)) {
    if (reader.ends_before(piece)) return {};
    if (piece.kind == PieceKind::comment && text.find('\n', piece.span.end) >= at) return {};
    if (piece.kind == PieceKind::word && piece.span.end >= at) return reader.place(piece.span);
    reader.take(piece);
  }
  return reader.place({at, at});
}

// After "NAME =", where the value of an entry is due: a "(" would begin it.
Place place_of_value(std::string_view text, Offset at) {
  const std::string begun = std::string(text.substr(0, at)) + '(';
  const std::optional<WrittenEntry> entry = entry_before(begun, at);
  if (!entry || pass_blanks(begun, entry->body) != at) return {};
  return {PlaceKind::item, {at, at}, {}, content_of_entry(begun, *entry)};
}

Place place_of_written(std::string_view text, Offset at, bool whole_word) {
  const std::optional<WrittenEntry> entry = entry_before(text, at);
  if (!entry) return {};
  if (at <= entry->name_end) return {PlaceKind::name, {entry->name_begin, entry->name_end}};
  if (at < entry->body) return {};
  // The character under a cursor is the one after it.
  const bool before_word = whole_word && at < text.size();
  return place_in_entry(text, *entry, before_word ? at + 1 : at, whole_word);
}

}  // namespace

Place place_at(std::string_view text, Offset at, bool whole_word) {
  const Place place = place_of_written(text, at, whole_word);
  return place.kind == PlaceKind::none && !whole_word ? place_of_value(text, at) : place;
}

const Key *row_of(std::string_view key, Content around) {
  if (around.kind != Content::block) return nullptr;
  const ItemWord word = item_word(unquoted(key));
  return word.type == LB_ERROR_KEY ? nullptr : kzoci::tns::key_of(around.inner, word.type);
}

}  // namespace kztns::lsp
