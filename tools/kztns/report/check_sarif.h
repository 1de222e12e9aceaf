// A report as SARIF 2.1.0, which code review tools read.
#pragma once

#include <string>

#include "rules/check_report.h"

namespace kztns {

std::string render_sarif(const CheckReport &report);

}  // namespace kztns
