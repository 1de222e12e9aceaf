#include "support/dropping_platform.h"

#include <cstdlib>
#include <string_view>

#include "kzoci/platform/log.h"
#include "kzoci/platform/memory.h"

namespace {

// Null while something is measured: the functions below then only test it.
bench::PlatformCalls *recorded = nullptr;

[[gnu::noinline]] void record_log(const char *format) {
  recorded->log_formats.emplace_back(format);
}

[[gnu::noinline]] void record_allocation(std::size_t size) {
  recorded->allocations.push_back(size);
}

}  // namespace

void kzoci_log_inner(log_level, const char *, int, const char *format, ...) {
  if (recorded != nullptr) [[unlikely]]
    record_log(format);
}

void *kzci_malloc(size_t size, const char *) {
  if (recorded != nullptr) [[unlikely]]
    record_allocation(size);
  return std::malloc(size);
}

void kzci_free(void *pointer) { std::free(pointer); }

namespace bench {

PlatformCalls calls_of(const std::function<void()> &work) {
  PlatformCalls calls;
  recorded = &calls;
  work();
  recorded = nullptr;
  return calls;
}

std::size_t argument_count(const std::string &format) {
  std::size_t count = 0;
  for (std::size_t i = format.find('%'); i < format.size(); i = format.find('%', i)) {
    // A conversion ends with its letter; "%%" takes no argument.
    std::size_t end = format.find_first_of("%dupsxc", i + 1);
    if (end == std::string::npos) break;
    const std::string_view conversion(format.data() + i, end - i);
    count += format[end] != '%';
    count += conversion.find('*') != std::string_view::npos;
    i = end + 1;
  }
  return count;
}

}  // namespace bench
