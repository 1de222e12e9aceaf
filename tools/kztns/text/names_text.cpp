#include "text/names_text.h"

#include <algorithm>
#include <cstring>

#include "text/utf8.h"

namespace kztns {
namespace {

// Line ends from one place to another move the line's start.
void count_lines(std::string_view text, char line_end, std::size_t from, std::size_t to,
                 std::uint32_t &line, Offset &line_start) {
  for (std::size_t at = from; at < to;) {
    const void *const found = std::memchr(text.data() + at, line_end, to - at);
    if (found == nullptr) return;
    at = static_cast<std::size_t>(static_cast<const char *>(found) - text.data()) + 1;
    line_start = static_cast<Offset>(at);
    ++line;
  }
}

}  // namespace

std::string to_string(Position position) {
  return std::to_string(position.line) + ":" + std::to_string(position.column);
}

NamesText::NamesText(std::string text)
    : text_(std::move(text)), line_end_(text_.find('\n') == std::string::npos ? '\r' : '\n') {
  marks_.reserve(text_.size() / stride + 1);
  Mark mark = {1, 0};
  for (std::size_t at = 0;; at += stride) {
    marks_.push_back(mark);
    if (at + stride > text_.size()) return;
    count_lines(text_, line_end_, at, at + stride, mark.line, mark.line_start);
  }
}

NamesText::NamesText(const EditedText &changed, const NamesText &of)
    : changed_(&changed), of_(&of) {}

Position NamesText::position(Offset at) const {
  if (of_ != nullptr) return of_->position(changed_->origin(at));
  const Offset index = std::min<Offset>(at / stride, static_cast<Offset>(marks_.size() - 1));
  Mark mark = marks_[index];
  count_lines(text_, line_end_, std::size_t{index} * stride, at, mark.line, mark.line_start);
  return {mark.line, at - mark.line_start + 1};
}

std::uint32_t NamesText::character_column(Offset at) const {
  if (of_ != nullptr) return of_->character_column(changed_->origin(at));
  const std::uint32_t column = position(at).column;
  const Offset counted = std::min<Offset>(column - 1, longest_counted_line);
  const std::string_view before = std::string_view(text_).substr(at - counted, counted);
  return column -
         static_cast<std::uint32_t>(std::count_if(before.begin(), before.end(), is_continuation));
}

std::string_view NamesText::line_around(Offset at, std::size_t &column) const {
  if (of_ != nullptr) return of_->line_around(changed_->origin(at), column);
  constexpr std::size_t most_before = 60;
  constexpr std::size_t most = 120;
  const std::size_t in_line = position(at).column - 1;
  column = std::min(in_line, most_before);
  if (column < in_line) column -= cut_begin(std::string_view(text_).substr(at - column, column));
  const std::string_view rest = std::string_view(text_).substr(at - column, most);
  const std::size_t end = rest.substr(column).find_first_of("\r\n");
  if (end != std::string_view::npos) return rest.substr(0, column + end);
  return rest.substr(0, rest.size() - (rest.size() == most ? cut_end(rest) : 0));
}

}  // namespace kztns
