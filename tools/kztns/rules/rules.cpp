#include "rules/rules.h"

namespace kztns {
namespace {

using enum Severity;
using enum Concern;
using enum FixKinds;

constexpr RuleRow rows[] = {
#define RULE(rule, ...) {__VA_ARGS__},
#include "rules/rules.def"
};

}  // namespace

const RuleRow &row_of(Rule rule) { return rows[static_cast<std::size_t>(rule)]; }

std::optional<Rule> rule_of(std::string_view id) {
  for (std::size_t i = 0; i < rule_count; ++i)
    if (rows[i].id == id) return static_cast<Rule>(i);
  return std::nullopt;
}

std::vector<std::string_view> rule_ids() {
  std::vector<std::string_view> ids;
  for (const RuleRow &row : rows) ids.push_back(row.id);
  return ids;
}

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
