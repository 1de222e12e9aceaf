// The generated files, and what is done with them: lookups, and the two ways of
// reading a file that lookups are measured against.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "support/measure.h"

namespace bench {

// The sizes of the generated files, in entries, the largest one last.
std::vector<long> file_sizes();
long largest_size();

std::filesystem::path names_file(long entries);
std::filesystem::path service_file(long entries);  // the same facts, for libpq

std::string service_name(long index);
std::string last_service(long entries);
std::string absent_service();

// Looks the name up, checks that it was found, or not, and releases the service.
void look_up(const std::string &name, bool expected);
void look_up_in(const std::filesystem::path &file);

// One lookup in the file, checked for being found or not; its cost divided by units.
Cost lookup_cost(const std::filesystem::path &file, const std::string &name, double units = 1);
Cost absent_cost(const std::filesystem::path &file);

// R: the file opened, read by fread in pieces of 1024 with the stream's own
// buffer, closed.
void read_stream(const std::filesystem::path &path);
Cost read_cost(const std::filesystem::path &file, double units = 1);

// The file read by read(2) in pieces of 64 KiB, parentheses counted.
Cost count_cost(const std::filesystem::path &file);

}  // namespace bench
