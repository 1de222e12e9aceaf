#include "rules/rules.h"

namespace kztns {
namespace {

constexpr Severity error = Severity::error;
constexpr Severity warning = Severity::warning;
constexpr Severity note = Severity::note;

constexpr RuleRow rows[] = {
#define RULE(rule, id, severity, text, remedy) {id, severity, text, remedy},
#include "rules/rules.def"
};

}  // namespace

const RuleRow &row_of(Rule rule) { return rows[static_cast<std::size_t>(rule)]; }

std::string_view name_of(Severity severity) {
  switch (severity) {
    case Severity::error:
      return "error";
    case Severity::warning:
      return "warning";
    case Severity::note:
      return "note";
  }
  return "";
}

}  // namespace kztns
