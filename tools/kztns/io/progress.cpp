#include "io/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "io/system.h"

namespace kztns {

Progress::Progress(std::uint64_t whole) : Progress(whole, takes_control_sequences(STDERR_FILENO)) {}

Progress::Progress(std::uint64_t whole, bool on_terminal)
    : whole_(std::max<std::uint64_t>(whole, 1)),
      on_terminal_(on_terminal),
      next_(Clock::now() + std::chrono::seconds(1)) {}

Progress::~Progress() {
  if (shown_) std::fputs("\r\x1b[K", stderr);
}

void Progress::at(std::uint64_t part) {
  if (!on_terminal_ || Clock::now() < next_) return;
  next_ = Clock::now() + std::chrono::milliseconds(200);
  shown_ = true;
  std::fprintf(stderr, "\rchecking: %3d %%", static_cast<int>(part * 100 / whole_));
}

}  // namespace kztns
