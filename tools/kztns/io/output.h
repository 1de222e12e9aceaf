// The command's two streams.
#pragma once

#include <string>
#include <string_view>

namespace kztns {

// One line on standard error.
void complain(const std::string &about, const std::string &what);

// Makes sure that standard output took everything; returns an ExitStatus.
int finish_output();

// Writes all of a text to standard output, as it is; returns an ExitStatus.
int print_output(const std::string &text);

// A value from a file as standard output takes it: as it is for a program, escaped
// for a terminal.
std::string for_output(std::string_view value);

// Lines as a terminal takes them: line feeds and tabs stay.
std::string visible_lines(std::string_view text);

}  // namespace kztns
