// What mends the fault that a finding is about.
#pragma once

#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

#include "text/edited_text.h"

namespace kztns {

// How far the result of a fix can be trusted.
enum class Applicability {
  none,   // there is no fix
  safe,   // it means here what the author wrote, and nothing that is used here is lost
  unsafe  // something is guessed or given up
};

// The edits that mend it, sorted, in the text that was checked.
struct Fix {
  Applicability applicability = Applicability::none;
  std::vector<Edit> edits = {};
  bool splits = false;  // whether it makes further entries of an entry
  bool first = false;   // whether other findings may come of what it mends

  // Translates the edits to places of the original text; no fix where one has no place there.
  template <class Text>
  void to_origin(const Text &text) {
    std::vector<Edit> before;
    for (const Edit &edit : std::exchange(edits, {})) {
      std::vector<Edit> of_it = text.to_origin(edit);
      if (of_it.empty()) applicability = Applicability::none;
      before.insert(before.end(), std::make_move_iterator(of_it.begin()),
                    std::make_move_iterator(of_it.end()));
    }
    if (*this) edits = std::move(before);
  }

  explicit operator bool() const { return applicability != Applicability::none; }
};

inline Fix safe_fix(std::vector<Edit> edits) { return {Applicability::safe, std::move(edits)}; }
inline Fix unsafe_fix(std::vector<Edit> edits) { return {Applicability::unsafe, std::move(edits)}; }

std::string_view name_of(Applicability applicability);  // "safe"

}  // namespace kztns
