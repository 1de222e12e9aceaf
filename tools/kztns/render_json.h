// A report as JSON; docs/check.schema.json describes it.
#pragma once

#include <string>

#include "report.h"

namespace kztns {

std::string render_json(const Report &report);

}  // namespace kztns
