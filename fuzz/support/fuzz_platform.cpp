#include "fuzz_platform.h"

#include <algorithm>
#include <bitset>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unordered_map>
#include <utility>

#include "kzoci/oci_tnsname.h"

namespace fuzz {
namespace {

constexpr unsigned char fresh_byte = 0xA5;
constexpr unsigned char released_byte = 0x5A;

// More than any block that a target has reason to ask for.
constexpr std::size_t largest_block = std::size_t{1} << 20;

class ByteSet {
 public:
  void add(std::string_view text) {
    for (const char c : text) bytes_.set(static_cast<unsigned char>(c));
  }
  bool has(char c) const { return bytes_.test(static_cast<unsigned char>(c)); }

 private:
  std::bitset<256> bytes_;
};

// What log records may quote.
struct Sources {
  ByteSet bytes;  // numbers and pointers included
  std::size_t length = 0;
  std::size_t fresh_bytes = 0;
  std::size_t released_bytes = 0;
};

std::size_t count_of(std::string_view text, unsigned char byte) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), static_cast<char>(byte)));
}

struct Platform {
  bool running = false;
  Sources sources;
  std::vector<char> record;
  std::uint64_t log_fingerprint = 0;
  std::vector<std::string> slow_sql;
  std::unordered_map<void *, std::size_t> live;
  std::size_t until_failure = 0;
  bool has_failed = false;
};

Platform &platform() {
  static Platform instance;
  return instance;
}

std::size_t longest_run(std::string_view text, unsigned char byte) {
  std::size_t longest = 0;
  for (std::size_t at = text.find(static_cast<char>(byte)); at < text.size();) {
    const std::size_t end = std::min(text.find_first_not_of(text[at], at), text.size());
    longest = std::max(longest, end - at);
    at = text.find(static_cast<char>(byte), end);
  }
  return longest;
}

bool is_printable(char c) { return c >= ' ' && c <= '~'; }

// Every byte of a record comes from its format, from a source, or from a number
// or pointer; a constant text that the module prints with "%s" is printable. Runs
// of a memory pattern are no longer than the sources can make them.
void check_record(std::string_view text, std::string_view format) {
  const Sources &sources = platform().sources;
  const bool is_constant_text = format == "%s";
  for (const char c : text)
    check(sources.bytes.has(c) || format.find(c) != std::string_view::npos ||
              (is_constant_text && is_printable(c)),
          "byte 0x%02x of \"%s\" stands neither in the input nor in \"%s\"",
          static_cast<unsigned char>(c), text.data(), format.data());
  check(longest_run(text, fresh_byte) <= sources.fresh_bytes, "\"%s\" prints unset memory",
        text.data());
  check(longest_run(text, released_byte) <= std::max<std::size_t>(sources.released_bytes, 1),
        "\"%s\" prints released memory", text.data());
}

std::uint64_t mix(std::uint64_t hash, std::string_view text) {
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
  return hash;
}

// Sizes of the records, by the tags of their blocks.
struct RecordSize {
  const char *tag;
  std::size_t smallest;
  std::size_t largest;
};

constexpr std::size_t longest_name = 256;
constexpr RecordSize record_sizes[] = {
    {"KZCITnsServiceBuild", sizeof(KZCITnsService), sizeof(KZCITnsService) + longest_name},
    {"KZCITnsBuildDes", sizeof(KZCITnsService), sizeof(KZCITnsService) + longest_name},
    {"KZCIDescription", sizeof(KZCIDescription), sizeof(KZCIDescription)},
    {"address_list", sizeof(KZCIAddressList), sizeof(KZCIAddressList)},
    {"address", sizeof(KZCIAddress), sizeof(KZCIAddress)},
    {"KZCIConnectData", sizeof(KZCIConnectData), sizeof(KZCIConnectData)},
    {"KZCISlowSQLBufferInit", 1, SIZE_MAX},
};

void check_allocation(std::size_t size, std::string_view tag) {
  const auto *const known =
      std::find_if(std::begin(record_sizes), std::end(record_sizes),
                   [tag](const RecordSize &record) { return record.tag == tag; });
  check(known != std::end(record_sizes), "allocation under the tag %s", tag.data());
  check(size >= known->smallest && size <= known->largest, "%zu bytes for %s", size, tag.data());
}

bool allocation_fails() {
  Platform &p = platform();
  if (p.until_failure == 0 || --p.until_failure > 0) return false;
  p.has_failed = true;
  return true;
}

}  // namespace

Run::Run(std::initializer_list<std::string_view> sources, std::size_t own_length) {
  Platform &p = platform();
  check(!p.running, "one run inside another");
  p.running = true;
  p.sources = {};
  p.sources.bytes.add("0123456789abcdefx-(nil)");
  p.sources.length = own_length;
  for (const std::string_view source : sources) {
    p.sources.bytes.add(source);
    p.sources.length += source.size();
    p.sources.fresh_bytes += count_of(source, fresh_byte);
    p.sources.released_bytes += count_of(source, released_byte);
  }
  p.log_fingerprint = 0;
  p.slow_sql.clear();
  fail_allocation(0);
}

Run::~Run() {
  Platform &p = platform();
  for (const auto &[block, size] : p.live) std::free(block);
  p.live.clear();
  p.running = false;
}

void fail_allocation(std::size_t n) {
  platform().until_failure = n;
  platform().has_failed = false;
}

bool allocation_has_failed() { return platform().has_failed; }

std::size_t live_blocks() { return platform().live.size(); }

bool is_live(const void *block, std::size_t size) {
  const auto found = platform().live.find(const_cast<void *>(block));
  return found != platform().live.end() && found->second >= size;
}

std::uint64_t take_log_fingerprint() { return std::exchange(platform().log_fingerprint, 0); }

std::vector<std::string> take_slow_sql() { return std::exchange(platform().slow_sql, {}); }

void check_printed(std::string_view text) {
  for (const char c : text)
    check(is_printable(c) || c == '\n' || platform().sources.bytes.has(c),
          "byte 0x%02x is printed and stands not in the input", static_cast<unsigned char>(c));
}

}  // namespace fuzz

extern "C" void kzoci_log_inner(log_level level, const char *file, int line, const char *format,
                                ...) {
  using namespace fuzz;
  Platform &p = platform();
  check(p.running, "\"%s\" is logged outside a run", format);
  check(level >= LOG_LEVEL_DEBUG && level <= LOG_LEVEL_SLOWSQL, "\"%s\" at level %d", format,
        level);
  check(file != nullptr && *file != '\0' && line > 0, "\"%s\" without its place", format);

  const std::size_t bound = std::strlen(format) + p.sources.length;
  p.record.resize(bound);
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(p.record.data(), bound, format, arguments);
  va_end(arguments);
  check(length >= 0 && static_cast<std::size_t>(length) < bound,
        "\"%s\" gives %d characters, more than the input can fill", format, length);

  const std::string_view text(p.record.data(), static_cast<std::size_t>(length));
  check_record(text, format);
  if (level == LOG_LEVEL_SLOWSQL) p.slow_sql.emplace_back(text);
  const std::uint64_t place = mix(p.log_fingerprint + static_cast<std::uint64_t>(level), file);
  p.log_fingerprint = mix(place + static_cast<std::uint64_t>(line), format);
}

extern "C" void *kzci_malloc(std::size_t size, const char *tag) {
  using namespace fuzz;
  check(platform().running, "%s is allocated outside a run", tag);
  check_allocation(size, tag);
  if (allocation_fails() || size > largest_block) return nullptr;
  void *const block = std::malloc(size);
  check(block != nullptr, "no memory for %zu bytes of %s", size, tag);
  std::memset(block, fresh_byte, size);
  platform().live.emplace(block, size);
  return block;
}

extern "C" void kzci_free(void *block) {
  using namespace fuzz;
  if (block == nullptr) return;
  const auto found = platform().live.find(block);
  check(found != platform().live.end(), "release of %p, which is not allocated", block);
  std::memset(block, released_byte, found->second);
  platform().live.erase(found);
  std::free(block);
}
