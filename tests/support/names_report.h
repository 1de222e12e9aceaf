// What check says of a text, and an entry of which it says nothing.
#pragma once

#include <string>

#include "check/check_file.h"
#include "fix_kinds.h"

namespace support {

inline kztns::CheckReport report_of(const std::string &content) {
  const kztns::NamesText text(content);
  kztns::CheckRequest request;
  request.file = "names.ora";
  request.with_entries = true;
  kztns::CheckReport report = kztns::check_file(text, request);
  expect_allowed_fixes(report);
  return report;
}

inline std::string good_entry(const std::string &name) {
  return name + " = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))\n";
}

}  // namespace support
