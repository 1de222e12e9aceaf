// The output formats of check: one row each, and one file with the function that the row
// names.
#pragma once

#include <string>
#include <string_view>

#include "report/check_run.h"

namespace kztns {

// FORMAT(name, what it shows), as fields of CheckFormat: printed by render_name.
#define KZTNS_CHECK_FORMATS(FORMAT)                        \
  FORMAT(text, .with_entries = false, .with_edits = false) \
  FORMAT(json, .with_entries = true, .with_edits = true)   \
  FORMAT(sarif, .with_entries = false, .with_edits = true)

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
  bool with_entries;  // whether it lists the entries
  bool with_edits;    // whether it shows what fixes change
};

#define KZTNS_FORMAT_ROW(id, ...) {.name = #id, .render = render_##id, __VA_ARGS__},
inline constexpr CheckFormat check_formats[] = {KZTNS_CHECK_FORMATS(KZTNS_FORMAT_ROW)};
#undef KZTNS_FORMAT_ROW

}  // namespace kztns
