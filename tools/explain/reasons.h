// What is told of a lookup, as texts.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kzoci/explain.h"
#include "lookup/near_entries.h"
#include "text/names_text.h"

namespace kztns {

struct Reasons {
  kzoci_explain_outcome outcome = KZOCI_EXPLAIN_NOT_FOUND;
  bool is_literal = false;
  std::string message;
  std::string identifier;
  std::optional<std::string> file;
  std::optional<std::string> variable;
  std::optional<Position> place;  // of what text is about
  std::optional<Position> entry;
  std::string rule;
  std::string text;
  std::string remedy;
  std::string note;
  std::vector<NearEntry> near;
};

// Of an identifier in a names file, or in the one that the environment names. Throws
// std::bad_alloc.
Reasons reasons_of(const std::string &identifier, const std::optional<std::string> &path);

}  // namespace kztns
