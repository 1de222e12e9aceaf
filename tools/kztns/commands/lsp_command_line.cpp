#include <unistd.h>

#include <new>
#include <string>
#include <string_view>

#include "commands/command_line.h"
#include "io/exit_status.h"
#include "io/system.h"
#include "lsp/serve.h"
#include "text/uri.h"

namespace kztns {
namespace {

// What the documents say of the rules, as it is installed beside the command; empty for
// a command that is not installed.
std::string installed_documents() {
  const std::string file = installed_file("../share/doc/kzoci/diagnostics.md");
  return file.empty() ? "" : uri_of(file);
}

// In whichever thread: no one could catch it in all of them, and the texts are the editor's.
[[noreturn]] void end_without_memory() {
  constexpr std::string_view message = "kztns: language server: not enough memory\n";
  [[maybe_unused]] const auto count =
      write(STDERR_FILENO, message.data(), static_cast<unsigned>(message.size()));
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
  ignore_broken_pipes();
  std::set_new_handler(end_without_memory);
  return lsp::serve(STDIN_FILENO, STDOUT_FILENO, installed_documents());
}

}  // namespace kztns
