#include "text/escape.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>

namespace kztns {
namespace {

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

// The code point of a character of at most three bytes; that of a longer one is
// beyond all ranges here.
std::uint32_t code_point(std::string_view character) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(character[i]); };
  switch (character.size()) {
    case 1:
      return byte(0);
    case 2:
      return (byte(0) & 0x1Fu) << 6 | (byte(1) & 0x3Fu);
    case 3:
      return (byte(0) & 0x0Fu) << 12 | (byte(1) & 0x3Fu) << 6 | (byte(2) & 0x3Fu);
    default:
      return UINT32_MAX;
  }
}

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};

constexpr Range unseen[] = {
    {0x0000, 0x001F},  // control characters
    {0x007F, 0x00A0},  // delete, the second half of the controls, the no-break space
    {0x061C, 0x061C},  // Arabic letter mark
    {0x200B, 0x200F},  // zero-width spaces, left-to-right and right-to-left mark
    {0x2028, 0x202F},  // line and paragraph separator, embeddings, overrides
    {0x2060, 0x206F},  // word joiner, isolates
    {0xFEFF, 0xFEFF},  // byte order mark
    {0xFFF9, 0xFFFB},  // annotation marks
    {0xFFFE, 0xFFFF},  // no characters, and none that XML may hold
};

bool is_unseen(std::string_view character) {
  const std::uint32_t code = code_point(character);
  return std::any_of(std::begin(unseen), std::end(unseen),
                     [&](const Range &range) { return code >= range.first && code <= range.last; });
}

bool is_hex_digit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

bool is_escape(std::string_view text) {
  return text.size() >= 4 && text[0] == '\\' && text[1] == 'x' && is_hex_digit(text[2]) &&
         is_hex_digit(text[3]);
}

void append_escaped(std::string &to, std::string_view bytes) {
  for (const char byte : bytes) {
    char escaped[8];
    std::snprintf(escaped, sizeof escaped, "\\x%02x", static_cast<unsigned char>(byte));
    to += escaped;
  }
}

std::string escaped(std::string_view text, bool unseen_too) {
  std::string shown;
  while (!text.empty()) {
    const std::size_t length = character_length(text);
    const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
    if (length == 0 || is_escape(text) || (unseen_too && is_unseen(character)))
      append_escaped(shown, character);
    else
      shown += character;
    text.remove_prefix(character.size());
  }
  return shown;
}

}  // namespace

std::string visible(std::string_view text) { return escaped(text, true); }

std::string excerpt(std::string_view text) {
  constexpr std::size_t most = 40;
  if (text.size() <= most) return visible(text);
  // Not in the middle of a character.
  std::size_t length = most;
  while (length > most - 3 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
  return visible(text.substr(0, length)) + "...";
}

// Appended to piece by piece: g++ 12 warns at -O3 of text put before a temporary.
std::string quoted(std::string_view text) {
  std::string result = "\"";
  result += text;
  result += '"';
  return result;
}

std::string valid_utf8(std::string_view text) { return escaped(text, false); }

std::string visible_json(std::string_view json) {
  std::string shown;
  while (!json.empty()) {
    const std::string_view character =
        json.substr(0, std::max<std::size_t>(character_length(json), 1));
    if (character != "\n" && is_unseen(character)) {
      char unicode[8];
      std::snprintf(unicode, sizeof unicode, "\\u%04x", code_point(character) & 0xFFFFu);
      shown += unicode;
    } else {
      shown += character;
    }
    json.remove_prefix(character.size());
  }
  return shown;
}

}  // namespace kztns
