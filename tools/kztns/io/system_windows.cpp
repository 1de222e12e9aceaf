#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>

#include "io/system.h"

namespace kztns {

void set_variable(const char *name, const std::string &value) { _putenv_s(name, value.c_str()); }
void remove_variable(const char *name) { _putenv_s(name, ""); }

const char *null_device() { return "NUL"; }

void prepare_streams() {
  for (std::FILE *const stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
}

// There is no signal.
void ignore_broken_pipes() {}

// Older consoles would show them as characters.
bool takes_control_sequences(int) { return false; }

std::string installed_file(const std::string &from_program) {
  char self[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameA(nullptr, self, sizeof self);
  if (length == 0 || length == sizeof self) return {};
  const std::string program(self, length);
  const std::string path = program.substr(0, last_part(program)) + from_program;
  char *const resolved = _fullpath(nullptr, path.c_str(), 0);
  const std::string file = resolved == nullptr ? "" : resolved;
  std::free(resolved);
  return _access(file.c_str(), 0) == 0 ? file : "";
}

// None of its files is waited for.
int open_for_reading(const std::string &path, bool) {
  return _open(path.c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
}

bool is_socket(const struct stat &) { return false; }
// The C library's device does not tell which one it is.
bool is_null_device(const struct stat &) { return false; }

// The C library's numbers of files are all 0.
std::optional<FileId> id_of(const std::string &path) {
  const HANDLE file = CreateFileA(path.c_str(), FILE_READ_ATTRIBUTES,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return std::nullopt;
  BY_HANDLE_FILE_INFORMATION information = {};
  const bool is_known = GetFileInformationByHandle(file, &information) != 0;
  CloseHandle(file);
  if (!is_known) return std::nullopt;
  return FileId(information.dwVolumeSerialNumber,
                std::uint64_t{information.nFileIndexHigh} << 32 | information.nFileIndexLow);
}

bool is_hidden_link(const std::string &folder) {
  return (GetFileAttributesA(folder.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

bool is_from_root(const std::string &path) {
  return path.find_first_of("/\\") == 0 || (path.size() > 1 && path[1] == ':');
}
std::size_t last_part(const std::string &path) { return path.find_last_of("/\\:") + 1; }

}  // namespace kztns
