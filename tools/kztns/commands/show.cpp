#include "commands/show.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "commands/visible_tree.h"
#include "io/exit_status.h"
#include "io/output.h"
#include "io/system.h"
#include "lookup/lookup_failure.h"
#include "report/graphviz.h"
#include "report/tree_dot.h"
#include "report/tree_json.h"
#include "trace/log_watch.h"

namespace kztns {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

// Whether the display prints the whole of the tree, tried where nothing is shown.
bool can_be_displayed(Tree &tree) {
  [[maybe_unused]] const LogWatch silent(std::nullopt);
  const File nowhere(std::fopen(null_device(), "w"), std::fclose);
  return nowhere != nullptr && KZCITnsServiceDisplay(tree.service(), nowhere.get()) == 0;
}

int show_tree(const std::string &label, std::optional<log_level> shown, Tree &tree) {
  if (!can_be_displayed(tree)) {
    complain(label, "built, but cannot be shown: a description has no address list");
    return exit_malformed;
  }
  // The variable would send the tree elsewhere.
  remove_variable("KZCI_TNS_DISPLAY");
  [[maybe_unused]] const LogWatch watch(shown);
  if (isatty(STDOUT_FILENO) != 0) {
    const std::optional<std::string> text = visible_tree(tree);
    if (text) return print_output(*text);
    complain(label, "cannot be shown: no file descriptor or no memory left");
    return exit_no_memory;
  }
  KZCITnsDisplay(tree.get());
  return finish_output();
}

// Why a service has no link string or nothing to open a session with, of which only the
// former needs an address. Of each kind the first record is read.
std::string missing_part(const KZCITnsService &service, bool address_too) {
  const KZCIDescription *const des = service.description;
  if (service.description_count == 0 || des == nullptr) return "no DESCRIPTION";
  if (address_too && (des->address_list_count == 0 || des->address_list == nullptr))
    return "no ADDRESS in the first DESCRIPTION";
  if (address_too && des->address_list->address_count == 0)
    return "no ADDRESS in the first ADDRESS_LIST";
  return "no CONNECT_DATA in the first DESCRIPTION";
}

int show_dblink(const std::string &label, std::optional<log_level> shown, Tree &tree) {
  char dblink[KZCI_DBLINK_SIZE];
  sb4 length = 0;
  [[maybe_unused]] const LogWatch watch(shown);
  if (KZCITnsServiceDblinkGet(tree.service(), dblink, &length) != 0) {
    complain(label, "built, but has no link string: " + missing_part(*tree.service(), true));
    return exit_malformed;
  }
  std::printf("%s\n", for_output(dblink).c_str());
  return finish_output();
}

void print_line(const char *name, bool present, const std::string &value) {
  if (present)
    std::printf("%s:%s\n", name, for_output(value).c_str());
  else
    std::printf("%s (absent)\n", name);
}

int show_session(const std::string &label, std::optional<log_level> shown, Tree &tree) {
  char extra_info[KZCI_EXTRA_INFO_SIZE];
  char session_variable[KZCI_SESSION_VARIABLE_SIZE];
  sb4 extra_info_len = 0;
  sb4 kz_mode = 0;
  sb4 session_variable_len = 0;
  [[maybe_unused]] const LogWatch watch(shown);
  if (KZCITnsServiceExtraInfoGet(tree.service(), extra_info, &extra_info_len, &kz_mode,
                                 session_variable, &session_variable_len) != 0) {
    complain(label, "built, but has nothing to open a session with: " +
                        missing_part(*tree.service(), false));
    return exit_malformed;
  }
  // The mode is handed out only together with extra information.
  const bool has_extra_info = extra_info_len > 0;
  print_line("extra_info", has_extra_info,
             std::string(extra_info, static_cast<std::size_t>(extra_info_len)));
  print_line("kz_mode", has_extra_info, std::to_string(kz_mode));
  print_line("session_variable", session_variable_len > 0,
             std::string(session_variable, static_cast<std::size_t>(session_variable_len)));
  return finish_output();
}

}  // namespace

int show(const std::string &identifier, ShowWhat what, const LookupOptions &options) {
  Tree tree;
  const Lookup lookup = look_up(identifier, options, tree);
  if (lookup.outcome != Outcome::found) return explain_failure(identifier, lookup);
  const std::string label = label_of(identifier, lookup);
  switch (what) {
    case ShowWhat::tree:
      return show_tree(label, options.shown, tree);
    case ShowWhat::json:
      return print_output(tree_json(*tree.get()));
    case ShowWhat::dot:
      return print_output(tree_dot(*tree.get()));
    case ShowWhat::svg:
      return print_svg(tree_dot(*tree.get()));
    case ShowWhat::dblink:
      return show_dblink(label, options.shown, tree);
    case ShowWhat::session:
      return show_session(label, options.shown, tree);
  }
  return exit_usage;
}

}  // namespace kztns
