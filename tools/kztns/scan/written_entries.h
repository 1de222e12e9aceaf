// Reading a names file as its author may have meant it: only to name what lookups
// do not reach, and to explain. Verdicts come from the library alone.
#pragma once

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "text/names_text.h"

namespace kztns {

// Of a longer list not every name is worth knowing.
constexpr std::size_t most_names_of_list = 256;

// A name before "=" and "(": at the beginning of a line, indented, or after a ")".
struct WrittenEntry {
  Offset name_begin;
  Offset name_end;
  Offset body;   // after the "="
  bool in_list;  // one of several names
};

// Calls visit for the entries of the text, in their order. Quotes and
// comments are observed; where parentheses or quotes do not balance, reading
// begins anew at a line whose first column begins "NAME = (", or which begins so
// further in with a block's key after the "(". Goes forward only.
void for_each_written_entry(std::string_view text,
                            const std::function<void(const WrittenEntry &)> &visit);

// The lines that begin what only other readers know as an entry: "NAME = host:port/service", a
// descriptor in quotes, and IFILE lines.
std::vector<Offset> foreign_entries(std::string_view text);

}  // namespace kztns
