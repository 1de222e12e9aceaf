#include "io/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>

namespace kztns {

void reserve_standard_streams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    // The lowest number that is free is the stream's own.
    open("/dev/null", stream == STDERR_FILENO ? O_WRONLY : O_RDONLY);
  }
}

}  // namespace kztns
