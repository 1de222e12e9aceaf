/*
 * The integer and text types that the module and its platform share.
 * Usable from C99 and C++.
 */
#ifndef KZOCI_PLATFORM_TYPES_H
#define KZOCI_PLATFORM_TYPES_H

#include <stdint.h>

typedef int sword;             /* a status; each function lists its own */
typedef uint32_t ub4;          /* unsigned 32-bit integer */
typedef int32_t sb4;           /* signed 32-bit integer */
typedef int64_t sb8;           /* signed 64-bit integer */
typedef int boolean;           /* truth value: 0 or 1 */
typedef unsigned char OraText; /* byte text, not terminated unless said so */

#endif
