// The blocks of a text as they are written, also where the library refuses them.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "text/offset.h"

namespace kztns::lsp {

// An entry, or a block in it: DESCRIPTION, ADDRESS_LIST, ADDRESS and the like.
struct Outline {
  Span whole;
  Span name;  // of a block, its key
  std::vector<Outline> inner;
};

// Blocks that are deeper are no blocks of a names file.
constexpr std::size_t most_depth = 16;

// The entries of a text, in its order.
std::vector<Outline> outline_of(std::string_view text);

// Lines of comments that follow each other.
std::vector<Span> comment_runs(std::string_view text);

}  // namespace kztns::lsp
