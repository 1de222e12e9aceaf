#include "text/escape.h"

#include <algorithm>
#include <cstdio>

#include "text/utf8.h"

namespace kztns {
namespace {

constexpr CharacterRange unseen[] = {
    {0x0000, 0x001F},  // control characters
    {0x007F, 0x00A0},  // delete, the second half of the controls, the no-break space
    {0x00AD, 0x00AD},  // soft hyphen
    {0x061C, 0x061C},  // Arabic letter mark
    {0x200B, 0x200F},  // zero-width spaces, left-to-right and right-to-left mark
    {0x2028, 0x202F},  // line and paragraph separator, embeddings, overrides
    {0x2060, 0x206F},  // word joiner, isolates
    {0xFEFF, 0xFEFF},  // byte order mark
    {0xFFF9, 0xFFFB},  // annotation marks
    {0xFFFE, 0xFFFF},  // no characters, and none that XML may hold
};

bool is_unseen(std::string_view character) { return is_in(code_point(character), unseen); }

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

std::string cut_short(std::string_view text) {
  constexpr std::size_t most = 40;
  if (text.size() <= most) return std::string(text);
  // Not in the middle of a character.
  std::size_t length = most;
  while (length > most - 3 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
  return std::string(text.substr(0, length)) + "...";
}

std::string excerpt(std::string_view text) { return visible(cut_short(text)); }

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
