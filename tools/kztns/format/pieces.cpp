#include "format/pieces.h"

#include "text/characters.h"
#include "text/words.h"

namespace kztns {
namespace {

PieceKind kind_of(char c) {
  switch (c) {
    case '(':
      return PieceKind::open;
    case ')':
      return PieceKind::close;
    case '=':
      return PieceKind::equal;
    case '#':
      return PieceKind::comment;
    default:
      return PieceKind::word;
  }
}

class Reader {
 public:
  Reader(std::string_view text, Offset from, Offset to) : text_(text), at_(from), to_(to) {}

  std::vector<Piece> run() {
    std::uint32_t line_feeds = 0;
    for (; at_ < to_; line_feeds = 0) {
      for (; at_ < to_ && is_blank(text_[at_]); ++at_) line_feeds += text_[at_] == '\n' ? 1 : 0;
      if (at_ < to_) take(kind_of(text_[at_]), line_feeds);
    }
    return std::move(pieces_);
  }

 private:
  void take(PieceKind kind, std::uint32_t line_feeds) {
    const Offset begin = at_;
    Offset end = at_ + 1;
    if (kind == PieceKind::word) end = end_of_whole_word(text_, begin).at;
    if (kind == PieceKind::comment) end = end_of_comment(text_, begin);
    at_ = end;
    if (kind == PieceKind::comment)
      while (is_blank(text_[end - 1])) --end;
    pieces_.push_back({kind, {begin, end}, line_feeds});
  }

  std::string_view text_;
  Offset at_;
  Offset to_;
  std::vector<Piece> pieces_;
};

}  // namespace

std::vector<Piece> pieces_of(std::string_view text, Offset from, Offset to) {
  return Reader(text, from, to).run();
}

}  // namespace kztns
