#include "lsp/document.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "text/utf8.h"

namespace kztns::lsp {

Document::Document(std::string text, std::int64_t version, Encoding encoding)
    : version_(version), encoding_(encoding) {
  set(std::move(text));
}

void Document::set(std::string text) {
  text_ = std::move(text);
  has_crlf_.reset();
  lines_ = {0};
  find_lines(0, size(), lines_);
}

bool Document::has_crlf() const {
  if (!has_crlf_) {
    const std::size_t feed = text_.find('\n');
    has_crlf_ = feed != std::string::npos && feed > 0 && text_[feed - 1] == '\r';
  }
  return *has_crlf_;
}

// A line ends with a line feed, a carriage return or both.
void Document::find_lines(Offset from, Offset to, std::vector<Offset> &lines) const {
  for (Offset at = from; at < to; ++at) {
    const std::size_t end = text_.find_first_of("\r\n", at);
    if (end >= to) return;
    at = static_cast<Offset>(end);
    if (text_[at] == '\r' && at + 1 < size() && text_[at + 1] == '\n') ++at;
    if (at < to) lines.push_back(at + 1);
  }
}

// Only the lines that are touched are read again.
void Document::replace(LineRange range, std::string_view text) {
  const Offset begin = offset(range.begin);
  const Offset end = std::max(begin, offset(range.end));
  // A change may part a carriage return from its line feed, or bring them together.
  const std::size_t first = line_of(begin) - (line_of(begin) > 0 ? 1 : 0);
  const auto last = std::upper_bound(lines_.begin(), lines_.end(), end + 1);
  const Offset removed = end - begin;
  const auto added = static_cast<Offset>(text.size());
  std::vector<Offset> after(last, lines_.end());
  for (Offset &line : after) line = line - removed + added;
  text_.replace(begin, removed, text);
  has_crlf_.reset();
  lines_.resize(first + 1);
  find_lines(lines_[first], after.empty() ? size() : after.front() - 1, lines_);
  lines_.insert(lines_.end(), after.begin(), after.end());
}

std::size_t Document::line_of(Offset at) const {
  const auto next = std::upper_bound(lines_.begin(), lines_.end(), at);
  return static_cast<std::size_t>(next - lines_.begin()) - 1;
}

// How many units a byte begins.
std::uint32_t Document::units(char c) const {
  if (encoding_ == Encoding::utf_8) return 1;
  constexpr unsigned char first_of_four = 0xF0;
  return is_continuation(c) ? 0 : static_cast<unsigned char>(c) >= first_of_four ? 2 : 1;
}

Offset Document::offset(LinePosition position) const {
  if (position.line >= lines_.size()) return size();
  Offset at = lines_[position.line];
  const std::size_t end = std::min(text_.find_first_of("\r\n", at), text_.size());
  for (std::uint32_t passed = 0; at < end; ++at) {
    passed += units(text_[at]);
    if (passed > position.character) break;
  }
  // Not into a character.
  while (at > lines_[position.line] && at < end && is_continuation(text_[at])) --at;
  return at;
}

LinePosition Document::position(Offset at) const {
  at = std::min(at, size());
  const std::size_t line = line_of(at);
  const Offset begin = lines_[line];
  std::uint32_t character = at - begin;
  if (encoding_ == Encoding::utf_16) {
    character = 0;
    for (Offset i = begin; i < at; ++i) character += units(text_[i]);
  }
  return {static_cast<std::uint32_t>(line), character};
}

std::string_view Document::line_at(Offset at) const {
  const std::string_view text = text_;
  const std::size_t before = at == 0 ? std::string_view::npos : text.rfind('\n', at - 1);
  const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
  return text.substr(begin, std::min(text.find('\n', begin), text.size()) - begin);
}

}  // namespace kztns::lsp
