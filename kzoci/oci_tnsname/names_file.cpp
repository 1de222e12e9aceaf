#include "names_file.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace kzoci::tns {
namespace {

// The name has zeros only. A directory that leaves no room for the suffix is cut like
// any other name; the suffix is cut to the room that is left.
void make_file_name(char *name, const char *value, const char *suffix) {
  std::strncpy(name, value, max_file_name);
  const std::size_t prefix_len = std::min(std::strlen(value), max_file_name);
  std::strncpy(name + prefix_len, suffix, max_file_name - prefix_len);
}

}  // namespace

NamesFile choose_names_file() {
  NamesFile file = {};
  for (const NamesFileSource &source : names_file_sources) {
    file.value = std::getenv(source.variable);
    if (file.value == nullptr) continue;
    file.source = &source;
    make_file_name(file.name, file.value, source.suffix);
    break;
  }
  return file;
}

}  // namespace kzoci::tns
