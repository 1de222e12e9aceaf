// A text with changes, and where what is left of it was before.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "text/offset.h"

namespace kztns {

// A change of a text: what is from begin to end becomes text.
struct Edit {
  Offset begin;
  Offset end;
  std::string text;
  // Where the text stands before, when it is a copy: findings about it are about that.
  std::optional<Offset> copy_of = {};

  bool operator==(const Edit &) const = default;
};

// Puts edits in the order in which they apply. Those at one place keep theirs.
void sort_edits(std::vector<Edit> &edits);

// Whether two of some sorted edits change the same bytes.
bool overlap(const std::vector<Edit> &edits);

class EditedText {
 public:
  // A copy of a part of a text, from a place on.
  explicit EditedText(std::string_view part, Offset at = 0);

  const std::string &text() const { return text_; }

  // Applies sorted edits that do not overlap; their places are those of text().
  void apply(const std::vector<Edit> &edits);

  // Where what is at a place of text() was before: for inserted text that is no copy,
  // where it was inserted.
  Offset origin(Offset at) const;

  // The edits of the text before that do what an edit of text() does: several where it
  // goes over what is removed. Empty when it would change what was not there.
  std::vector<Edit> to_origin(const Edit &edit) const;

  // A part of the text that was not changed.
  struct Kept {
    Offset at;      // in text()
    Offset origin;  // before
    Offset length;
  };
  const std::vector<Kept> &kept() const { return kept_; }  // in the order of text()

 private:
  // The last kept part that begins at a place or before it; null for none.
  const Kept *part_at(Offset at) const;
  void keep(Offset begin, Offset end, const std::vector<Kept> &before, std::size_t &next,
            std::string &text);
  void copy(const Edit &edit, const std::vector<Kept> &before, std::string &text);

  std::string text_;
  std::vector<Kept> kept_;
  Offset end_;  // before, of the part
};

}  // namespace kztns
