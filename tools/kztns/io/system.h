// What the command asks of the operating system and the C library does not have, in
// system_posix.cpp and in system_windows.cpp.
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace kztns {

void set_variable(const char *name, const std::string &value);
void remove_variable(const char *name);

// The file that holds nothing and takes everything.
const char *null_device();

// To be called first. Puts something in the place of a closed standard stream, so that no file
// that is opened later becomes it: reading standard input and writing to standard output
// still fail. What is read and written is neither translated nor the end of the process.
void prepare_streams();

// A reader that is gone is an error of the write, not the end of the process.
void ignore_broken_pipes();

// Whether a stream is a terminal that takes colours and moves of the cursor.
bool takes_control_sequences(int stream);

// The path of a file of the installed command, given from the folder that the command is in;
// empty where there is none.
std::string installed_file(const std::string &from_program);

// Opens a file for its bytes; -1 with the reason in errno. Opening some files of the system, pipes
// for example, may wait for ever.
int open_for_reading(const std::string &path, bool waits);

// What the state of a file tells.
bool is_socket(const struct stat &status);
bool is_null_device(const struct stat &status);

// Tells files apart, whatever their paths; absent for a file that is not there.
using FileId = std::pair<std::uint64_t, std::uint64_t>;
std::optional<FileId> id_of(const std::string &path);

// Whether a folder is a link to one, although the C++ library takes it for a folder.
bool is_hidden_link(const std::string &folder);

// Whether a path starts at a root, and where the last part of a path begins.
bool is_from_root(const std::string &path);
std::size_t last_part(const std::string &path);

}  // namespace kztns
