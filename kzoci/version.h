/*
 * The version of the library: the build, the command and the man pages take it
 * from these lines.
 *
 * Within one minor version, programs need no change when the library is replaced
 * by one of a higher patch.
 */
#ifndef KZOCI_VERSION_H
#define KZOCI_VERSION_H

/* Changes with what programs must be changed for. */
#define KZOCI_VERSION_MAJOR 1
/* Changes with what is new. */
#define KZOCI_VERSION_MINOR 0
/* Changes with what is mended. */
#define KZOCI_VERSION_PATCH 0

/* The version as a number that can be compared, 10203 for 1.2.3. */
#define KZOCI_VERSION_NUMBER \
  (KZOCI_VERSION_MAJOR * 10000 + KZOCI_VERSION_MINOR * 100 + KZOCI_VERSION_PATCH)

/* The version as a text, "1.2.3". */
#define KZOCI_VERSION \
  KZOCI_VERSION_TEXT(KZOCI_VERSION_MAJOR, KZOCI_VERSION_MINOR, KZOCI_VERSION_PATCH)

/* Only for KZOCI_VERSION: the arguments are replaced by their numbers first. */
#define KZOCI_VERSION_TEXT(major, minor, patch) KZOCI_VERSION_PARTS(major, minor, patch)
/* Only for KZOCI_VERSION. */
#define KZOCI_VERSION_PARTS(major, minor, patch) #major "." #minor "." #patch

#endif
