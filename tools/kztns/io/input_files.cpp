#include "io/input_files.h"

#include <algorithm>
#include <filesystem>

#include "io/system.h"

namespace kztns {
namespace fs = std::filesystem;

bool is_folder(const std::string &path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

std::vector<std::string> names_files_below(const std::string &folder,
                                           std::optional<std::string> &fault) {
  std::vector<std::string> files;
  std::vector<fs::path> folders = {folder};
  while (!folders.empty()) {
    const fs::path at = folders.back();
    folders.pop_back();
    std::error_code error;
    for (fs::directory_iterator i(at, error), end; !error && i != end; i.increment(error)) {
      std::error_code ignored;
      if (i->symlink_status(ignored).type() == fs::file_type::directory &&
          !is_hidden_link(i->path().string()))
        folders.push_back(i->path());
      else if (i->path().extension() == ".ora" && i->is_regular_file(ignored))
        files.push_back(i->path().generic_string());
    }
    if (error) fault = "cannot be read: " + at.generic_string() + ": " + error.message();
  }
  if (files.empty() && !fault) fault = "has no *.ora file";
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace kztns
