// kztns why: one lookup, step by step.
#pragma once

#include <string>

#include "lookup/lookup.h"

namespace kztns {

enum class WhyFormat { text, json };

// Prints the report; returns the ExitStatus that show would.
int why(const std::string &identifier, WhyFormat format, const LookupOptions &options);

}  // namespace kztns
