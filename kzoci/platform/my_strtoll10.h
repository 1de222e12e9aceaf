/*
 * The number conversion that the module calls.
 *
 * An embedder replaces the default implementation by defining the function in
 * the program.
 */
#ifndef KZOCI_PLATFORM_MY_STRTOLL10_H
#define KZOCI_PLATFORM_MY_STRTOLL10_H

#include "api.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Converts decimal text to a signed 64-bit integer.
 *
 * text   first character of the text; need not be terminated
 * end    in: one past the last character that may be read;
 *        out: the first character that was not used
 * error  out: how the conversion went, see below
 *
 * Leading spaces and tabs are skipped, then one "-" or "+" may stand, then
 * decimal digits.
 *
 *   text                                 *error  result
 *   no digit (*end is back at text)          33  0
 *   up to 18446744073709551615                0  its 64-bit pattern
 *   above                                    34  -1, all bits set
 *   "-", up to 9223372036854775808           -1  the negated number
 *   "-", above                               34  -9223372036854775808
 *
 * In all but the first case *end is the first character that is no digit.
 */
KZOCI_API sb8 my_strtoll10(const char *text, char **end, int *error);

#ifdef __cplusplus
}
#endif

#endif
