// What docs/names-file.md says of each key. Its table is part of the command.
#pragma once

#include <string>

#include "trace/key_words.h"

namespace kztns::lsp {

// As markdown.
struct KeyDocument {
  std::string value;       // "integer"
  std::string by_default;  // empty for none
  std::string meaning;

  // The meaning, and the value with its default below it, as markdown.
  std::string text() const;
};

// Empty for a key that has no place in the block.
KeyDocument document_of(Block block, std::string_view key);

// The table's lines; made when the command is built.
std::string_view key_table();

}  // namespace kztns::lsp
