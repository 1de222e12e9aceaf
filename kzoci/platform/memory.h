/*
 * The allocator that the module calls.
 *
 * An embedder replaces the default implementation by defining the functions in
 * the program, both or one of them.
 */
#ifndef KZOCI_PLATFORM_MEMORY_H
#define KZOCI_PLATFORM_MEMORY_H

#include <stddef.h>

#include "api.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Allocates a block.
 *
 * size  bytes wanted; more than 0 in every call that the module makes
 * tag   short constant text that names what is allocated
 *
 * Returns the block, aligned for every type, its contents unspecified; null
 * when there is no memory. The caller gives the block back with kzci_free.
 */
KZOCI_API void *kzci_malloc(size_t size, const char *tag);

/*
 * Releases a block of kzci_malloc. A null pointer is accepted and does nothing.
 */
KZOCI_API void kzci_free(void *pointer);

#ifdef __cplusplus
}
#endif

#endif
