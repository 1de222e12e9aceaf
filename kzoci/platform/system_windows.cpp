// Not compiled for other systems, also by those who compile all files of this folder.
#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cstring>

#include "kzoci/platform/default_logger.h"
#include "kzoci/platform/system.h"

namespace kzoci::platform {

namespace {

SRWLOCK logger_lock = SRWLOCK_INIT;

HANDLE handle_of(int descriptor) { return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor)); }

constexpr std::uint64_t joined(DWORD high, DWORD low) { return (std::uint64_t{high} << 32) | low; }

bool state_of(HANDLE file, FileState &state) {
  if (GetFileType(file) != FILE_TYPE_DISK) {
    state = {};
    return file != INVALID_HANDLE_VALUE;
  }
  BY_HANDLE_FILE_INFORMATION information = {};
  if (GetFileInformationByHandle(file, &information) == 0) return false;
  state.size = static_cast<sb8>(joined(information.nFileSizeHigh, information.nFileSizeLow));
  state.identity[0] = information.dwVolumeSerialNumber;
  state.identity[1] = joined(information.nFileIndexHigh, information.nFileIndexLow);
  state.is_link = (information.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  state.is_regular =
      !state.is_link && (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
  return true;
}

// Whoever has the file open lets others write, rename and remove it.
HANDLE open_shared(const char *path, DWORD access, DWORD disposition, DWORD flags) {
  return CreateFileA(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                     disposition, flags, nullptr);
}

// Locks hold against writing here. A byte that no file has serves for a lock that only those
// heed who ask for it.
OVERLAPPED locked_byte() {
  OVERLAPPED place = {};
  place.OffsetHigh = 0x7FFFFFFF;
  return place;
}

// Where a write appends, whoever else has written meanwhile.
OVERLAPPED end_of_file() {
  OVERLAPPED place = {};
  place.Offset = 0xFFFFFFFF;
  place.OffsetHigh = 0xFFFFFFFF;
  return place;
}

}  // namespace

void lock_logger() { AcquireSRWLockExclusive(&logger_lock); }
void unlock_logger() { ReleaseSRWLockExclusive(&logger_lock); }

int guard_forks(void (*)()) { return 0; }

Time now() {
  constexpr std::uint64_t ticks_a_second = 10'000'000;
  constexpr std::uint64_t ticks_a_millisecond = 10'000;
  constexpr sb8 seconds_from_1601_to_1970 = 11'644'473'600;
  FILETIME time = {};
  GetSystemTimeAsFileTime(&time);
  const std::uint64_t ticks = joined(time.dwHighDateTime, time.dwLowDateTime);
  return {static_cast<sb8>(ticks / ticks_a_second) - seconds_from_1601_to_1970,
          static_cast<int>(ticks % ticks_a_second / ticks_a_millisecond)};
}

// Not by the C library, which writes a carriage return before each line feed where the
// program does not say otherwise.
bool write_whole(int descriptor, const char *text, std::size_t length) {
  constexpr std::size_t largest_piece = 1 << 30;
  const HANDLE file = handle_of(descriptor);
  const bool is_file = GetFileType(file) == FILE_TYPE_DISK;
  while (length > 0) {
    OVERLAPPED at = end_of_file();
    const auto piece = static_cast<DWORD>(length < largest_piece ? length : largest_piece);
    DWORD written = 0;
    if (WriteFile(file, text, piece, &written, is_file ? &at : nullptr) == 0 || written == 0)
      return false;
    text += written;
    length -= written;
  }
  return true;
}

int open_for_appending(const char *path) {
  const HANDLE file =
      open_shared(path, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL);
  if (file == INVALID_HANDLE_VALUE) return -1;
  const int descriptor =
      _open_osfhandle(reinterpret_cast<intptr_t>(file), _O_APPEND | _O_BINARY | _O_NOINHERIT);
  if (descriptor == -1) CloseHandle(file);
  return descriptor;
}

void close_file(int descriptor) { _close(descriptor); }

bool state_of(int descriptor, FileState &state) { return state_of(handle_of(descriptor), state); }

Presence presence(const char *path, FileState &state) {
  const HANDLE file =
      open_shared(path, FILE_READ_ATTRIBUTES, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT);
  if (file == INVALID_HANDLE_VALUE)
    return GetLastError() == ERROR_FILE_NOT_FOUND ? Presence::missing : Presence::unknown;
  const bool is_known = state_of(file, state);
  CloseHandle(file);
  return is_known ? Presence::there : Presence::unknown;
}

bool cut_off(int descriptor, sb8 size) {
  FILE_END_OF_FILE_INFO end = {};
  end.EndOfFile.QuadPart = size;
  return SetFileInformationByHandle(handle_of(descriptor), FileEndOfFileInfo, &end, sizeof end) !=
         0;
}

bool rename_file(const char *from, const char *to) {
  return MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING) != 0;
}

bool lock_file(int descriptor) {
  OVERLAPPED place = locked_byte();
  return LockFileEx(handle_of(descriptor), LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &place) != 0;
}

void unlock_file(int descriptor) {
  OVERLAPPED place = locked_byte();
  UnlockFileEx(handle_of(descriptor), 0, 1, 0, &place);
}

bool make_absolute(const char *path, std::size_t length, char *buffer, std::size_t size) {
  char terminated[KZOCI_LOG_PATH_MAX + 1];
  if (length >= sizeof terminated) return false;
  std::memcpy(terminated, path, length);
  terminated[length] = '\0';
  const DWORD written = GetFullPathNameA(terminated, static_cast<DWORD>(size), buffer, nullptr);
  return written > 0 && written < size;
}

}  // namespace kzoci::platform

#endif
