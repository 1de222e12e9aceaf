#include "io/names_file.h"

#include <cstdlib>

#include "io/output.h"
#include "text/escape.h"

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

std::optional<std::string> read_names_file(const std::optional<std::string> &file,
                                           std::uint64_t max_size, std::string &path) {
  const std::optional<FileChoice> chosen = choose_file(file);
  if (!chosen) {
    complain("names file", "none of KZCI_TNS_FILE, TNS_ADMIN and ORACLE_HOME is set");
    return std::nullopt;
  }
  path = chosen->path;
  ReadFault fault;
  std::optional<std::string> text = read_file(path, max_size, fault);
  if (!text) complain(quoted(visible(path)), fault.text);
  return text;
}

}  // namespace kztns
