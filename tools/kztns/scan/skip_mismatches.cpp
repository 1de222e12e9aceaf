#include "scan/skip_mismatches.h"

#include "scan/item_text.h"
#include "scan/reserved_names.h"

namespace kztns {

std::optional<Offset> end_if_led_astray(std::string_view text, Offset body, Offset limit) {
  const std::optional<Offset> end = end_of_first_block(text.substr(0, limit), body);
  if (!end || counted_end(text, body, *end) == *end) return std::nullopt;
  return end;
}

std::vector<SkipMismatch> mismatches_of_refused(const FileScan &scan, std::size_t most) {
  const std::string &text = scan.text().text();
  std::vector<SkipMismatch> mismatches;
  for (const Entry &entry : scan.entries()) {
    if (mismatches.size() >= most) break;
    const bool noted = !mismatches.empty() && mismatches.back().body == entry.body;
    if (entry.built || noted || ends_lookups(scan.name(entry))) continue;
    const auto end = end_if_led_astray(text, entry.body, scan.next_entry(entry.body));
    if (!end) continue;
    // What is not reached is counted no further than it goes: that is enough to know.
    const Offset limit = entry.reached ? scan.text().size() : *end;
    const Offset counted = counted_end(text, entry.body, limit);
    mismatches.push_back({entry.body, *end, std::min(counted, scan.text().size()), entry.reached});
  }
  return mismatches;
}

}  // namespace kztns
