// Signals that interrupt system calls, and a reader of a pipe that they do not disturb.
#pragma once

#include <chrono>
#include <csignal>
#include <string>
#include <thread>

#include <sys/time.h>
#include <unistd.h>

namespace logger_support {

// A signal every millisecond, whose handler leaves system calls interrupted.
class Interruptions {
 public:
  Interruptions() {
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, &saved_);
    const itimerval every_millisecond = {{0, 1000}, {0, 1000}};
    setitimer(ITIMER_REAL, &every_millisecond, nullptr);
  }
  ~Interruptions() {
    const itimerval never = {{0, 0}, {0, 0}};
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &saved_, nullptr);
  }
  Interruptions(const Interruptions &) = delete;
  Interruptions &operator=(const Interruptions &) = delete;

 private:
  struct sigaction saved_ = {};
};

// Reads a pipe slowly to its end, in a thread that no signal disturbs.
class SlowReader {
 public:
  explicit SlowReader(int descriptor) : descriptor_(descriptor) {
    sigset_t alarm;
    sigemptyset(&alarm);
    sigaddset(&alarm, SIGALRM);
    pthread_sigmask(SIG_BLOCK, &alarm, nullptr);
    thread_ = std::thread([this] { read_all(); });
    pthread_sigmask(SIG_UNBLOCK, &alarm, nullptr);
  }
  ~SlowReader() {
    if (thread_.joinable()) thread_.join();
    close(descriptor_);
  }
  SlowReader(const SlowReader &) = delete;
  SlowReader &operator=(const SlowReader &) = delete;

  // Waits until the last writer has closed the pipe.
  const std::string &text() {
    thread_.join();
    return text_;
  }

 private:
  void read_all() {
    char piece[65536];
    ssize_t length = 0;
    do {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      length = read(descriptor_, piece, sizeof piece);
      if (length > 0) text_.append(piece, static_cast<std::size_t>(length));
    } while (length > 0);
  }

  int descriptor_;
  std::string text_;
  std::thread thread_;
};

}  // namespace logger_support
