#include <cstdlib>

#include "kzoci/platform/memory.h"

// Whoever replaces the allocator may want the tag; the C library does not.
void *kzci_malloc(size_t size, const char *) { return std::malloc(size); }
