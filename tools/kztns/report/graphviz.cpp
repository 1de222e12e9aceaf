#include "report/graphviz.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "io/exit_status.h"
#include "io/output.h"

namespace kztns {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

constexpr char cannot_run[] = "graphviz cannot be run";

// Ends at the child's end, with its status as a shell would tell it.
int wait_for(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// Starts dot from the PATH, without a shell. Returns 0 or an errno value.
int start_dot(std::FILE *input, std::FILE *output, pid_t &child) {
  char name[] = "dot";
  char format[] = "-Tsvg";
  char *arguments[] = {name, format, nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, fileno(input), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, fileno(output), STDOUT_FILENO);
  const int error = posix_spawnp(&child, name, &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  return error;
}

int tell_start_error(int error) {
  if (error == ENOENT)
    complain("graphviz is not installed", "the dot command is not found");
  else
    complain(cannot_run, std::strerror(error));
  return exit_unavailable;
}

int print_all_of(std::FILE *file) {
  std::rewind(file);
  char buffer[16384];
  while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, file))
    std::fwrite(buffer, 1, count, stdout);
  return finish_output();
}

}  // namespace

// Between two files neither side waits for the other, whatever the graph's size.
int print_svg(const std::string &graph) {
  // Writing nothing tells whether anything can be written: no picture is drawn in vain.
  if (write(STDOUT_FILENO, "", 0) < 0) {
    complain("standard output", std::strerror(errno));
    return exit_output;
  }
  const File input(std::tmpfile(), std::fclose);
  const File output(std::tmpfile(), std::fclose);
  if (input == nullptr || output == nullptr ||
      std::fwrite(graph.data(), 1, graph.size(), input.get()) != graph.size() ||
      std::fflush(input.get()) != 0) {
    complain(cannot_run, std::string("temporary file: ") + std::strerror(errno));
    return exit_unavailable;
  }
  std::rewind(input.get());
  pid_t child = 0;
  const int error = start_dot(input.get(), output.get(), child);
  if (error != 0) return tell_start_error(error);
  if (const int status = wait_for(child); status != 0) {
    complain("graphviz failed", "the dot command ended with status " + std::to_string(status));
    return exit_unavailable;
  }
  return print_all_of(output.get());
}

}  // namespace kztns
