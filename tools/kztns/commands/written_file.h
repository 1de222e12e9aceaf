// What the commands that change a names file write.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kztns {

// Whether the file, or the one that the environment chooses, is there and cannot be replaced:
// it is a pipe, for example. If so, says so.
bool cannot_be_replaced(const std::optional<std::string> &file);

// Prints a whole text, or a difference; returns an ExitStatus.
int print_text(const std::string &text);

// Gives a file that was read a new content, unless it has changed since, and keeps the old
// one as FILE~. Returns what failed, as a clause about the file; absent for nothing.
std::optional<std::string> replace_read_file(const std::string &path, const std::string &read,
                                             const std::string &result, std::uint64_t max_size);

}  // namespace kztns
