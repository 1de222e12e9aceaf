// kztns list: the entries of a names file.
#pragma once

#include <bitset>
#include <optional>
#include <string>
#include <vector>

#include "check/check_report.h"
#include "io/read_file.h"

namespace kztns {

enum class ListFormat { columns, tabs, json };

using VerdictSet = std::bitset<verdict_count>;

struct ListOptions {
  std::optional<std::string> file;  // absent: the one that the environment chooses
  std::string stdin_name = {};      // of standard input
  std::vector<std::string> names;   // only entries of these; none: all
  std::uint64_t max_size = default_max_size;
  std::optional<ListFormat> format;          // absent: columns on a terminal, tabs elsewhere
  VerdictSet verdicts = VerdictSet().set();  // only entries with one of these
};

// Returns an ExitStatus.
int list(const ListOptions &options);

struct ListedEntry {
  std::string name;
  std::uint32_t line;
  Verdict verdict;
  std::string link;  // empty for an entry that has none
};

// One entry's line; the widths are those of the columns.
struct ListWidths {
  std::size_t name = 0;
  std::size_t line = 0;
};
std::string list_line(const ListedEntry &entry, ListFormat format, const ListWidths &widths);

}  // namespace kztns
