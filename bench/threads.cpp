// Two threads, each with a names file and a container of its own, against one.
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "rows.h"
#include "support/names_file.h"

namespace bench {

namespace {

constexpr long entries = 10000;
constexpr int most_threads = 2;

std::filesystem::path folder_of(int thread) {
  return options().files / ("thread_" + std::to_string(thread));
}

// The variable that names the file is the process's. So the file's name is
// relative, and each thread has a working directory of its own.
bool enter_own_folder(int thread) {
  return ::unshare(CLONE_FS) == 0 && ::chdir(folder_of(thread).c_str()) == 0;
}

// Some containers do not let a thread have a working directory of its own. The
// threads then share a file, though not the stream that reads it.
bool have_own_folders() {
  bool have = false;
  std::thread([&have] { have = enter_own_folder(1); }).join();
  if (!have) std::fprintf(stderr, "note: the threads look up in one file\n");
  return have;
}

using Clock = std::chrono::steady_clock;

struct Span {
  Clock::time_point start;
  Clock::time_point end;
};

// Looks up that many times, once every thread is ready.
Span look_up_together(std::latch &ready, long times) {
  const std::string name = last_service(entries);
  look_up(name, true);
  ready.arrive_and_wait();
  Span span = {Clock::now(), {}};
  for (; times > 0; --times) look_up(name, true);
  span.end = Clock::now();
  return span;
}

// So many threads, each doing that many lookups; from the start of the first one
// to the end of the last one.
double seconds_of_threads(int count, long times) {
  static const bool own_folders = have_own_folders();
  look_up_in(own_folders ? "tnsnames.ora" : folder_of(1) / "tnsnames.ora");
  std::latch ready(count);
  std::vector<Span> spans(static_cast<std::size_t>(count));
  std::vector<std::thread> threads;
  for (int thread = 1; thread <= count; ++thread)
    threads.emplace_back([&ready, &span = spans[threads.size()], thread, times] {
      if (own_folders && !enter_own_folder(thread)) fail("a thread cannot enter its folder");
      span = look_up_together(ready, times);
    });
  for (std::thread &thread : threads) thread.join();
  Span whole = spans.front();
  for (const Span &span : spans)
    whole = {std::min(whole.start, span.start), std::max(whole.end, span.end)};
  return std::chrono::duration<double>(whole.end - whole.start).count();
}

// Nanoseconds a lookup, the threads' lookups taken together.
Cost threads_cost(int count) {
  const long times = options().quick ? 8 : 32;
  return
      [=] { return seconds_of_threads(count, times) * 1e9 / static_cast<double>(times * count); };
}

}  // namespace

void add_thread_rows() {
  add_row({.name = "two threads / one (throughput)",
           .unit = "lookup",
           .setup =
               [] {
                 return Costs{threads_cost(most_threads), threads_cost(1)};
               },
           .target = {1.9, 2.0},
           .better = Better::higher});
}

}  // namespace bench
