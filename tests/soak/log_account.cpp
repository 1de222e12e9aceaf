#include "log_account.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "kzoci/platform/default_logger.h"
#include "kzoci/platform/level_names.h"

namespace {

using soak::Lines;

constexpr log_level threshold = LOG_LEVEL_WARN;
constexpr std::string_view time_form = "0000-00-00T00:00:00.000Z ";

// Set before threads start; the account is changed by one thread at a time, since the
// logger rotates under its lock.
std::string log_path;
sb8 size_limit = 0;
ub4 files_kept = 0;
soak::LogAccount account;

std::atomic<long long> lines_handed_over = 0;
std::atomic<std::uint64_t> checksum_handed_over = 0;

std::uint64_t hash(std::string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325u;  // FNV-1a
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
  return hash;
}

bool begins_with_a_time(std::string_view line) {
  if (line.size() < time_form.size()) return false;
  for (std::size_t i = 0; i < time_form.size(); ++i)
    if (time_form[i] == '0' ? std::isdigit(static_cast<unsigned char>(line[i])) == 0
                            : line[i] != time_form[i])
      return false;
  return true;
}

struct Contents {
  Lines lines;
  long long records = 0;
};

Contents contents_of(std::string_view text) {
  Contents contents;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (begins_with_a_time(line)) {
      ++contents.records;
      line.remove_prefix(time_form.size());
    }
    ++contents.lines.count;
    contents.lines.checksum += hash(line);
  }
  return contents;
}

void add(Lines &sum, const Lines &more) {
  sum.count += more.count;
  sum.checksum += more.checksum;
}

// Adds a file of the log to a sum; gives its size.
std::size_t add_file(const std::string &path, Lines &sum) {
  std::ifstream file(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  const Contents contents = contents_of(text);
  add(sum, contents.lines);
  if (static_cast<sb8>(text.size()) > size_limit && contents.records > 1) ++account.files_too_large;
  if (!text.empty() && text.back() != '\n') ++account.broken_ends;
  return text.size();
}

void hand_over(const std::string &line) {
  const Lines lines = contents_of(line).lines;
  lines_handed_over += lines.count;
  checksum_handed_over += lines.checksum;
}

}  // namespace

// Stand-ins of the linker's, for every call of the module and of the logger.
extern "C" {
void __real_kzoci_log_inner(log_level level, const char *file, int line, const char *format, ...);
int __real_rename(const char *from, const char *to);

void __wrap_kzoci_log_inner(log_level level, const char *file, int line, const char *format, ...) {
  if (level < threshold) return;
  va_list arguments;
  va_start(arguments, format);
  char *text = nullptr;
  const int length = vasprintf(&text, format, arguments);
  va_end(arguments);
  if (length < 0) std::abort();
  hand_over(std::string(kzoci::platform::level_name(level)) + ' ' + file + ':' +
            std::to_string(line) + ' ' + text + '\n');
  __real_kzoci_log_inner(level, file, line, "%s", text);
  std::free(text);
}

// The oldest file of the log goes when the one before it takes its name.
int __wrap_rename(const char *from, const char *to) {
  const bool is_log = std::string_view(from).starts_with(log_path);
  if (is_log && from == log_path) ++account.rotations;
  if (is_log && to == log_path + '.' + std::to_string(files_kept - 1))
    account.bytes_dropped += static_cast<long long>(add_file(to, account.dropped));
  return __real_rename(from, to);
}
}

namespace soak {

void choose_log(const std::string &path, sb8 file_size, ub4 file_count) {
  log_path = path;
  size_limit = file_size;
  files_kept = file_count;
}

bool open_log() {
  constexpr std::string_view level = kzoci::platform::level_name(threshold);
  const kzoci_log_settings settings = {level.data(),    static_cast<ub4>(level.size()),
                                       log_path.data(), static_cast<ub4>(log_path.size()),
                                       size_limit,      files_kept};
  return kzoci_log_configure(&settings) == 0;
}

LogAccount close_log() {
  const kzoci_log_settings settings = {};
  kzoci_log_configure(&settings);
  account.handed_over = {lines_handed_over, checksum_handed_over};
  add_file(log_path, account.left);
  for (ub4 i = 1; i < files_kept; ++i) {
    const std::string older = log_path + '.' + std::to_string(i);
    if (std::filesystem::exists(older)) add_file(older, account.left);
  }
  return account;
}

}  // namespace soak
