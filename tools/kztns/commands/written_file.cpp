#include "commands/written_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "io/names_file.h"
#include "io/output.h"
#include "io/replace_file.h"
#include "text/escape.h"

namespace kztns {

bool cannot_be_replaced(const std::optional<std::string> &file) {
  const std::optional<FileChoice> chosen = choose_file(file);
  if (file == standard_input) {
    complain("standard input", "is no file that --in-place could replace");
    return true;
  }
  struct stat status = {};
  if (!chosen || stat(chosen->path.c_str(), &status) != 0 || S_ISREG(status.st_mode)) return false;
  complain(quoted(visible(chosen->path)), "is not a regular file: --in-place cannot replace it");
  return true;
}

int print_text(const std::string &text) {
  return print_output(isatty(STDOUT_FILENO) != 0 ? visible_lines(text) : text);
}

std::optional<std::string> replace_read_file(const std::string &path, const std::string &read,
                                             const std::string &result, std::uint64_t max_size) {
  ReadFault fault;
  const std::optional<std::string> now = read_file(path, max_size, fault);
  if (!now) return fault.text;
  if (*now != read) return "has changed since it was read";
  return replace_file(path, result, Backup::tilde);
}

}  // namespace kztns
