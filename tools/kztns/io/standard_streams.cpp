#include "io/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>

namespace kztns {

void reserve_standard_streams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    // The lowest number that is free is the stream's own. Whoever reads from or writes to a
    // stream that was closed is told; what nobody can be told is dropped.
    open("/dev/null", stream == STDOUT_FILENO ? O_RDONLY : O_WRONLY);
  }
}

}  // namespace kztns
