// The command's two streams.
#pragma once

#include <string>

namespace kztns {

// One line on standard error.
void complain(const std::string &about, const std::string &what);

// Makes sure that standard output took everything; returns an ExitStatus.
int finish_output();

// A text between double quotes.
std::string quoted(std::string_view text);

}  // namespace kztns
