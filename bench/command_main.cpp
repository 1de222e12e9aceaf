// What check, list and fix cost on a whole names file, as processes of their own: time
// against R, peak memory against the file's size. The command is what is measured, with its
// own platform, not this program.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/measure.h"
#include "support/names_file.h"

extern char **environ;

namespace bench {

namespace {

// A file takes seconds, and the median of a few is steady.
constexpr int repetitions = 5;

struct Run {
  double nanoseconds = 0;  // of processor time, the system's included
  double peak_bytes = 0;
};

double nanoseconds(const timeval &time) {
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_usec) * 1e3;
}

pid_t start(std::vector<std::string> words) {
  std::vector<char *> arguments;
  for (std::string &word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int output : {STDOUT_FILENO, STDERR_FILENO})
    posix_spawn_file_actions_addopen(&actions, output, "/dev/null", O_WRONLY, 0);
  pid_t process = 0;
  const int error =
      posix_spawn(&process, words.front().c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) fail("cannot run " + words.front());
  return process;
}

Run run_command(const std::string &command, const std::filesystem::path &file) {
  const pid_t process = start({KZOCI_KZTNS, command, file.string()});
  int status = 0;
  rusage used = {};
  if (::wait4(process, &status, 0, &used) != process || !WIFEXITED(status) ||
      WEXITSTATUS(status) != 0)
    fail("kztns " + command + " fails on " + file.string());
  return {nanoseconds(used.ru_utime) + nanoseconds(used.ru_stime),
          static_cast<double>(used.ru_maxrss) * 1024};
}

Target time_target(long entries) { return entries == largest_size() ? Target{150, 60} : Target{}; }

void add_rows_of(const std::string &command, long entries) {
  const auto file = names_file(entries);
  const auto units = static_cast<double>(entries);
  const auto last = std::make_shared<Run>();
  const std::string of = command + " of " + with_commas(entries);
  add_row({.name = of + " / R",
           .unit = "entry",
           .setup =
               [=] {
                 return Costs{
                     [=] { return (*last = run_command(command, file)).nanoseconds / units; },
                     read_cost(file, units)};
               },
           .target = time_target(entries),
           .growth = {"entries of a file, by " + command, units, 1.5},
           .repetitions = repetitions});
  if (entries != largest_size()) return;
  add_row({.name = "peak memory of " + of + " / the file",
           .unit = "bytes",
           .setup =
               [=] {
                 if (last->peak_bytes == 0) *last = run_command(command, file);
                 return Costs{
                     [=] { return last->peak_bytes; },
                     [=] { return static_cast<double>(std::filesystem::file_size(file)); }};
               },
           .target = {2.5, 2},
           .repetitions = repetitions});
}

void add_rows() {
  for (const std::string command : {"check", "list", "fix"})
    for (const long entries : file_sizes())
      if (entries >= 1000) add_rows_of(command, entries);
}

}  // namespace

}  // namespace bench

int main(int argc, char **argv) { return bench::run_rows(argc, argv, bench::add_rows); }
