#include "commands/format.h"

#include <algorithm>
#include <cstdio>

#include "commands/written_file.h"
#include "format/format_file.h"
#include "io/exit_status.h"
#include "io/names_file.h"
#include "io/output.h"
#include "report/unified_diff.h"

namespace kztns {
namespace {

// More are not read by anyone: the file is for other readers.
constexpr std::size_t most_kept_told = 100;

// "FILE:3:1: note: orders: keeps its text: the library refuses it", a line each.
void tell_kept(const std::string &path, const NamesText &text, const std::vector<KeptEntry> &kept) {
  std::string lines;
  const std::size_t told = std::min(kept.size(), most_kept_told);
  for (std::size_t i = 0; i < told; ++i) {
    const Span name = pieces_of(text.text(), kept[i].at, kept[i].at + 1).front().span;
    lines += visible(path) + ":" + text.place(kept[i].at) + ": note: " +
             excerpt(std::string_view(text.text()).substr(name.begin, name.end - name.begin)) +
             ": keeps its text: " + std::string(name_of(kept[i].reason)) + "\n";
  }
  if (told < kept.size())
    lines += visible(path) + ": note: " + std::to_string(kept.size() - told) +
             " more entries keep their text\n";
  std::fputs(lines.c_str(), stderr);
}

int replace(const FormatCommand &command, const std::string &path, const std::string &read,
            const std::string &result) {
  const auto fault = replace_read_file(path, read, result, command.max_size);
  if (!fault) return exit_success;
  complain(quoted(visible(path)), *fault);
  return exit_output;
}

int tell_check(const std::string &path) {
  complain(quoted(visible(path)), "is not laid out as kztns format does it");
  return exit_findings;
}

}  // namespace

int format(const FormatCommand &command) {
  if (command.target == FormatTarget::in_place && cannot_be_replaced(command.file))
    return exit_no_input;
  std::string path;
  std::optional<std::string> read =
      read_names_file(command.file, command.stdin_name, command.max_size, path);
  if (!read) return exit_no_input;
  const NamesText text(std::move(*read));
  const Formatted formatted = format_file(text, command.layout);
  EditedText result(text.text());
  result.apply(formatted.edits);
  tell_kept(path, text, formatted.kept);
  const bool changed = !formatted.edits.empty();
  switch (command.target) {
    case FormatTarget::output:
      return print_text(result.text());
    case FormatTarget::diff:
      return print_text(unified_diff(path, text.text(), result));
    case FormatTarget::check:
      return changed ? tell_check(path) : exit_success;
    default:
      return changed ? replace(command, path, text.text(), result.text()) : exit_success;
  }
}

}  // namespace kztns
