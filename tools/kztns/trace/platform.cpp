#include "trace/platform.h"

#include <cstdlib>
#include <new>

#include "kzoci/platform/memory.h"

namespace kztns {
namespace {

// The module tells its platform no context: each thread has its own.
thread_local LogListener *current_listener = nullptr;
thread_local AllocationLink *newest_allocation = nullptr;
thread_local std::uint64_t refused_allocations = 0;

void link_newest(AllocationLink &link) {
  link.newer = nullptr;
  link.older = newest_allocation;
  if (link.older != nullptr) link.older->newer = &link;
  newest_allocation = &link;
}

void unlink(const AllocationLink &link) {
  (link.newer != nullptr ? link.newer->older : newest_allocation) = link.older;
  if (link.older != nullptr) link.older->newer = link.newer;
}

}  // namespace

Listening::Listening(LogListener &listener) : before_(current_listener) {
  current_listener = &listener;
}

Listening::~Listening() { current_listener = before_; }

AllocationScope::AllocationScope() : refused_before_(refused_allocations) { link_newest(mark_); }

AllocationScope::~AllocationScope() {
  AllocationLink *link = newest_allocation;
  while (link != &mark_) {
    AllocationLink *const older = link->older;
    std::free(link);
    link = older;
  }
  newest_allocation = mark_.older;
  if (newest_allocation != nullptr) newest_allocation->newer = nullptr;
}

void AllocationScope::require_memory() const {
  if (refused_allocations != refused_before_) throw std::bad_alloc();
}

}  // namespace kztns

using kztns::AllocationLink;

extern "C" void kzoci_log_inner(enum log_level level, const char *, int, const char *format, ...) {
  if (kztns::current_listener == nullptr) return;
  std::va_list arguments;
  va_start(arguments, format);
  // The module has no exceptions: on some processors none gets through it.
  try {
    kztns::current_listener->record(level, format, arguments);
  } catch (const std::bad_alloc &) {
    ++kztns::refused_allocations;
  }
  va_end(arguments);
}

extern "C" void *kzci_malloc(size_t size, const char *) {
  auto *const link = static_cast<AllocationLink *>(std::malloc(sizeof(AllocationLink) + size));
  if (link == nullptr) {
    ++kztns::refused_allocations;
    return nullptr;
  }
  kztns::link_newest(*link);
  return link + 1;
}

extern "C" void kzci_free(void *pointer) {
  if (pointer == nullptr) return;
  AllocationLink *const link = static_cast<AllocationLink *>(pointer) - 1;
  kztns::unlink(*link);
  std::free(link);
}
