// Lays a names file out anew. Blanks alone are changed, and the library is the judge: every
// entry keeps its verdict and its tree.
#pragma once

#include <optional>
#include <vector>

#include "format/layout.h"
#include "text/edited_text.h"
#include "text/names_text.h"

namespace kztns {

enum class KeptBecause : unsigned char {
  refused,       // by the library
  unclear,       // its text is not that of one entry
  ignores,       // a comment is about findings of its line
  would_differ,  // with another layout lookups would not find the same
};

// An entry that keeps its text.
struct KeptEntry {
  Offset at;
  KeptBecause reason;
};

struct Formatted {
  std::vector<Edit> edits;      // sorted; none for a text that is as it should be
  std::vector<KeptEntry> kept;  // in the text's order
};

// With a range, only entries that it touches are laid out, and nothing between entries.
Formatted format_file(const NamesText &text, const FormatOptions &options,
                      const std::optional<Span> &range = std::nullopt);

std::string_view name_of(KeptBecause reason);  // "the library refuses it"

}  // namespace kztns
