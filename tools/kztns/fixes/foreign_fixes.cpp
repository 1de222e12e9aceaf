#include "fixes/foreign_fixes.h"

#include <algorithm>

#include "text/spelling.h"

namespace kztns {
namespace {

// In the names of keys about encryption and proxies.
constexpr std::string_view refused_parts[] = {"SSL",  "TLS",   "ENCRYPT", "WALLET",
                                              "CERT", "PROXY", "TUNNEL"};

// Whether a part of a word, which "_" divides, begins so.
bool has_part(std::string_view word, std::string_view begin) {
  for (std::size_t at = 0; at < word.size(); at = std::min(word.find('_', at), word.size()) + 1)
    if (equal_but_for_case(word.substr(at, begin.size()), begin)) return true;
  return false;
}

std::string action_of(const ForeignKey &key) {
  switch (key.treatment) {
    case ForeignTreatment::drop:
    case ForeignTreatment::lose:
      return "remove the item: ";
    case ForeignTreatment::drop_address:
      return "remove the address if there is another: ";
    case ForeignTreatment::unwrap:
      return "remove " + std::string(key.word) + " and keep the descriptions in it: ";
    case ForeignTreatment::drop_off:
      return "remove the item if it is off: ";
    case ForeignTreatment::refuse:
      return "";
    default:
      return "write " + std::string(key.target) + ": ";
  }
}

}  // namespace

bool is_dropped(std::string_view word) {
  const ForeignKey *const key = foreign_key(word);
  return key != nullptr && key->treatment == ForeignTreatment::drop;
}

bool is_refused(std::string_view word) {
  if (const ForeignKey *const key = foreign_key(word))
    return key->treatment == ForeignTreatment::refuse;
  return std::any_of(std::begin(refused_parts), std::end(refused_parts),
                     [&](std::string_view part) { return has_part(word, part); });
}

std::string remedy_of(const ForeignKey &key, std::string_view why) {
  return action_of(key) + std::string(why) +
         (key.shared ? " (other readers of this file need it)" : "");
}

std::string fix_of(const ForeignKey &key) {
  std::string target = "`";
  target += key.target;
  target += '`';
  switch (key.treatment) {
    case ForeignTreatment::drop:
      return "removed (safe)";
    case ForeignTreatment::lose:
      return "removed (unsafe)";
    case ForeignTreatment::rename:
      return target + " (safe)";
    case ForeignTreatment::rename_unsafe:
      return target + " (unsafe)";
    case ForeignTreatment::rename_switch:
      return target + ", `ON` or `OFF` (unsafe)";
    case ForeignTreatment::drop_address:
      return "its address removed (unsafe)";
    case ForeignTreatment::unwrap:
      return "its blocks kept";
    case ForeignTreatment::drop_off:
      return "removed where it is off (safe)";
    default:
      return "none";
  }
}

}  // namespace kztns
