// The edits of the safe fixes alone.
#pragma once

#include <vector>

#include "check/apply_fixes.h"

namespace support {

inline std::vector<kztns::Edit> safe_edits_of(const std::vector<kztns::Finding> &findings) {
  return kztns::edits_of(findings, [&](std::size_t i) {
    return findings[i].fix.applicability == kztns::Applicability::safe;
  });
}

}  // namespace support
