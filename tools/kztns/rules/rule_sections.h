// What the documents say of each rule. The source is made of docs/diagnostics.md when the
// command is built.
#pragma once

#include <span>
#include <string_view>

namespace kztns {

struct RuleSection {
  std::string_view id;
  std::string_view markdown;  // without its heading
};

std::span<const RuleSection> rule_sections();

}  // namespace kztns
