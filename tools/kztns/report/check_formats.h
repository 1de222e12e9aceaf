// The output formats of check: one row each, and one file with the function that the row
// names.
#pragma once

#include <string>
#include <string_view>

#include "report/check_run.h"

namespace kztns {

// FORMAT(name, whether it lists the entries, whether it shows edits): printed by render_name.
#define KZTNS_CHECK_FORMATS(FORMAT) \
  FORMAT(text, false, false)        \
  FORMAT(json, true, true)          \
  FORMAT(sarif, false, true)

// For people; the other formats leave it aside.
struct TextStyle {
  bool color = false;
  bool source = false;  // the source line with a caret under it
};

#define KZTNS_DECLARE_FORMAT(name, ...) \
  std::string render_##name(const CheckRun &run, const TextStyle &style = {});
KZTNS_CHECK_FORMATS(KZTNS_DECLARE_FORMAT)
#undef KZTNS_DECLARE_FORMAT

struct CheckFormat {
  std::string_view name;
  std::string (*render)(const CheckRun &run, const TextStyle &style);
  bool with_entries;
  bool with_edits;
};

#define KZTNS_FORMAT_ROW(name, with_entries, with_edits) \
  {#name, render_##name, with_entries, with_edits},
inline constexpr CheckFormat check_formats[] = {KZTNS_CHECK_FORMATS(KZTNS_FORMAT_ROW)};
#undef KZTNS_FORMAT_ROW

}  // namespace kztns
