#include "io/read_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "io/descriptor.h"
#include "io/system.h"

namespace kztns {
namespace {

ReadFault fault_of(int error) {
  return {error == ENOENT || error == ENOTDIR,
          std::string("cannot be read: ") + std::strerror(error)};
}

ReadFault too_large(std::uint64_t max_size) {
  return {false, "is larger than " + std::to_string(max_size) + " bytes; --max-size allows more",
          true};
}

// What makes a file one that is not read: it may have no end, or do something when
// it is opened. The null device reads as an empty file, and is given as one.
std::optional<ReadFault> refused_kind(const struct stat &status) {
  if (S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode) || is_null_device(status))
    return std::nullopt;
  const char *const kind = S_ISDIR(status.st_mode)   ? "is a directory"
                           : S_ISCHR(status.st_mode) ? "is a character device"
                           : S_ISBLK(status.st_mode) ? "is a block device"
                           : is_socket(status)       ? "is a socket"
                                                     : "is not a regular file or pipe";
  return ReadFault{false, kind};
}

std::optional<ReadFault> read_to_end(int file, std::uint64_t max_size, const PieceTaker &take) {
  char buffer[65536];
  std::uint64_t taken = 0;
  for (;;) {
    const ssize_t count = read(file, buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return fault_of(errno);
    if (count == 0) return std::nullopt;
    taken += static_cast<std::uint64_t>(count);
    if (taken > max_size) return too_large(max_size);
    if (!take({buffer, static_cast<std::size_t>(count)})) return std::nullopt;
  }
}

// What the pieces are together that are read by a function; absent when it fails.
std::optional<std::string> collect(
    const std::function<std::optional<ReadFault>(const PieceTaker &)> &read, ReadFault &fault) {
  std::string text;
  auto found = read([&](std::string_view piece) {
    text += piece;
    return true;
  });
  if (found) {
    fault = std::move(*found);
    return std::nullopt;
  }
  text.shrink_to_fit();
  return text;
}

}  // namespace

std::optional<ReadFault> read_pieces(const std::string &path, std::uint64_t max_size,
                                     const PieceTaker &take) {
  // The kind first: opening a device may already do something.
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) return fault_of(errno);
  if (auto refused = refused_kind(status)) return refused;
  // Of all these only a pipe is waited for.
  const Descriptor file(open_for_reading(path, S_ISFIFO(status.st_mode)));
  if (file.number() < 0 || fstat(file.number(), &status) != 0) return fault_of(errno);
  if (auto refused = refused_kind(status)) return refused;
  if (S_ISREG(status.st_mode) && static_cast<std::uint64_t>(status.st_size) > max_size)
    return too_large(max_size);
  return read_to_end(file.number(), max_size, take);
}

std::optional<std::string> read_file(const std::string &path, std::uint64_t max_size,
                                     ReadFault &fault) {
  return collect([&](const PieceTaker &take) { return read_pieces(path, max_size, take); }, fault);
}

std::optional<ReadFault> read_input_pieces(std::uint64_t max_size, const PieceTaker &take) {
  struct stat status = {};
  if (fstat(STDIN_FILENO, &status) != 0) return fault_of(errno);
  // A terminal is typed on, another device may have no end; programs talk over sockets, too.
  if (S_ISCHR(status.st_mode) && isatty(STDIN_FILENO) == 0)
    if (auto refused = refused_kind(status)) return refused;
  return read_to_end(STDIN_FILENO, max_size, take);
}

std::optional<std::string> read_standard_input(std::uint64_t max_size, ReadFault &fault) {
  return collect([&](const PieceTaker &take) { return read_input_pieces(max_size, take); }, fault);
}

}  // namespace kztns
