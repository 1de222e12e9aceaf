/*
 * explain.h: why a connect identifier leads nowhere, in words for people.
 *
 * KZCITnsBuild tells no file, a file that cannot be read and a name that is not in the file
 * apart only in its log. After a failure these functions look the identifier up once more
 * and tell what `kztns why` tells: as one line for an error message, or as a record.
 *
 *   char line[512];
 *   kzoci_explain_line("sales", 5, NULL, line, sizeof line, NULL);
 *   fprintf(stderr, "cannot connect: %s\n", line);
 *
 * What holds for every function here:
 *
 * - Library: kzoci::explain (libkzoci_explain.so.1) needs none of the others. It has a copy
 *   of the module of its own, which no other code sees: nothing is logged, and a program's
 *   functions of the platform are not called.
 * - Status: 0 success; -1 no memory; -2 a null argument, or an identifier of more than
 *   2147483647 bytes. No C++ exception leaves a function.
 * - Threads: any number at once. A call without a path reads the environment: no thread may
 *   change it meanwhile. Nothing is kept between calls; errno is left as it was.
 * - Texts end in a zero byte and are UTF-8 without control characters, line feeds included:
 *   such bytes of identifiers, paths and files are written as \xHH.
 * - Passwords: *** is written for what comes before the last "@" of an identifier, from its
 *   first "/" or ":" on; without "@", for all after the first "/", unless HOST:PORT, "//HOST"
 *   or PROTOCOL://HOST tells that a service follows. HOST/SERVICE looks the same as
 *   USER/PASSWORD, and its service is hidden; USER:1234/PASSWORD looks the same as
 *   HOST:PORT/SERVICE and is shown. Texts about literal descriptors and about entries quote
 *   their values: what is secret there may be shown. Identifiers that begin with "(" are
 *   shown as they are.
 * - Cost: the whole file is read, up to 64 MiB, and every entry is built: these functions
 *   are for the path of an error, not for every lookup. A pipe is not read, since it can be
 *   read only once.
 */
#ifndef KZOCI_EXPLAIN_H
#define KZOCI_EXPLAIN_H

#include <stddef.h>

#include "platform/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What becomes of a lookup. More may come in later versions. */
typedef enum kzoci_explain_outcome {
  KZOCI_EXPLAIN_FOUND = 0,          /* KZCITnsBuild builds it */
  KZOCI_EXPLAIN_NOT_FOUND = 1,      /* the lookup comes to no entry of that name */
  KZOCI_EXPLAIN_REFUSED = 2,        /* its entry, or the literal descriptor, is malformed */
  KZOCI_EXPLAIN_ENDED_BEFORE = 3,   /* malformed text ends the lookup before any such entry */
  KZOCI_EXPLAIN_NO_FILE = 4,        /* no variable of the environment names a file */
  KZOCI_EXPLAIN_MISSING_FILE = 5,   /* there is no file of that name */
  KZOCI_EXPLAIN_UNREADABLE_FILE = 6 /* it cannot be read, or is not read: text says why */
} kzoci_explain_outcome;

/* An entry that may have been meant. */
typedef struct kzoci_near_name {
  const char *name;
  unsigned int line; /* both from 1, the column in bytes */
  unsigned int column;
  const char *text; /* there is an entry "Sales" at 3:1, which differs only in case */
} kzoci_near_name;

/* What is known of a lookup. Lines and columns are from 1, columns in bytes. Fields may be
 * added at the end in later versions. */
typedef struct kzoci_explanation {
  kzoci_explain_outcome outcome;
  int is_literal;            /* 1 for a literal descriptor, which no file is read for, else 0 */
  const char *message;       /* all of it in one line, as kzoci_explain_line gives it */
  const char *identifier;    /* without its password */
  const char *file;          /* the names file; null for a literal, and where none is named */
  const char *variable;      /* that chose the file; null for none, and for a path given */
  unsigned int line;         /* what text is about, in the file or in the literal; the entry */
  unsigned int column;       /* where it is found; 0 for no place */
  unsigned int entry_line;   /* the entry of the name; 0 where the lookup comes to none, and */
  unsigned int entry_column; /* for a literal */
  const char *rule;          /* of kztns check, "unknown-key"; empty for none */
  const char *text;          /* what is wrong; empty where it is found */
  const char *remedy;        /* what to do; empty for none */
  const char *note;          /* that the identifier is no plain name, or that the path of the */
                             /* environment is cut to 256 characters; empty for neither */
  const kzoci_near_name *near_names; /* those that come closest first; null for none */
  size_t near_names_count;
} kzoci_explanation;

/*
 * Explains in one line: "sales: not found in "/etc/tnsnames.ora"; there is an entry ...".
 *
 * identifier      a service name or a literal descriptor; need not be terminated
 * identifier_len  its bytes
 * path            of the names file, terminated; null: the file that the environment names,
 *                 as for KZCITnsBuild. With a path the environment is not read
 * line            out: the line, terminated, cut between two characters to what there is
 *                 room for
 * size            bytes of line; 0: nothing is written
 * line_len        out: its length before the cut; may be null
 *
 * Returns 0; -1: no memory, the line says so; -2: identifier or line is null or the
 * identifier is too long, nothing is written.
 */
KZOCI_API int kzoci_explain_line(const char *identifier, size_t identifier_len, const char *path,
                                 char *line, size_t size, size_t *line_len);

/*
 * Explains as a record.
 *
 * identifier, identifier_len, path  as above
 * explanation                       out: the record, to be released by
 *                                   kzoci_explanation_free; untouched after a failure
 *
 * Returns 0; -1: no memory; -2: identifier or explanation is null or the identifier is too
 * long.
 */
KZOCI_API int kzoci_explain(const char *identifier, size_t identifier_len, const char *path,
                            kzoci_explanation **explanation);

/*
 * Releases a record and all that it points to.
 *
 * explanation  from kzoci_explain; null is nothing to do
 */
KZOCI_API void kzoci_explanation_free(kzoci_explanation *explanation);

#ifdef __cplusplus
}
#endif

#endif
