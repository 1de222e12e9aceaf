#include "kzoci/platform/memory.h"

#include <cstdlib>

// Whoever replaces the allocator may want the tag; the C library does not.
void *kzci_malloc(size_t size, const char *) { return std::malloc(size); }

void kzci_free(void *pointer) { std::free(pointer); }
