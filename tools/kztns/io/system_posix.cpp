#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <initializer_list>

#include "io/system.h"

namespace kztns {

void set_variable(const char *name, const std::string &value) { setenv(name, value.c_str(), 1); }
void remove_variable(const char *name) { unsetenv(name); }

const char *null_device() { return "/dev/null"; }

void prepare_streams() {
  // A file that may not grow is an error of its write, not the end of the process.
  std::signal(SIGXFSZ, SIG_IGN);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    // The lowest number that is free is the stream's own. Reading from or writing to
    // a stream that was closed is reported; what cannot be reported is dropped.
    open(null_device(), stream == STDOUT_FILENO ? O_RDONLY : O_WRONLY);
  }
}

void ignore_broken_pipes() { std::signal(SIGPIPE, SIG_IGN); }

bool takes_control_sequences(int stream) { return isatty(stream) != 0; }

std::string installed_file(const std::string &from_program) {
  std::array<char, 4096> self = {};
  const ssize_t length = readlink("/proc/self/exe", self.data(), self.size() - 1);
  if (length <= 0) return {};
  const std::string program(self.data(), static_cast<std::size_t>(length));
  const std::string path = program.substr(0, program.rfind('/')) + "/" + from_program;
  char *const resolved = realpath(path.c_str(), nullptr);
  if (resolved == nullptr) return {};
  const std::string file = resolved;
  std::free(resolved);
  return file;
}

int open_for_reading(const std::string &path, bool waits) {
  return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | (waits ? 0 : O_NONBLOCK));
}

bool is_socket(const struct stat &status) { return S_ISSOCK(status.st_mode); }

bool is_null_device(const struct stat &status) {
  struct stat null = {};
  return S_ISCHR(status.st_mode) && stat(null_device(), &null) == 0 && S_ISCHR(null.st_mode) &&
         status.st_rdev == null.st_rdev;
}

std::optional<FileId> id_of(const std::string &path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return FileId(status.st_dev, status.st_ino);
}

bool is_hidden_link(const std::string &) { return false; }

bool is_from_root(const std::string &path) { return path[0] == '/'; }
std::size_t last_part(const std::string &path) { return path.rfind('/') + 1; }

}  // namespace kztns
