#include "rules/fix.h"

namespace kztns {

std::string_view name_of(Applicability applicability) {
  constexpr std::string_view names[] = {"none", "safe", "unsafe"};
  return names[static_cast<std::size_t>(applicability)];
}

}  // namespace kztns
