#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "io/descriptor.h"
#include "io/replace_file.h"
#include "io/system.h"

namespace kztns {
namespace {

std::string because(const char *what, const std::string &reason) {
  return std::string(what) + ": " + reason;
}
std::string because(const char *what) { return because(what, std::strerror(errno)); }

// The reason of the system's own call.
std::string system_reason() {
  switch (const DWORD error = GetLastError()) {
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
      return std::strerror(EACCES);
    default:
      return "error " + std::to_string(error);
  }
}

bool is_there(const std::string &path) { return _access(path.c_str(), 0) == 0; }
bool is_read_only(const std::string &path) { return _access(path.c_str(), 2) != 0; }

// A file beside another one, removed unless it has taken that one's name.
class FileBeside {
 public:
  explicit FileBeside(const std::string &path)
      : path_(path.substr(0, last_part(path)) + ".kztns-" + std::to_string(_getpid())) {}
  ~FileBeside() { _unlink(path_.c_str()); }
  FileBeside(const FileBeside &) = delete;
  FileBeside &operator=(const FileBeside &) = delete;

  const std::string &path() const { return path_; }

  std::optional<std::string> write(std::string_view text) const {
    const Descriptor file(_open(path_.c_str(),
                                _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY | _O_NOINHERIT,
                                _S_IREAD | _S_IWRITE));
    if (file.number() < 0)
      return errno == ENOENT ? because("its folder is not there")
                             : because("no file can be made beside it");
    if (!file.write_all(text) || _commit(file.number()) != 0) return because("cannot be written");
    return std::nullopt;
  }

 private:
  std::string path_;
};

}  // namespace

// The system's own call keeps rights and attributes of the file that is replaced.
std::optional<std::string> replace_file(const std::string &path, std::string_view text,
                                        Backup backup) {
  const bool exists = is_there(path);
  if (exists && is_read_only(path)) return because("cannot be written");
  const FileBeside beside(path);
  if (auto fault = beside.write(text)) return fault;
  const std::string kept = backup == Backup::tilde ? path + "~" : "";
  const bool replaced =
      exists ? ReplaceFileA(path.c_str(), beside.path().c_str(),
                            kept.empty() ? nullptr : kept.c_str(), 0, nullptr, nullptr) != 0
             : MoveFileExA(beside.path().c_str(), path.c_str(), MOVEFILE_WRITE_THROUGH) != 0;
  if (!replaced) return because("cannot be replaced", system_reason());
  return std::nullopt;
}

}  // namespace kztns
