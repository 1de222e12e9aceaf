// What tests call of POSIX besides the C library, for Windows too.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#if defined(_WIN32)

#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

// An empty value removes a variable there.
inline int setenv(const char *name, const char *value, int) { return _putenv_s(name, value); }
inline int unsetenv(const char *name) { return _putenv_s(name, ""); }

// Replaces the last six characters of a folder's name so that it is a new one.
inline char *mkdtemp(char *name) {
  const std::string_view text = name;
  const std::size_t end = text.size() - 6;
  for (int tries = 0; tries < 1'000'000; ++tries) {
    const std::string number =
        std::to_string(1'000'000 + (std::rand() * 32768 + tries) % 1'000'000);
    number.copy(name + end, 6, 1);
    std::error_code error;
    if (std::filesystem::create_directory(name, error)) return name;
    if (error) return nullptr;
  }
  return nullptr;
}

#endif

namespace support {

#if defined(_WIN32)
constexpr bool on_windows = true;
#else
constexpr bool on_windows = false;
#endif

// As std::tmpfile, which there may open a file that another process has just made.
inline std::FILE *temporary_file() {
#if defined(_WIN32)
  constexpr int most_tries = 1000;
  constexpr int flags = _O_CREAT | _O_EXCL | _O_TEMPORARY | _O_RDWR | _O_BINARY;
  const std::string begin =
      (std::filesystem::temp_directory_path() / "kzoci_").string() + std::to_string(getpid()) + "_";
  for (int i = 0; i < most_tries; ++i) {
    const int file = _open((begin + std::to_string(i)).c_str(), flags, _S_IREAD | _S_IWRITE);
    if (file >= 0) return _fdopen(file, "w+b");
  }
  return nullptr;
#else
  return std::tmpfile();
#endif
}

}  // namespace support
