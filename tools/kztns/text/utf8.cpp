#include "text/utf8.h"

namespace kztns {
namespace {

constexpr std::size_t longest_character = 4;

}  // namespace

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
    if (!is_continuation(text[i])) return 0;
  // Overlong forms, surrogates, and what lies beyond the last character.
  if (length == 3 && ((first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) > 0x9F)))
    return 0;
  if (length == 4 && ((first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F)))
    return 0;
  return length;
}

std::uint32_t code_point(std::string_view character) {
  constexpr std::uint32_t first_bits[] = {0x7F, 0x1F, 0x0F, 0x07};
  std::uint32_t code = static_cast<unsigned char>(character[0]) & first_bits[character.size() - 1];
  for (const char c : character.substr(1))
    code = code << 6 | (static_cast<unsigned char>(c) & 0x3Fu);
  return code;
}

bool is_utf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = character_length(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::size_t cut_begin(std::string_view text) {
  std::size_t length = 0;
  while (length < std::min(text.size(), longest_character - 1) && is_continuation(text[length]))
    ++length;
  return length;
}

std::size_t cut_end(std::string_view text) {
  for (std::size_t length = 1; length < longest_character && length <= text.size(); ++length) {
    const std::string_view end = text.substr(text.size() - length);
    if (is_continuation(end[0])) continue;
    const bool is_whole = static_cast<unsigned char>(end[0]) < 0x80 || character_length(end) != 0;
    return is_whole ? 0 : length;
  }
  return 0;
}

}  // namespace kztns
