#include "io/output.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "io/exit_status.h"
#include "text/escape.h"

namespace kztns {

void complain(const std::string &about, const std::string &what) {
  std::fprintf(stderr, "kztns: %s: %s\n", about.c_str(), what.c_str());
}

int finish_output() {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return exit_success;
  complain("standard output", std::strerror(errno));
  return exit_output;
}

int print_output(const std::string &text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  return finish_output();
}

std::string for_output(std::string_view value) {
  return isatty(STDOUT_FILENO) != 0 ? visible(value) : std::string(value);
}

std::string visible_lines(std::string_view text) {
  std::string shown;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find_first_of("\n\t", begin), text.size());
    shown += visible(text.substr(begin, end - begin));
    if (end < text.size()) shown += text[end];
    begin = end + 1;
  }
  return shown;
}

}  // namespace kztns
