#include "memory_account.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <string>
#include <unordered_map>

#include "kzoci/platform/memory.h"

namespace {

struct Block {
  std::size_t size;
  const char *tag;
};

// Blocks never change hands: a tree and a buffer belong to the thread that made them.
thread_local std::unordered_map<void *, Block> live;

std::atomic<long long> allocated = 0;
std::atomic<long long> released = 0;
std::atomic<long long> bad_releases = 0;

}  // namespace

void *kzci_malloc(size_t size, const char *tag) {
  void *const block = std::malloc(size);
  if (block == nullptr) return nullptr;
  ++allocated;
  live.emplace(block, Block{size, tag});
  return block;
}

void kzci_free(void *pointer) {
  if (pointer == nullptr) return;
  if (live.erase(pointer) == 0) {
    ++bad_releases;
    return;
  }
  ++released;
  std::free(pointer);
}

namespace soak {

model::Blocks live_blocks() {
  model::Blocks blocks;
  for (const auto &[pointer, block] : live)
    blocks.push_back(model::block_of(block.size, block.tag));
  std::sort(blocks.begin(), blocks.end());
  return blocks;
}

std::size_t release_live_blocks() {
  std::size_t bytes = 0;
  for (const auto &[pointer, block] : live) {
    bytes += block.size;
    std::free(pointer);
  }
  live.clear();
  return bytes;
}

MemoryTotals memory_totals() { return {allocated, released, bad_releases}; }

}  // namespace soak
