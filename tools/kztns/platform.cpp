#include "platform.h"

#include <cstdlib>

#include "kzoci/platform/memory.h"

namespace kztns {
namespace {

LogListener *current_listener = nullptr;

// The ends of the list of blocks: the newest is all_blocks.older.
BlockLink all_blocks = {&all_blocks, &all_blocks};

void link_newest(BlockLink &link) {
  link.newer = &all_blocks;
  link.older = all_blocks.older;
  link.older->newer = &link;
  all_blocks.older = &link;
}

void unlink(BlockLink &link) {
  link.newer->older = link.older;
  link.older->newer = link.newer;
}

}  // namespace

Listening::Listening(LogListener &listener) : before_(current_listener) {
  current_listener = &listener;
}

Listening::~Listening() { current_listener = before_; }

BlockScope::BlockScope() { link_newest(mark_); }

BlockScope::~BlockScope() {
  BlockLink *link = all_blocks.older;
  while (link != &mark_) {
    BlockLink *const older = link->older;
    std::free(link);
    link = older;
  }
  all_blocks.older = mark_.older;
  all_blocks.older->newer = &all_blocks;
}

}  // namespace kztns

using kztns::BlockLink;

extern "C" void kzoci_log_inner(enum log_level level, const char *, int, const char *format, ...) {
  if (kztns::current_listener == nullptr) return;
  std::va_list arguments;
  va_start(arguments, format);
  kztns::current_listener->record(level, format, arguments);
  va_end(arguments);
}

extern "C" void *kzci_malloc(size_t size, const char *) {
  auto *const link = static_cast<BlockLink *>(std::malloc(sizeof(BlockLink) + size));
  if (link == nullptr) return nullptr;
  kztns::link_newest(*link);
  return link + 1;
}

extern "C" void kzci_free(void *pointer) {
  if (pointer == nullptr) return;
  BlockLink *const link = static_cast<BlockLink *>(pointer) - 1;
  kztns::unlink(*link);
  std::free(link);
}
