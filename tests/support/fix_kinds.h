// Whether the fixes of a report are of the kinds that the rows of their rules name.
#pragma once

#include <gtest/gtest.h>

#include "check/check_report.h"

namespace support {

inline bool allows(kztns::FixKinds kinds, kztns::Applicability applicability) {
  if (applicability == kztns::Applicability::none || kinds == kztns::FixKinds::both) return true;
  return kinds == (applicability == kztns::Applicability::safe ? kztns::FixKinds::safe
                                                               : kztns::FixKinds::unsafe);
}

inline void expect_allowed_fixes(const kztns::CheckReport &report) {
  for (const kztns::Finding &finding : report.findings)
    EXPECT_TRUE(allows(row_of(finding.rule).fixes, finding.fix.applicability))
        << row_of(finding.rule).id << ": " << name_of(finding.fix.applicability);
}

}  // namespace support
