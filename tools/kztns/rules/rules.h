// The rules that findings refer to; rules.def is their table.
#pragma once

#include <bitset>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace kztns {

enum class Severity { error, warning, note };

// What a rule is about, by which fixes are applied together.
enum class Concern {
  entry,        // what stands in one entry
  parentheses,  // those of one entry, by which lookups pass over it
  identity,     // what an entry is called, or what belongs to it: the fix may change what it serves
  lookups,      // what else keeps lookups from entries
  comments,     // those that are for check
};

// Which fixes the findings of a rule may have.
enum class FixKinds { none, safe, unsafe, both };

enum class Rule {
#define RULE(rule, ...) rule,
#include "rules/rules.def"
  count  // bound; no rule
};

struct RuleRow {
  std::string_view id;  // as in "[unknown-key]"
  Severity severity;
  Concern concern;
  FixKinds fixes;
  std::string_view text;    // what it is about, in general
  std::string_view remedy;  // what to do
};

constexpr std::size_t rule_count = static_cast<std::size_t>(Rule::count);

using RuleSet = std::bitset<rule_count>;

const RuleRow &row_of(Rule rule);

// The rule of an identifier; absent when there is none.
std::optional<Rule> rule_of(std::string_view id);

// The identifiers of all rules, in their order.
std::vector<std::string_view> rule_ids();

std::string_view name_of(Severity severity);  // "error"

}  // namespace kztns
