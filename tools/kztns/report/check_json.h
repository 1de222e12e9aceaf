// A report as JSON; docs/check.schema.json describes it.
#pragma once

#include <string>

#include "rules/check_report.h"

namespace kztns {

std::string render_json(const CheckReport &report);

}  // namespace kztns
