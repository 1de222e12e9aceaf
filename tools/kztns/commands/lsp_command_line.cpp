#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <new>
#include <string_view>

#include "commands/command_line.h"
#include "io/exit_status.h"
#include "lsp/serve.h"
#include "text/uri.h"

namespace kztns {
namespace {

// What the documents say of the rules, as it is installed beside the command; empty for
// a command that is not installed.
std::string installed_documents() {
  std::array<char, 4096> self = {};
  const ssize_t length = readlink("/proc/self/exe", self.data(), self.size() - 1);
  if (length <= 0) return {};
  const std::string program(self.data(), static_cast<std::size_t>(length));
  const std::string path =
      program.substr(0, program.rfind('/')) + "/../share/doc/kzoci/diagnostics.md";
  char *const resolved = realpath(path.c_str(), nullptr);
  if (resolved == nullptr) return {};
  const std::string uri = uri_of(resolved);
  std::free(resolved);
  return uri;
}

// In whichever thread: no one could catch it in all of them, and the texts are the editor's.
[[noreturn]] void end_without_memory() {
  constexpr std::string_view message = "kztns: language server: not enough memory\n";
  [[maybe_unused]] const ssize_t count = write(STDERR_FILENO, message.data(), message.size());
  _exit(exit_no_memory);
}

}  // namespace

void add_lsp(CLI::App &app, Arguments &arguments) {
  CLI::App *const lsp = app.add_subcommand(
      "lsp", "Serve an editor: the Language Server Protocol on standard input and output");
  lsp->set_version_flag("--version", version);
  lsp->footer(
      "Exit status: 0 the client said shutdown before exit, 1 it did not, 2 standard input is no\n"
      "stream of messages, 64 wrong usage, 71 not enough memory, 74 standard output cannot be\n"
      "written.");
  lsp->add_flag("--stdio", arguments.stdio, "Changes nothing: editors that ask for it get it");
}

int run_lsp() {
  // A client that is gone is an error of the write, not the end of the process.
  std::signal(SIGPIPE, SIG_IGN);
  std::set_new_handler(end_without_memory);
  return lsp::serve(STDIN_FILENO, STDOUT_FILENO, installed_documents());
}

}  // namespace kztns
