/* Writes lines to a log that rotates at a few thousand bytes: log_writer PATH NAME LINES. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "kzoci/platform/default_logger.h"

int main(int count, char **arguments) {
  if (count != 4) return 2;
  const kzoci_log_settings settings = {NULL, 0,   arguments[1], (ub4)strlen(arguments[1]),
                                       4000, 1000};
  if (kzoci_log_configure(&settings) != 0) return 1;
  const int lines = atoi(arguments[3]);
  for (int i = 0; i < lines; ++i)
    kzoci_log_inner(LOG_LEVEL_ERROR, "a.c", 1, "%s %d", arguments[2], i);
  return 0;
}
