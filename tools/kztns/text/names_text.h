// The text of a names file, with lines and columns.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "text/edited_text.h"
#include "text/escape.h"
#include "text/offset.h"

namespace kztns {

// The same for people: both from 1, the column in bytes.
struct Position {
  std::uint32_t line = 1;
  std::uint32_t column = 1;

  bool operator==(const Position &) const = default;
};

std::string to_string(Position position);  // "3:17"

// A text and where its lines begin. Finding a position takes the same short time
// wherever it is, also in a line of millions of bytes.
class NamesText {
 public:
  explicit NamesText(std::string text);

  // A changed copy of another text or of its part. Its places are told as those of the
  // other, of which the place of what was not changed is the same. Both must live on.
  NamesText(const EditedText &changed, const NamesText &of);

  const std::string &text() const { return of_ == nullptr ? text_ : changed_->text(); }
  Offset size() const { return static_cast<Offset>(text().size()); }
  Position position(Offset at) const;
  // A place as one of the text that this is a copy of; of no copy it is the same.
  Offset origin(Offset at) const { return of_ == nullptr ? at : changed_->origin(at); }
  // The same of an edit; empty when it would change what is not in that text.
  std::vector<Edit> to_origin(const Edit &edit) const {
    return of_ == nullptr ? std::vector<Edit>{edit} : changed_->to_origin(edit);
  }
  std::string place(Offset at) const { return to_string(position(at)); }

  // The column of a place in characters of UTF-8. Of a longer line the beginning counts
  // in bytes.
  static constexpr std::uint32_t longest_counted_line = 4096;
  std::uint32_t character_column(Offset at) const;

  // The line that holds a place, without its line feed; of a long line the part
  // around the place. column becomes the place's index in what is returned.
  std::string_view line_around(Offset at, std::size_t &column) const;

 private:
  // What is known at every multiple of stride.
  struct Mark {
    std::uint32_t line;
    Offset line_start;
  };
  static constexpr Offset stride = 4096;

  std::string text_;
  char line_end_ = '\n';  // a carriage return where there is no line feed
  std::vector<Mark> marks_;
  const EditedText *changed_ = nullptr;
  const NamesText *of_ = nullptr;
};

}  // namespace kztns
