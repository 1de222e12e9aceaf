// The documents of the names file against the grammar: every key has its line, under its
// block, with the values that it takes and its default; and there is no other.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "kzoci/oci_tnsname/grammar.h"

namespace {

namespace tns = kzoci::tns;

using Place = std::pair<std::string, std::string>;  // block and key
using Lines = std::map<Place, std::string>;         // what a document says of it

std::vector<std::string> lines_of(const std::string &path) {
  std::ifstream file(KZOCI_SOURCE_DIR "/docs/" + path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

// The block of a row, as the documents call it: by its key, but for the outermost two.
std::string block_name(tns::Block block) {
  if (block == tns::Block::entry) return "entry";
  if (block == tns::Block::system_variables) return "reserved entry";
  for (const tns::Key &row : tns::grammar)
    if (row.value.kind == tns::ValueKind::block && row.value.opens == block) return row.word;
  return "?";
}

// The word of a row's default; empty where it is none of its words.
std::string default_word(const tns::Value &value) {
  for (const tns::Word &word : value.words->words)
    if (word.value == value.by_default) return word.text;
  return "";
}

// A key takes a text of as many characters as its field and a token have room for.
std::string longest_text(const tns::Value &value) {
  return std::to_string(std::min(value.limit, tns::max_text));
}

bool is_kept(const tns::Key &row) {
  return row.name != nullptr || row.type == LB_RETRY_TIMES || row.type == LB_SID;
}

void expect_same(const Lines &expected, const Lines &actual) {
  for (const auto &[place, line] : expected) {
    const auto found = actual.find(place);
    EXPECT_TRUE(found != actual.end()) << place.first << '/' << place.second << ": no line";
    if (found != actual.end()) {
      EXPECT_EQ(found->second, line) << place.first << '/' << place.second;
    }
  }
  for (const auto &[place, line] : actual)
    EXPECT_EQ(expected.count(place), 1u) << place.first << '/' << place.second << ": no such key";
}

// ---------------------------------------------------------------------- the man page

// ".It Ic KEY = " and this.
std::string in_man_page(const tns::Key &row) {
  const tns::Value &value = row.value;
  switch (value.kind) {
    case tns::ValueKind::block:
      return "Ar block";
    case tns::ValueKind::integer:
      if (!is_kept(row)) return "Ar integer No (not kept)";
      return "Ar integer No (default " + std::to_string(value.by_default) + ")";
    case tns::ValueKind::text:
      return "Ar text No (at most " + longest_text(value) + " characters)";
    default:
      break;
  }
  std::string line = "Cm";
  for (const tns::Word &word : value.words->words)
    line += (line == "Cm" ? " " : " | ") + std::string(word.text);
  const std::string by_default = default_word(value);
  return line + (by_default.empty() ? " No (no default)" : " No (default " + by_default + ")");
}

Lines man_page() {
  const std::string heading = ".Ss ";
  const std::string item = ".It Ic ";
  Lines lines;
  std::string block;
  bool is_of_keys = false;
  for (const std::string &line : lines_of("man/kzoci_tnsnames.5.in")) {
    if (line.starts_with(".Sh ")) is_of_keys = line == ".Sh KEYS";
    if (!is_of_keys) continue;
    if (line.starts_with(heading)) block = line.substr(heading.size());
    if (block == "Entry") block = "entry";
    if (block == "Reserved entry") block = "reserved entry";
    const std::size_t equals = line.find(" = ");
    if (line.starts_with(item) && equals != std::string::npos)
      lines[{block, line.substr(item.size(), equals - item.size())}] = line.substr(equals + 3);
  }
  return lines;
}

TEST(KeyDocuments, ManPageHasEachWithItsValues) {
  Lines expected;
  for (const tns::Key &row : tns::grammar)
    expected[{block_name(row.block), row.word}] = in_man_page(row);
  expect_same(expected, man_page());
}

// --------------------------------------------------------------------- names-file.md

// The values and the default, as the table has them.
std::string in_table(const tns::Key &row) {
  const tns::Value &value = row.value;
  switch (value.kind) {
    case tns::ValueKind::block:
      return "block: ";
    case tns::ValueKind::integer:
      return "integer: " + (is_kept(row) ? std::to_string(value.by_default) : "");
    case tns::ValueKind::text:
      return "text, " + longest_text(value) + ": empty";
    default:
      break;
  }
  std::string cell;
  for (const tns::Word &word : value.words->words)
    cell += (cell.empty() ? "`" : ", `") + std::string(word.text) + '`';
  const std::string by_default = default_word(value);
  return cell + ": " + (by_default.empty() ? "put back at once" : '`' + by_default + '`');
}

std::vector<std::string> cells_of(const std::string &row) {
  std::vector<std::string> cells;
  for (std::size_t at = row.find('|'); at != std::string::npos;) {
    const std::size_t end = row.find('|', at + 1);
    if (end == std::string::npos) break;
    std::string cell = row.substr(at + 1, end - at - 1);
    cell.erase(0, cell.find_first_not_of(' '));
    cell.erase(cell.find_last_not_of(' ') + 1);
    cells.push_back(cell);
    at = end;
  }
  return cells;
}

// The texts between back-quotes.
std::vector<std::string> quoted_in(const std::string &cell) {
  std::vector<std::string> quoted;
  for (std::size_t at = cell.find('`'); at != std::string::npos;) {
    const std::size_t end = cell.find('`', at + 1);
    quoted.push_back(cell.substr(at + 1, end - at - 1));
    at = cell.find('`', end + 1);
  }
  return quoted;
}

// Without what a table says of a block in passing.
std::string plain_value(const std::string &cell) {
  return cell.starts_with("block") ? "block" : cell;
}

Lines table() {
  Lines lines;
  std::string block;
  for (const std::string &line : lines_of("names-file.md")) {
    const std::vector<std::string> cells = cells_of(line);
    if (cells.size() != 5) continue;
    if (!cells[0].empty()) block = cells[0].front() == '`' ? quoted_in(cells[0])[0] : cells[0];
    for (const std::string &key : quoted_in(cells[1]))
      lines[{block, key}] = plain_value(cells[2]) + ": " + cells[3];
  }
  return lines;
}

TEST(KeyDocuments, TableHasEachWithItsValues) {
  Lines expected;
  for (const tns::Key &row : tns::grammar)
    expected[{block_name(row.block), row.word}] = in_table(row);
  // A text, of which only one is accepted.
  expected[{"ADDRESS", "PROTOCOL"}] = "`TCP`: empty";
  expect_same(expected, table());
}

}  // namespace
