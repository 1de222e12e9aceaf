// What tests call of POSIX besides the C library, for Windows too.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#if defined(_WIN32)

#include <io.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
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

// As std::tmpfile: there two processes may take the same name, of which one fails.
inline std::FILE *temporary_file() {
  constexpr int most_tries = 100;
  std::FILE *file = std::tmpfile();
  for (int i = 1; i < most_tries && file == nullptr; ++i) file = std::tmpfile();
  return file;
}

}  // namespace support
