#include "format/layout.h"

#include "text/spelling.h"

namespace kztns {
namespace {

bool is(const Piece &piece, PieceKind kind) { return piece.kind == kind; }

class Layout {
 public:
  Layout(std::string_view text, const std::vector<Piece> &pieces, const FormatOptions &options)
      : text_(text), pieces_(pieces), options_(options), broken_(pieces.size()) {
    measure();
  }

  std::vector<std::string> run() {
    if (!read()) return {};
    std::vector<std::string> gaps(1);
    for (std::size_t i = 1; i < pieces_.size(); ++i) {
      gaps.push_back(gap(i));
      if (is(pieces_[i], PieceKind::open)) around_.push_back(i);
      if (is(pieces_[i], PieceKind::close)) around_.pop_back();
    }
    return gaps;
  }

 private:
  // A block that is being read.
  struct Open {
    std::size_t piece;
    bool empty = true;
    bool only_settings = true;
  };

  // How wide the entry is on one line up to each piece, and how many of its pieces need a
  // line end.
  void measure() {
    std::size_t width = 0;
    std::size_t ends = 0;
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
      const Piece &piece = pieces_[i];
      if (is(piece, PieceKind::comment)) {
        ++ends;
      } else {
        tokens_.push_back(i);
        const std::string_view word = slice(piece);
        if (word.find('\n') != std::string_view::npos) ++ends;
        // Around an "=" there is a blank on both sides.
        width += word.size() + (is(piece, PieceKind::equal) ? 2 : 0);
      }
      widths_.push_back(width);
      line_ends_.push_back(ends);
    }
  }

  // Whether tokens follow from one on that are of these kinds.
  bool follow(std::size_t token, std::initializer_list<PieceKind> kinds) const {
    for (const PieceKind kind : kinds) {
      if (token >= tokens_.size() || !is(pieces_[tokens_[token]], kind)) return false;
      ++token;
    }
    return true;
  }

  // Checks the form, and decides which blocks are broken.
  bool read() {
    using enum PieceKind;
    if (!follow(0, {word, equal, open})) return false;
    std::vector<Open> blocks = {{0}};
    for (std::size_t token = 2; token < tokens_.size();) {
      if (follow(token, {close})) {
        if (blocks.size() == 1 || blocks.back().empty) return false;
        end_block(blocks.back(), tokens_[token], blocks.size());
        blocks.pop_back();
        ++token;
        continue;
      }
      blocks.back().empty = false;
      if (follow(token, {open, word, equal, word, close})) {
        token += 5;
      } else if (follow(token, {open, word, equal, open})) {
        blocks.back().only_settings = false;
        blocks.push_back({tokens_[token]});
        token += 3;
      } else {
        return false;
      }
    }
    return blocks.size() == 1;
  }

  // depth is the number of the blocks around what it holds.
  void end_block(const Open &block, std::size_t close, std::size_t depth) {
    const std::size_t begin = block.piece;
    const bool ends_lines = line_ends_[close] > line_ends_[begin];
    const std::size_t width = widths_[close] - widths_[begin] + 1;
    const bool fits = (depth - 1) * indent_width() + width <= widest_line ||
                      (options_.one_address_a_line && is_address(begin));
    broken_[begin] = !block.only_settings || ends_lines || !fits;
  }

  std::size_t indent_width() const {
    return options_.indent == "\t" ? width_of_tab : options_.indent.size();
  }

  bool is_address(std::size_t open) const {
    return is(pieces_[open + 1], PieceKind::word) &&
           equal_but_for_case(slice(pieces_[open + 1]), "ADDRESS");
  }

  // Whether items stand on lines of their own in the innermost block.
  bool in_broken() const { return around_.empty() || broken_[around_.back()]; }

  std::string gap(std::size_t i) const {
    const Piece &before = pieces_[i - 1];
    const Piece &piece = pieces_[i];
    const std::size_t depth = around_.size();
    const bool after_item = is(before, PieceKind::close) || is(before, PieceKind::comment);
    if (is(piece, PieceKind::comment)) {
      if (piece.line_feeds == 0) return " ";
      return indented(after_item ? line_feeds_before(piece) : "\n", depth + 1);
    }
    if (is(piece, PieceKind::close))
      return is(before, PieceKind::comment) || (is(before, PieceKind::close) && in_broken())
                 ? indented("\n", depth)
                 : "";
    if (is(before, PieceKind::comment) && !is(piece, PieceKind::open))
      return indented("\n", depth + 1);
    return is(piece, PieceKind::open) ? gap_of_item(before, piece) : gap_in_item(before, piece);
  }

  std::string gap_of_item(const Piece &before, const Piece &open) const {
    const bool first = is(before, PieceKind::equal);
    if (!in_broken()) return first ? " " : "";
    return indented(first ? "\n" : line_feeds_before(open), around_.size() + 1);
  }

  static std::string gap_in_item(const Piece &before, const Piece &piece) {
    return is(before, PieceKind::equal) || is(piece, PieceKind::equal) ? " " : "";
  }

  std::string indented(std::string line_feeds, std::size_t depth) const {
    for (; depth > 0; --depth) line_feeds += options_.indent;
    return line_feeds;
  }

  std::string_view slice(const Piece &piece) const {
    return text_.substr(piece.span.begin, piece.span.end - piece.span.begin);
  }

  static constexpr std::size_t width_of_tab = 8;

  std::string_view text_;
  const std::vector<Piece> &pieces_;
  const FormatOptions &options_;
  std::vector<std::size_t> tokens_;     // the pieces that are no comments
  std::vector<std::size_t> widths_;     // of each piece, with all before it
  std::vector<std::size_t> line_ends_;  // that are needed up to each piece
  std::vector<bool> broken_;            // of each "(" that opens a block
  std::vector<std::size_t> around_;     // the "(" that are open
};

}  // namespace

std::vector<std::string> layout_of(std::string_view text, const std::vector<Piece> &pieces,
                                   const FormatOptions &options) {
  return Layout(text, pieces, options).run();
}

std::string line_feeds_before(const Piece &piece) { return piece.line_feeds > 1 ? "\n\n" : "\n"; }

}  // namespace kztns
