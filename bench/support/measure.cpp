#include "support/measure.h"

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace bench {

namespace {

Options the_options;

double measurement_seconds() { return options().quick ? 0.006 : 0.03; }
int repetitions_of(const Row &row) {
  if (row.repetitions != 0) return row.repetitions;
  return options().quick ? 9 : 15;
}

// The clock is the thread's processor time: what other programs take of the
// machine is not counted, and nothing that is measured here waits.
double processor_seconds() {
  timespec now = {};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double seconds_of(const Work &work, long times) {
  const double start = processor_seconds();
  work(times);
  return processor_seconds() - start;
}

// How many times fill a measurement. What is done first warms caches up.
long calibrate(const Work &work) {
  work(1);
  const double wanted = measurement_seconds();
  for (long times = 1;; times *= 2) {
    const double seconds = seconds_of(work, times);
    if (seconds >= wanted / 4)
      return std::max(1L, std::lround(wanted / seconds * static_cast<double>(times)));
  }
}

// A row while it runs: what setup prepared lasts from the first repetition to the
// last one.
struct RunningRow {
  Row row;
  std::optional<Costs> costs = {};
  int done = 0;
};

void measure(benchmark::State &state, RunningRow &running) {
  const Row &row = running.row;
  if (!running.costs) running.costs = row.setup();
  double a = 0;
  double b = 0;
  for ([[maybe_unused]] auto _ : state) {
    a = running.costs->a();
    b = running.costs->b();
  }
  if (++running.done == repetitions_of(row)) running.costs.reset();
  const bool higher = row.better == Better::higher;
  state.counters["ratio"] = higher ? b / a : a / b;
  state.counters["a"] = a;
  state.counters["b"] = b;
  // What a row does not have is left out.
  const auto note = [&](const char *name, double value) {
    if (value != 0) state.counters[name] = value;
  };
  note("must", row.target.must);
  note("goal", row.target.goal);
  note("higher_is_better", higher ? 1 : 0);
  note("size", row.growth.size);
  note("growth_must", row.growth.must);
  state.SetLabel(row.unit + ";" + row.growth.group);
}

// Shows on a terminal how far the run is; the results go to the file that
// --benchmark_out names.
class Progress : public benchmark::BenchmarkReporter {
 public:
  explicit Progress(bool shown) : shown_(shown) {}
  bool ReportContext(const Context &) override { return true; }
  void ReportRuns(const std::vector<Run> &runs) override {
    ++rows_;
    if (shown_ && !runs.empty())
      std::fprintf(stderr, "\r%3d  %-60s", rows_, runs.front().run_name.function_name.c_str());
  }
  void Finalize() override {
    if (shown_) std::fprintf(stderr, "\r%65s\r", "");
  }

 private:
  bool shown_;
  int rows_ = 0;
};

std::string processor_name() {
  std::ifstream cpuinfo("/proc/cpuinfo");
  for (std::string line; std::getline(cpuinfo, line);)
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  return "unknown";
}

std::string compiler_name() {
#if defined(__clang__)
  return __VERSION__;
#else
  return std::string("g++ ") + __VERSION__;
#endif
}

bool read_options(int argc, char **argv) {
  constexpr std::string_view files = "--files=";
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "--quick")
      the_options.quick = true;
    else if (argument.starts_with(files))
      the_options.files = std::filesystem::absolute(argument.substr(files.size()));
    else
      return false;
  }
  return std::filesystem::is_directory(the_options.files);
}

}  // namespace

const Options &options() { return the_options; }

void fail(const std::string &what) {
  std::fprintf(stderr, "error: %s\n", what.c_str());
  std::exit(1);
}

Cost cost_of(Work work, double units) {
  long times = 0;
  return [work = std::move(work), units, times]() mutable {
    if (times == 0) times = calibrate(work);
    return seconds_of(work, times) * 1e9 / static_cast<double>(times) / units;
  };
}

void add_row(Row row) {
  const std::string name = row.name;
  const int repetitions = repetitions_of(row);
  auto running = std::make_shared<RunningRow>(RunningRow{std::move(row)});
  benchmark::RegisterBenchmark(name.c_str(),
                               [running](benchmark::State &state) { measure(state, *running); })
      ->Iterations(1)
      ->Repetitions(repetitions)
      ->ReportAggregatesOnly();
}

std::string with_commas(long number) {
  std::string text = std::to_string(number);
  for (std::size_t at = text.size(); at > 3;) text.insert(at -= 3, 1, ',');
  return text;
}

int run_rows(int argc, char **argv, const std::function<void()> &add_rows) {
  // The heap keeps what it has: returning pages to the system and getting them back,
  // for every large descriptor, is not a cost of the library.
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  mallopt(M_TOP_PAD, 1 << 24);

  benchmark::Initialize(&argc, argv);
  if (!read_options(argc, argv)) {
    std::fprintf(stderr, "usage: %s --files=FOLDER [--quick] [--benchmark_...]\n", argv[0]);
    return 64;
  }
  benchmark::AddCustomContext("processor", processor_name());
  benchmark::AddCustomContext("compiler", compiler_name());
  benchmark::AddCustomContext("mode", options().quick ? "quick" : "full");
  add_rows();
  Progress progress(::isatty(STDERR_FILENO) != 0);
  benchmark::RunSpecifiedBenchmarks(&progress);
  benchmark::Shutdown();
  return 0;
}

}  // namespace bench
