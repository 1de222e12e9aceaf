#include "rules/fix.h"

namespace kztns {

std::string_view name_of(Applicability applicability) {
  switch (applicability) {
    case Applicability::none:
      return "none";
    case Applicability::safe:
      return "safe";
    case Applicability::unsafe:
      return "unsafe";
  }
  return "";
}

}  // namespace kztns
