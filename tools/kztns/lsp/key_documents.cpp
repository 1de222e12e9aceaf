#include "lsp/key_documents.h"

#include <vector>

#include "text/characters.h"

namespace kztns::lsp {
namespace {

std::string in_code(std::string_view word) { return std::string("`").append(word).append("`"); }

// The block of a row, as the table calls it.
std::string name_of(Block block) {
  if (block == Block::entry) return "entry";
  if (block == Block::system_variables) return "reserved entry";
  return in_code(opening_key(block));
}

// "| a | b |" as "a" and "b".
std::vector<std::string> cells_of(std::string_view line) {
  std::vector<std::string> cells;
  line.remove_prefix(1);
  for (std::size_t end; (end = line.find('|')) != std::string_view::npos;
       line.remove_prefix(end + 1))
    cells.emplace_back(trimmed(line.substr(0, end)));
  return cells;
}

}  // namespace

std::string KeyDocument::text() const {
  return meaning + "\n\nValue: " + value + (by_default.empty() ? "" : "; default: " + by_default);
}

KeyDocument document_of(Block block, std::string_view key) {
  enum Column { in, keys, value, by_default, meaning };
  std::string_view rest = key_table();
  std::string place;
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    const std::vector<std::string> cells = cells_of(rest.substr(0, end));
    rest.remove_prefix(end + 1);
    if (!cells[in].empty()) place = cells[in];
    if (place == name_of(block) && cells[keys].find(in_code(key)) != std::string::npos)
      return {cells[value], cells[by_default], cells[meaning]};
  }
  return {};
}

}  // namespace kztns::lsp
