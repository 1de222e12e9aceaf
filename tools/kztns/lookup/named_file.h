// The names file that lookups of this process read.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

#include "io/names_file.h"
#include "io/system.h"
#include "kzoci/oci_tnsname/names_file.h"

namespace kztns {

// That the library cuts the path that the environment gives; empty where it does not.
inline std::string note_of_cut_path(const FileChoice &choice) {
  for (const auto &source : kzoci::tns::names_file_sources) {
    const std::string suffix = source.suffix;
    if (choice.variable != source.variable ||
        choice.value.size() + suffix.size() <= kzoci::tns::max_file_name)
      continue;
    std::string note = "the path in " + choice.variable;
    if (!suffix.empty()) note += ", with \"" + suffix + "\" after it,";
    return note + " is cut to " + std::to_string(kzoci::tns::max_file_name) + " characters";
  }
  return "";
}

// Sets the variable that names the file for the time of its life.
class NamedFile {
 public:
  explicit NamedFile(const std::string &path) {
    if (const char *const value = std::getenv(variable)) before_ = value;
    set_variable(variable, path);
  }
  ~NamedFile() {
    if (before_)
      set_variable(variable, *before_);
    else
      remove_variable(variable);
  }
  NamedFile(const NamedFile &) = delete;
  NamedFile &operator=(const NamedFile &) = delete;

 private:
  // The one that names the file itself.
  static constexpr const char *variable = kzoci::tns::names_file_sources[0].variable;

  std::optional<std::string> before_;
};

}  // namespace kztns
