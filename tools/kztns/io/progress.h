// A line that tells how far the work is, on a terminal, when it takes long.
#pragma once

#include <chrono>
#include <cstdint>

namespace kztns {

class Progress {
 public:
  // Shown where standard error is a terminal.
  explicit Progress(std::uint64_t whole);
  Progress(std::uint64_t whole, bool on_terminal);
  // Removes the line.
  ~Progress();
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;

  void at(std::uint64_t part);

 private:
  using Clock = std::chrono::steady_clock;

  std::uint64_t whole_;
  bool on_terminal_;
  bool shown_ = false;
  Clock::time_point next_;
};

}  // namespace kztns
