// kztns show: resolve an identifier and print its tree.
#pragma once

#include <optional>
#include <string>

#include "kzoci/platform/log.h"

namespace kztns {

// Returns an ExitStatus. Standard output gets the whole tree or nothing.
int show(const std::string &identifier, std::optional<log_level> shown);

}  // namespace kztns
