#include <kzoci/platform/memory.h>
#include <stdlib.h>

void *kzci_malloc(size_t size, const char *tag) {
  (void)tag;
  return malloc(size);
}

void kzci_free(void *pointer) { free(pointer); }
