#include "recording_platform.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>

namespace support {
namespace {

constexpr int fresh_byte = 0xA5;
constexpr int released_byte = 0x5A;

enum class EventKind { log, memory };

struct Event {
  EventKind kind;
  log_level level;
  std::string text;
  std::string file;
  std::string format;
  int line;
};

struct LiveBlock {
  Block block;
  std::size_t number;
};

struct Recorder {
  std::mutex mutex;
  std::vector<Event> events;
  std::map<void *, LiveBlock> live;
  std::size_t allocations = 0;
  std::size_t failing = 0;
  bool fails_for_ever = false;
  std::size_t bad_releases = 0;
  bool keeps_log = true;
};

Recorder &recorder() {
  static Recorder instance;
  return instance;
}

std::string format_text(const char *format, va_list arguments) {
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  std::string text(length < 0 ? 0 : static_cast<std::size_t>(length), '\0');
  if (length > 0) std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  return text;
}

bool is_hex(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

std::string with_level(const Event &event) {
  return std::string(level_name(event.level)) + " " + event.text;
}

template <class Select, class Text>
std::vector<std::string> select_events(Select select, Text text) {
  std::lock_guard lock(recorder().mutex);
  std::vector<std::string> out;
  for (const Event &event : recorder().events)
    if (select(event)) out.push_back(text(event));
  return out;
}

bool is_log(const Event &event) { return event.kind == EventKind::log; }

std::string shown(const Event &event) {
  return is_log(event) ? without_pointers(with_level(event)) : event.text;
}

void note_memory(std::string text) {
  recorder().events.push_back({EventKind::memory, LOG_LEVEL_TRACE, std::move(text), "", "", 0});
}

}  // namespace

#if defined(_WIN32)

// There all pointers have sixteen digits, without a sign of what they are.
std::string without_pointers(const std::string &text) {
  constexpr std::size_t digits = 2 * sizeof(void *);
  std::string out;
  std::size_t run = 0;
  const auto end_run = [&] {
    if (run != digits) return;
    const bool is_null = out.ends_with(std::string(digits, '0'));
    out.resize(out.size() - digits);
    out += is_null ? "NULL" : "PTR";
  };
  for (const char c : text) {
    if (!is_hex(c)) end_run();
    run = is_hex(c) ? run + 1 : 0;
    out += c;
  }
  end_run();
  return out;
}

#else

std::string without_pointers(const std::string &text) {
  constexpr auto nowhere = std::string::npos;
  if (text.find("0x") == nowhere && text.find("(nil)") == nowhere) return text;  // most
  std::string out;
  for (std::size_t i = 0; i < text.size();) {
    if (text.compare(i, 2, "0x") == 0) {
      out += "PTR";
      for (i += 2; i < text.size() && is_hex(text[i]);) ++i;
    } else if (text.compare(i, 5, "(nil)") == 0) {
      out += "NULL";
      i += 5;
    } else {
      out += text[i++];
    }
  }
  return out;
}

#endif

const char *level_name(log_level level) {
  switch (level) {
    case LOG_LEVEL_TRACE:
      return "TRACE";
    case LOG_LEVEL_DEBUG:
      return "DEBUG";
    case LOG_LEVEL_INFO:
      return "INFO";
    case LOG_LEVEL_WARN:
      return "WARN";
    case LOG_LEVEL_ERROR:
      return "ERROR";
    case LOG_LEVEL_FATAL:
      return "FATAL";
    case LOG_LEVEL_SLOWSQL:
      return "SLOWSQL";
  }
  return "?";
}

std::string pointer_text(const void *pointer) {
  char text[32];
  std::snprintf(text, sizeof text, "%p", pointer);
  return text;
}

void reset_platform() {
  Recorder &r = recorder();
  std::lock_guard lock(r.mutex);
  for (auto &[pointer, block] : r.live) std::free(pointer);
  r.live.clear();
  r.events.clear();
  r.allocations = 0;
  r.failing = 0;
  r.fails_for_ever = false;
  r.bad_releases = 0;
  r.keeps_log = true;
}

void fail_allocation(std::size_t n, bool for_ever) {
  std::lock_guard lock(recorder().mutex);
  recorder().failing = recorder().allocations + n;
  recorder().fails_for_ever = for_ever;
}

void keep_log(bool keep) {
  std::lock_guard lock(recorder().mutex);
  recorder().keeps_log = keep;
}

std::vector<std::string> log_records() { return select_events(is_log, with_level); }

std::vector<std::string> log_without_pointers() { return select_events(is_log, shown); }

std::vector<std::string> log_of(log_level level) {
  return select_events([level](const Event &e) { return is_log(e) && e.level == level; },
                       [](const Event &e) { return without_pointers(e.text); });
}

std::vector<std::string> warnings_and_errors() {
  return select_events([](const Event &e) { return is_log(e) && e.level >= LOG_LEVEL_WARN; },
                       shown);
}

std::vector<std::string> events() {
  return select_events([](const Event &) { return true; }, shown);
}

std::vector<std::string> memory_events() {
  return select_events([](const Event &e) { return !is_log(e); }, shown);
}

std::vector<std::string> log_formats() {
  return select_events(is_log, [](const Event &e) { return e.format; });
}

std::vector<std::string> log_places(const std::string &format) {
  return select_events([&](const Event &e) { return is_log(e) && e.format == format; },
                       [](const Event &e) { return e.file + ":" + std::to_string(e.line); });
}

std::vector<std::string> log_files() {
  return select_events(is_log, [](const Event &e) { return e.file; });
}

std::vector<Block> live_blocks() {
  std::lock_guard lock(recorder().mutex);
  std::map<std::size_t, Block> ordered;
  for (const auto &[pointer, live] : recorder().live) ordered[live.number] = live.block;
  std::vector<Block> out;
  for (const auto &[number, block] : ordered) out.push_back(block);
  return out;
}

std::size_t allocation_count() {
  std::lock_guard lock(recorder().mutex);
  return recorder().allocations;
}

std::size_t bad_releases() {
  std::lock_guard lock(recorder().mutex);
  return recorder().bad_releases;
}

}  // namespace support

extern "C" void kzoci_log_inner(log_level level, const char *file, int line, const char *format,
                                ...) {
  using namespace support;
  Recorder &r = recorder();
  std::lock_guard lock(r.mutex);
  if (!r.keeps_log) return;
  va_list arguments;
  va_start(arguments, format);
  r.events.push_back({EventKind::log, level, format_text(format, arguments), file, format, line});
  va_end(arguments);
}

extern "C" void *kzci_malloc(std::size_t size, const char *tag) {
  using namespace support;
  Recorder &r = recorder();
  std::lock_guard lock(r.mutex);
  ++r.allocations;
  const bool fails = r.failing != 0 &&
                     (r.fails_for_ever ? r.allocations >= r.failing : r.allocations == r.failing);
  const std::string what = std::to_string(size) + " " + tag;
  void *pointer = fails ? nullptr : std::malloc(size);
  if (pointer == nullptr) {
    note_memory("MALLOC FAILS " + what);
    return nullptr;
  }
  std::memset(pointer, fresh_byte, size);
  note_memory("MALLOC " + what);
  r.live[pointer] = {{tag, size}, r.allocations};
  return pointer;
}

extern "C" void kzci_free(void *pointer) {
  using namespace support;
  Recorder &r = recorder();
  std::lock_guard lock(r.mutex);
  if (pointer == nullptr) {
    note_memory("FREE null");
    return;
  }
  const auto found = r.live.find(pointer);
  if (found == r.live.end()) {
    ++r.bad_releases;
    note_memory("FREE of what is not allocated");
    return;
  }
  note_memory("FREE " + found->second.block.tag);
  std::memset(pointer, released_byte, found->second.block.size);
  r.live.erase(found);
  std::free(pointer);
}
