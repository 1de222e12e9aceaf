// The rules, for people.
#pragma once

#include <string>

#include "rules/rules.h"

namespace kztns {

// All rules: identifier, severity and what each is about, one a line.
std::string rule_list();

// What the documents say of a rule, with its example and what to do.
std::string explanation(Rule rule);

// The same as markdown: the section of the documents.
std::string_view section_of(Rule rule);

}  // namespace kztns
