// What mends a fault of an entry, as the makers of fixes give it.
#pragma once

#include <string>
#include <string_view>

#include "rules/fix.h"
#include "text/characters.h"
#include "text/escape.h"

namespace kztns {

// A maker that looks whether the fault is one of its own gives none where it is not, and so leaves
// it to the next maker; a mending without a fix leaves it to nobody.
struct Mending {
  Fix fix;
  std::string remedy = {};  // empty: what the diagnosis, or else its rule, says to do
};

inline std::string remedy_of_removal(std::string_view text) {
  return "remove " + quoted(excerpt(trimmed(text)));
}

}  // namespace kztns
