// The tokens of one entry, with their layout on the lines.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "scan/item_words.h"
#include "text/offset.h"

namespace kztns {

struct EntryToken {
  char kind;  // "(", ")", "=", 'w' for a word or '\0' for the end
  bool first_of_line = false;
  Offset at;
  Offset end;
  std::uint32_t column;       // tabs go on to a multiple of eight
  std::uint32_t indentation;  // the column of its line's first token
};

// A longer entry is not taken apart: its tokens are weighed against each other.
constexpr std::size_t most_entry_tokens = 50'000;

// The tokens between an entry's "=" and a place, and one for the end. They end before
// a word that follows the whole entry. Absent when there are too many, or when quotes
// are not closed.
std::optional<std::vector<EntryToken>> entry_tokens(std::string_view text, Offset body, Offset end);

}  // namespace kztns
