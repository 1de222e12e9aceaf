#include "grammar.h"

#include <array>

namespace kzoci::tns {
namespace {

constexpr std::size_t blocks = static_cast<std::size_t>(Block::append_strategy) + 1;

using Row = unsigned char;  // index in the grammar, plus 1; 0: none
static_assert(rows_of_grammar < 256);

// The rows by block and key type.
constexpr auto rows = [] {
  std::array<std::array<Row, LB_MAX_KEY_TYPE>, blocks> made{};
  for (std::size_t i = rows_of_grammar; i-- > 0;)
    made[static_cast<std::size_t>(grammar[i].block)][grammar[i].type] = static_cast<Row>(i + 1);
  return made;
}();

}  // namespace

const Key *key_of(Block block, KZCILBKeyType type) {
  if (static_cast<std::size_t>(type) >= LB_MAX_KEY_TYPE) return nullptr;
  const Row row = rows[static_cast<std::size_t>(block)][type];
  return row == 0 ? nullptr : &grammar[row - 1];
}

}  // namespace kzoci::tns
