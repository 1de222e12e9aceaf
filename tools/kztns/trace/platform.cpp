#include "trace/platform.h"

#include <cstdlib>

#include "kzoci/platform/memory.h"

namespace kztns {
namespace {

LogListener *current_listener = nullptr;

// The ends of the list of blocks: the newest is all_allocations.older.
AllocationLink all_allocations = {&all_allocations, &all_allocations};

void link_newest(AllocationLink &link) {
  link.newer = &all_allocations;
  link.older = all_allocations.older;
  link.older->newer = &link;
  all_allocations.older = &link;
}

void unlink(const AllocationLink &link) {
  link.newer->older = link.older;
  link.older->newer = link.newer;
}

}  // namespace

Listening::Listening(LogListener &listener) : before_(current_listener) {
  current_listener = &listener;
}

Listening::~Listening() { current_listener = before_; }

AllocationScope::AllocationScope() { link_newest(mark_); }

AllocationScope::~AllocationScope() {
  AllocationLink *link = all_allocations.older;
  while (link != &mark_) {
    AllocationLink *const older = link->older;
    std::free(link);
    link = older;
  }
  all_allocations.older = mark_.older;
  all_allocations.older->newer = &all_allocations;
}

}  // namespace kztns

using kztns::AllocationLink;

extern "C" void kzoci_log_inner(enum log_level level, const char *, int, const char *format, ...) {
  if (kztns::current_listener == nullptr) return;
  std::va_list arguments;
  va_start(arguments, format);
  kztns::current_listener->record(level, format, arguments);
  va_end(arguments);
}

extern "C" void *kzci_malloc(size_t size, const char *) {
  auto *const link = static_cast<AllocationLink *>(std::malloc(sizeof(AllocationLink) + size));
  if (link == nullptr) return nullptr;
  kztns::link_newest(*link);
  return link + 1;
}

extern "C" void kzci_free(void *pointer) {
  if (pointer == nullptr) return;
  AllocationLink *const link = static_cast<AllocationLink *>(pointer) - 1;
  kztns::unlink(*link);
  std::free(link);
}
