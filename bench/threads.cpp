// Two threads, each with a names file and a container of its own, against one.
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
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

// A processor of its own for each thread: left to itself, the system takes longer
// than a measurement to spread two new threads over two processors.
void settle(int thread) {
  cpu_set_t allowed;
  CPU_ZERO(&allowed);
  if (::sched_getaffinity(0, sizeof allowed, &allowed) != 0) return;
  int wanted = thread;
  for (int processor = 0; processor < CPU_SETSIZE; ++processor) {
    if (!CPU_ISSET(processor, &allowed) || --wanted > 0) continue;
    CPU_ZERO(&allowed);
    CPU_SET(processor, &allowed);
    ::sched_setaffinity(0, sizeof allowed, &allowed);
    return;
  }
}

using Clock = std::chrono::steady_clock;

struct Span {
  Clock::time_point start;
  Clock::time_point end;
};

// Work of a thread, on the file of its own.
using WorkOnFile = std::function<void(const std::filesystem::path &file)>;

// Does the work that many times, once every thread is ready.
Span work_together(const WorkOnFile &work, const std::filesystem::path &file, std::latch &ready,
                   long times) {
  work(file);
  ready.arrive_and_wait();
  Span span = {Clock::now(), {}};
  for (; times > 0; --times) work(file);
  span.end = Clock::now();
  return span;
}

// So many threads, each doing the work that many times; from the start of the
// first one to the end of the last one.
double seconds_of_threads(int count, const WorkOnFile &work, long times) {
  static const bool own_folders = have_own_folders();
  const std::filesystem::path file = own_folders ? "tnsnames.ora" : folder_of(1) / "tnsnames.ora";
  look_up_in(file);
  std::latch ready(count);
  std::vector<Span> spans(static_cast<std::size_t>(count));
  std::vector<std::thread> threads;
  for (int thread = 1; thread <= count; ++thread)
    threads.emplace_back([&, &span = spans[threads.size()], thread] {
      if (own_folders && !enter_own_folder(thread)) fail("a thread cannot enter its folder");
      settle(thread);
      span = work_together(work, file, ready, times);
    });
  for (std::thread &thread : threads) thread.join();
  Span whole = spans.front();
  for (const Span &span : spans)
    whole = {std::min(whole.start, span.start), std::max(whole.end, span.end)};
  return std::chrono::duration<double>(whole.end - whole.start).count();
}

// Nanoseconds of the work once, that of all threads taken together. The clock is the
// wall clock, which includes what other programs take of the machine; the fastest of
// several short runs includes the least of it.
Cost threads_cost(int count, const WorkOnFile &work) {
  constexpr long times = 8;
  const int runs = options().quick ? 5 : 15;
  return [=] {
    double fastest = seconds_of_threads(count, work, times);
    for (int run = 1; run < runs; ++run)
      fastest = std::min(fastest, seconds_of_threads(count, work, times));
    return fastest * 1e9 / static_cast<double>(times * count);
  };
}

void add_threads_row(const std::string &name, const std::string &unit, const WorkOnFile &work,
                     Target target) {
  add_row({.name = name,
           .unit = unit,
           .setup =
               [work] {
                 return Costs{threads_cost(most_threads, work), threads_cost(1, work)};
               },
           .target = target,
           .better = Better::higher});
}

}  // namespace

void add_thread_rows() {
  const std::string name = last_service(entries);
  add_threads_row("two threads / one (throughput)", "lookup",
                  [name](const std::filesystem::path &) { look_up(name, true); }, {1.9, 2.0});
  // What the machine gives two threads that share nothing at all.
  add_threads_row("R by two threads / by one (throughput)", "reading", read_stream, {});
}

}  // namespace bench
