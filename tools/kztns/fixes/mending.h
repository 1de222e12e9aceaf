// What mends a fault of an entry, as the makers of fixes give it.
#pragma once

#include <string>

#include "rules/fix.h"

namespace kztns {

// A maker that returns an optional gives none where the fault is not one of its own: the next maker
// is asked. A mending without a fix says that the fault is its own and no fix is known: no other
// maker is asked.
struct Mending {
  Fix fix;
  std::string remedy = {};  // empty: what the diagnosis, or else its rule, says to do
};

}  // namespace kztns
