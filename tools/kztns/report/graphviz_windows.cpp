#include "report/graphviz.h"

#include "io/exit_status.h"
#include "io/output.h"

namespace kztns {

int print_svg(const std::string &) {
  complain("graphviz cannot be run", "not on Windows; try --format dot, and dot -Tsvg");
  return exit_unavailable;
}

}  // namespace kztns
