// Finds what is wrong with the parentheses of an entry: the fewest that have to be put in
// or taken out, so that keys stand where they belong and the indentation fits.
#pragma once

#include "scan/entry_tokens.h"

namespace kztns {

enum class ParenthesisEdit : unsigned char { add_close, add_open, remove_close, remove_open };

// One change of an entry's tokens.
struct ParenthesisChange {
  ParenthesisEdit edit;
  std::size_t token;  // what is removed; what stands after that which is added
  // The blocks around the place from the outermost on, without the entry: their "(".
  // The last one is what add_close closes.
  std::vector<std::size_t> blocks;
};

// More changes than this are not tried: such an entry has other faults.
constexpr int most_parenthesis_changes = 6;

// The first change that makes an entry's parentheses balance. Absent when they do, and when
// it would take more changes than that.
std::optional<ParenthesisChange> first_parenthesis_change(std::string_view text,
                                                          const std::vector<EntryToken> &tokens,
                                                          Block root);

}  // namespace kztns
