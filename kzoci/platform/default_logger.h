/*
 * Configuring the default logger, the implementation of kzoci_log_inner that
 * comes with the library.
 *
 * A record becomes one line: time (UTC, milliseconds), level, source file and
 * line, text. However long, it is written whole, in one piece, line feeds of
 * its text included, which slow-SQL batches have. Records below
 * the threshold are dropped before anything is formatted; slow-SQL batches are
 * never dropped. Lines go to standard error until a file or a sink is set; a
 * sink takes precedence over a file.
 *
 * Memory is allocated only for a line of more than 65535 bytes; when there is
 * none, its first 65534 bytes and a line feed are written.
 *
 * Every function here may be called while other threads log. A process may fork
 * while its threads log, and the child may log.
 */
#ifndef KZOCI_PLATFORM_DEFAULT_LOGGER_H
#define KZOCI_PLATFORM_DEFAULT_LOGGER_H

#include <stddef.h>

#include "api.h"
#include "log.h"
#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Sets the threshold: records of this level and above are written.
 *
 * level  the lowest level to be written; LOG_LEVEL_ERROR by default
 */
KZOCI_API void kzoci_log_set_threshold(log_level level);

/* The threshold in force. */
KZOCI_API log_level kzoci_log_threshold(void);

/* A record as a sink receives it. Texts belong to the logger and last as long
 * as the call. */
typedef struct kzoci_log_record {
  log_level level;  /* its severity */
  const char *file; /* path of the source file that logs; terminated */
  int line;         /* line of the call in that file */
  const char *text; /* the formatted text; terminated */
  size_t text_len;  /* its length */
} kzoci_log_record;

/* A function that takes records; see kzoci_log_set_sink. */
typedef void (*kzoci_log_sink)(void *context, const kzoci_log_record *record);

/*
 * Hands records to a function instead of writing them.
 *
 * sink     called for each record at or above the threshold, by one thread at a
 *          time; must neither log nor fork. Null goes back to writing.
 * context  given to every call; the caller's
 *
 * When the call returns, the former sink is not running and not called again.
 */
KZOCI_API void kzoci_log_set_sink(kzoci_log_sink sink, void *context);

/* Characters of the longest path of a log file: the longest that systems accept. */
enum { KZOCI_LOG_PATH_MAX = 4095 };

/* The log settings of a names file's reserved entry. Texts need not be
 * terminated. */
typedef struct kzoci_log_settings {
  const char *level; /* name of the threshold, in any letter case */
  ub4 level_len;     /* 0: the threshold stays */
  const char *path;  /* the log file, opened for appending and closed on exec */
  ub4 path_len;      /* at most KZOCI_LOG_PATH_MAX; 0: standard error */
  sb8 file_size;     /* size in bytes at which the file is rotated; 0 or less: never */
  ub4 file_count;    /* number of files kept, see below */
} kzoci_log_settings;

/*
 * Sets threshold and log file.
 *
 * settings  the caller's; read during the call only
 *
 * Level names: TRACE, DEBUG, INFO, WARN, ERROR, FATAL, SLOWSQL.
 *
 * Before a line that would carry the file over file_size, the file is rotated:
 * path becomes path.1, path.1 becomes path.2 and so on up to path.(count - 1),
 * the oldest of which goes. With a count of 0 or 1 the one file starts over. A
 * line that is longer than file_size has a file to itself. What is not a regular
 * file, a pipe for example, is not rotated; nor is a file that the path reaches through
 * a symbolic link as its last part: both link and file stay, and the file may grow.
 *
 * Processes may share a log file, all with the same settings. Where file_size is
 * more than 0 each line is written under a lock on the file (flock), and goes to
 * the file that is then at the path, whichever process rotated it. A relative path
 * starts at the process's working directory at the time of the call. Whoever may open
 * the file (0640: the owner, and the group for reading) can hold the lock, and with it
 * every thread that logs.
 *
 * Returns 0; -1: the level's name is not known, nothing was changed; -2:
 * settings is null, nothing was changed; -3: the file cannot be opened or is a pipe
 * that nobody reads, or the path has a zero byte: the
 * threshold is in force and lines go to standard error; -4: the path is too
 * long, nothing was changed.
 *
 * When a line cannot be written to the file, or the file cannot be rotated, the
 * file is given up and this line and all that follow go to standard error, until
 * the next call of this function. Where file_size is more than 0, what was written of
 * the line is cut off the file first, so that its lines are whole. Without a lock, on a file system
 * that has none, a file is not rotated.
 */
KZOCI_API sword kzoci_log_configure(const kzoci_log_settings *settings);

#ifdef __cplusplus
}
#endif

#endif
