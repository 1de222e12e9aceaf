#include "scan/verdict.h"

namespace kztns {

std::string_view name_of(Verdict verdict) {
  switch (verdict) {
    case Verdict::ok:
      return "ok";
    case Verdict::refused:
      return "refused";
    case Verdict::unreachable:
      return "unreachable";
    case Verdict::shadowed:
      return "shadowed";
    case Verdict::reserved:
      return "reserved";
  }
  return "";
}

std::string_view meaning_of(Verdict verdict) {
  switch (verdict) {
    case Verdict::ok:
      return "lookups find it";
    case Verdict::refused:
      return "the library cannot build it";
    case Verdict::unreachable:
      return "no lookup comes to it";
    case Verdict::shadowed:
      return "an earlier entry has this name";
    case Verdict::reserved:
      return "the system variables";
  }
  return "";
}

}  // namespace kztns
