#include "names_file_choice.h"

#include <cstdlib>

namespace kztns {
namespace {

// Behind this many characters the library cuts paths.
constexpr std::size_t longest_path = 256;

struct Source {
  const char *variable;
  const char *suffix;
};

constexpr Source sources[] = {{"KZCI_TNS_FILE", ""},
                              {"TNS_ADMIN", "/tnsnames.ora"},
                              {"ORACLE_HOME", "/network/admin/tnsnames.ora"}};

}  // namespace

std::optional<FileChoice> choose_file(const std::optional<std::string> &given) {
  if (given) return FileChoice{sources[0].variable, *given, *given};
  for (const Source &source : sources)
    if (const char *const value = std::getenv(source.variable))
      return FileChoice{source.variable, value,
                        (std::string(value) + source.suffix).substr(0, longest_path)};
  return std::nullopt;
}

}  // namespace kztns
