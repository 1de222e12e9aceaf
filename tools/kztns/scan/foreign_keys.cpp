#include "scan/foreign_keys.h"

#include "text/spelling.h"

namespace kztns {
namespace {

namespace home {

constexpr std::optional<Block> any = std::nullopt;
constexpr std::optional<Block> entry = Block::entry;
constexpr std::optional<Block> description = Block::description;
constexpr std::optional<Block> address = Block::address;
constexpr std::optional<Block> connect_data = Block::connect_data;

}  // namespace home

constexpr ForeignKey foreign_rows[] = {
#define FOREIGN_KEY(word, block, treatment, ...) \
  {word, home::block, ForeignTreatment::treatment, __VA_ARGS__},
#include "scan/foreign_keys.def"
};

}  // namespace

std::span<const ForeignKey> foreign_keys() { return foreign_rows; }

const ForeignKey *foreign_key(std::string_view word) {
  for (const ForeignKey &key : foreign_rows)
    if (equal_but_for_case(word, key.word)) return &key;
  return nullptr;
}

}  // namespace kztns
