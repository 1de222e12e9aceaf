#include "names_text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>

namespace kztns {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

// Line feeds from one place to another move the line's start.
void count_lines(std::string_view text, std::size_t from, std::size_t to, std::uint32_t &line,
                 Offset &line_start) {
  for (std::size_t at = from; at < to;) {
    const void *const found = std::memchr(text.data() + at, '\n', to - at);
    if (found == nullptr) return;
    at = static_cast<std::size_t>(static_cast<const char *>(found) - text.data()) + 1;
    line_start = static_cast<Offset>(at);
    ++line;
  }
}

// Bytes of the UTF-8 character that begins here; 0 when none does.
std::size_t character_length(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  const std::size_t length = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
  if (length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byte(i) & 0xC0) != 0x80) return 0;
  // Overlong forms, surrogates, and what lies beyond the last character.
  if (length == 3 && ((first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) > 0x9F)))
    return 0;
  if (length == 4 && ((first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F)))
    return 0;
  return length;
}

// Characters that nobody sees: the second half of the controls, the no-break and
// zero-width spaces, the byte order mark.
bool is_unseen(std::string_view character) {
  if (character.size() == 1) {
    const auto byte = static_cast<unsigned char>(character[0]);
    return byte < 0x20 || byte == 0x7F;
  }
  if (character.size() == 2) return character[0] == '\xC2' && character[1] <= '\xA0';
  return character == "\xEF\xBB\xBF" ||
         (character.starts_with("\xE2\x80") && character[2] >= '\x8B' && character[2] <= '\x8F');
}

void append_escaped(std::string &to, std::string_view bytes) {
  for (const char byte : bytes) {
    char escaped[8];
    std::snprintf(escaped, sizeof escaped, "\\x%02x", static_cast<unsigned char>(byte));
    to += escaped;
  }
}

}  // namespace

std::string to_string(Position position) {
  return std::to_string(position.line) + ":" + std::to_string(position.column);
}

NamesText::NamesText(std::string text) : text_(std::move(text)) {
  marks_.reserve(text_.size() / stride + 1);
  Mark mark = {1, 0};
  for (std::size_t at = 0;; at += stride) {
    marks_.push_back(mark);
    if (at + stride > text_.size()) return;
    count_lines(text_, at, at + stride, mark.line, mark.line_start);
  }
}

Position NamesText::position(Offset at) const {
  const Offset index = std::min<Offset>(at / stride, static_cast<Offset>(marks_.size() - 1));
  Mark mark = marks_[index];
  count_lines(text_, std::size_t{index} * stride, at, mark.line, mark.line_start);
  return {mark.line, at - mark.line_start + 1};
}

std::uint32_t NamesText::character_column(Offset at) const {
  const std::uint32_t column = position(at).column;
  const Offset counted = std::min<Offset>(column - 1, stride);
  const std::string_view before = std::string_view(text_).substr(at - counted, counted);
  return column -
         static_cast<std::uint32_t>(std::count_if(before.begin(), before.end(), [](char c) {
           return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
         }));
}

std::string_view NamesText::line_around(Offset at, std::size_t &column) const {
  constexpr std::size_t most_before = 60;
  constexpr std::size_t most = 120;
  const std::size_t in_line = position(at).column - 1;
  column = std::min(in_line, most_before);
  const std::string_view rest = std::string_view(text_).substr(at - column, most);
  const std::size_t end = rest.substr(column).find_first_of("\r\n");
  return end == std::string_view::npos ? rest : rest.substr(0, column + end);
}

std::optional<std::string> read_file(const std::string &path, std::string &why) {
  errno = 0;
  const File file(std::fopen(path.c_str(), "r"), std::fclose);
  std::string text;
  if (file != nullptr) {
    char buffer[65536];
    std::size_t count = 0;
    // Lengths of texts are ints in the module.
    constexpr std::size_t most = std::numeric_limits<int>::max();
    while ((count = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) {
      if (text.size() + count > most) {
        why = "more than 2147483647 bytes";
        return std::nullopt;
      }
      text.append(buffer, count);
    }
    if (std::ferror(file.get()) == 0) {
      text.shrink_to_fit();
      return text;
    }
  }
  why = std::strerror(errno);
  return std::nullopt;
}

std::string visible(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const std::size_t length = character_length(text);
    const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
    if (length == 0 || is_unseen(character))
      append_escaped(shown, character);
    else
      shown += character;
    text.remove_prefix(character.size());
  }
  return shown;
}

std::string excerpt(std::string_view text) {
  constexpr std::size_t most = 40;
  if (text.size() <= most) return visible(text);
  // Not in the middle of a character.
  std::size_t length = most;
  while (length > most - 3 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
  return visible(text.substr(0, length)) + "...";
}

}  // namespace kztns
