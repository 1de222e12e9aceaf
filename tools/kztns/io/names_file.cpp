#include "io/names_file.h"

#include <iterator>

#include "io/output.h"
#include "kzoci/oci_tnsname/names_file.h"
#include "text/escape.h"

namespace kztns {
using kzoci::tns::names_file_sources;

std::optional<FileChoice> choose_file(const std::optional<std::string> &given) {
  if (given) return FileChoice{names_file_sources[0].variable, *given, *given};
  const kzoci::tns::NamesFile file = kzoci::tns::choose_names_file();
  if (file.source == nullptr) return std::nullopt;
  return FileChoice{file.source->variable, file.value, file.name};
}

std::string file_variables(const std::string &last_joint) {
  std::string text;
  for (const auto &source : names_file_sources) {
    if (!text.empty())
      text += &source + 1 == std::end(names_file_sources) ? " " + last_joint + " " : ", ";
    text += source.variable;
  }
  return text;
}

std::string no_file_chosen() { return "none of " + file_variables("and") + " is set"; }

std::optional<std::string> read_names_file(const std::optional<std::string> &file,
                                           const std::string &stdin_name, std::uint64_t max_size,
                                           std::string &path) {
  const std::optional<FileChoice> chosen = choose_file(file);
  if (!chosen) {
    complain("names file", no_file_chosen());
    return std::nullopt;
  }
  const bool is_input = file == standard_input;
  path = is_input ? stdin_name : chosen->path;
  ReadFault fault;
  std::optional<std::string> text =
      is_input ? read_standard_input(max_size, fault) : read_file(path, max_size, fault);
  if (!text) complain(quoted(visible(path)), fault.text);
  return text;
}

}  // namespace kztns
