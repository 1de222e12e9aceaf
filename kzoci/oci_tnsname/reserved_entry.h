// The reserved entry, which carries the system variables.
#pragma once

#include "kzoci/platform/letter_case.h"
#include "kzoci/platform/types.h"

namespace kzoci::tns {

constexpr char reserved_name[] = "KZCISYSTEMVARIABLES";

// Whether a name is the reserved one. Callers rely on the comparison running
// over the name's own length: any leading part of the word counts, an empty
// name too, in any letter case.
inline bool is_reserved_name(const char *name, ub4 length) {
  return is_same_text(reserved_name, name, length);
}

}  // namespace kzoci::tns
