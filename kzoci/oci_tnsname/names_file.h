// Which names file a lookup reads.
#pragma once

#include <cstddef>

#include "messages.h"

namespace kzoci::tns {

// A variable of the environment that names the file, itself or by a folder.
struct NamesFileSource {
  const char *variable;
  Message<const char *> chosen;  // reports its value
  const char *suffix;            // of the file in that folder
};

// The first one that is set decides, even when its value is empty.
#pragma GCC visibility push(hidden)
inline constexpr NamesFileSource names_file_sources[] = {
    {"KZCI_TNS_FILE", message::tns_file_variable, ""},
    {"TNS_ADMIN", message::tns_admin_variable, "/tnsnames.ora"},
    {"ORACLE_HOME", message::oracle_home_variable, "/network/admin/tnsnames.ora"},
};
#pragma GCC visibility pop

// How the file is opened: closed in programs that this one starts and, where the C library
// tells texts from other files, for its bytes as they are.
#if defined(_WIN32)
inline constexpr char open_mode[] = "rbN";
#else
inline constexpr char open_mode[] = "re";
#endif

// Longer names are cut.
constexpr std::size_t max_file_name = 256;

struct NamesFile {
  const NamesFileSource *source;  // null when no variable is set
  char *value;                    // of the variable; the environment's
  char name[max_file_name + 1];   // always terminated
};

NamesFile choose_names_file();

}  // namespace kzoci::tns
