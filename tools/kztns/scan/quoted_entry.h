// Entries as other notations quote them.
#pragma once

#include <optional>
#include <string_view>

#include "text/offset.h"

namespace kztns {

// A line that is an entry but for its quotes: "NAME": "(...)", or "NAME = (...)" in quotes.
struct QuotedEntry {
  Span name;
  Span value;  // from "(" to ")"
  Offset end;  // after the quote at the end, and a comma or semicolon
};

// The one whose line begins at a place.
std::optional<QuotedEntry> quoted_entry_at(std::string_view text, Offset at);

}  // namespace kztns
