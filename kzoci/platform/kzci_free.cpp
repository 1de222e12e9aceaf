#include <cstdlib>

#include "kzoci/platform/memory.h"

void kzci_free(void *pointer) { std::free(pointer); }
