// A long run of one process: eight threads work with one names file, which a ninth changes
// all the time, and with one rotated log. At the end the account is made: memory,
// descriptors, lines of the log, results.
//
//   soak SECONDS [SEED]
#include <malloc.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "log_account.h"
#include "memory_account.h"
#include "names_writer.h"
#include "support/parsing.h"
#include "worker.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int thread_count = 8;
constexpr sb8 log_size = 256 * 1024;
constexpr ub4 log_files = 4;
constexpr int changes_per_opening = 20;

// However slow the machine: enough for everything to have happened.
constexpr int least_rounds = 200;
constexpr int least_changes = 2 * changes_per_opening;

long long open_descriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return std::distance(begin(all), end(all));
}

// What the process holds: of the C library's allocator, and of the machine's memory.
struct Held {
  long long allocated = 0;
  long long resident = 0;
};

Held held_memory() {
  const struct mallinfo2 info = mallinfo2();
  long long ignored = 0, pages = 0;
  std::ifstream("/proc/self/statm") >> ignored >> pages;
  return {static_cast<long long>(info.uordblks), pages * sysconf(_SC_PAGESIZE)};
}

struct Run {
  soak::Work work;
  soak::NamesWriter::Counts changes = {};
  long long openings = 0;  // of the log

  Run &operator+=(const Run &other) {
    work += other.work;
    for (std::size_t i = 0; i < changes.size(); ++i) changes[i] += other.changes[i];
    openings += other.openings;
    return *this;
  }
};

Run run(const std::string &names_file, std::chrono::milliseconds duration, std::uint64_t seed) {
  const auto start = Clock::now();
  const auto is_over = [=] { return Clock::now() - start >= duration; };
  Run run;
  soak::NamesWriter writer(names_file, seed);
  std::vector<std::unique_ptr<soak::Worker>> workers;
  std::vector<std::thread> threads;
  for (int i = 0; i < thread_count; ++i) {
    workers.push_back(std::make_unique<soak::Worker>(i, seed + 1 + static_cast<std::uint64_t>(i)));
    threads.emplace_back([&worker = *workers.back(), is_over] {
      for (int rounds = 0; rounds < least_rounds || !is_over(); ++rounds) worker.play_round();
    });
  }
  for (int changes = 0; changes < least_changes || !is_over();) {
    writer.change();
    // Now and then the log is opened anew while the threads write to it.
    if (++changes % changes_per_opening == 0 && soak::open_log()) ++run.openings;
  }
  for (std::thread &thread : threads) thread.join();
  for (const auto &worker : workers) run.work += worker->work();
  run.changes = writer.counts();
  return run;
}

// Prints lines of the account; remembers whether all of them are as they must be.
class Account {
 public:
  void line(const char *what, long long count) { std::printf("%-44s %14lld\n", what, count); }

  void must_be(const char *what, long long count, long long expected) {
    verdict(what, count, count == expected, "must be", expected);
  }
  void must_not_exceed(const char *what, long long count, long long most) {
    verdict(what, count, count <= most, "must not exceed", most);
  }
  // What a soak is for must have happened at all.
  void must_happen(const char *what, long long count) {
    verdict(what, count, count > 0, "must exceed", 0);
  }

  bool is_good() const { return is_good_; }

 private:
  void verdict(const char *what, long long count, bool good, const char *rule, long long limit) {
    line(what, count);
    if (good) return;
    std::printf("  error: %s %lld\n", rule, limit);
    is_good_ = false;
  }

  bool is_good_ = true;
};

// Sanitizers and emulators have memory of their own in the process.
#if defined(KZOCI_SHARED_PROCESS)
constexpr bool is_process_shared = true;
#else
constexpr bool is_process_shared = false;
#endif

void account_for_work(Account &account, const Run &run) {
  account.must_happen("lookups", run.work.lookups);
  account.must_happen("  found", run.work.found);
  account.must_happen("  refused", run.work.refused);
  account.must_happen("literals", run.work.literals);
  account.must_happen("slow-statement reports", run.work.reports);
  for (std::size_t i = 0; i < run.changes.size(); ++i)
    account.must_happen((std::string("names file ") + soak::NamesWriter::change_names[i]).c_str(),
                        run.changes[i]);
  account.must_be("results that differ from the model's", run.work.surprises, 0);
}

void account_for_memory(Account &account, const Run &run, const Held &before, const Held &after) {
  const soak::MemoryTotals totals = soak::memory_totals();
  account.line("blocks allocated", totals.allocated);
  account.line("blocks released", totals.released);
  account.must_be("blocks left by contract", run.work.blocks_lost,
                  totals.allocated - totals.released);
  account.line("  their bytes", run.work.bytes_lost);
  account.must_be("releases of what is not allocated", totals.bad_releases, 0);
  if (is_process_shared) return;
  constexpr long long slack = 64 * 1024;  // the C library's own
  constexpr long long resident_slack = 4 * 1024 * 1024;
  account.line("bytes held by the allocator before", before.allocated);
  account.must_not_exceed("bytes held by the allocator after", after.allocated,
                          before.allocated + slack);
  account.line("bytes resident before", before.resident);
  account.must_not_exceed("bytes resident after", after.resident, before.resident + resident_slack);
}

void account_for_log(Account &account, const soak::LogAccount &log, long long openings) {
  account.must_happen("openings of the log", openings);
  account.must_happen("lines handed to the log", log.handed_over.count);
  account.line("  in files that rotation dropped", log.dropped.count);
  account.line("  in files that are left", log.left.count);
  account.must_be("  lost or torn", log.handed_over.count - log.dropped.count - log.left.count, 0);
  account.must_be("  whose text differs",
                  log.handed_over.checksum != log.dropped.checksum + log.left.checksum ? 1 : 0, 0);
  account.must_happen("rotations", log.rotations);
  account.must_be("files above the limit by more than a record", log.files_too_large, 0);
  account.must_be("files that end within a line", log.broken_ends, 0);
}

}  // namespace

int main(int count, char **arguments) {
  const int seconds = count > 1 ? std::atoi(arguments[1]) : 0;
  if (seconds < 1) {
    std::fprintf(stderr, "usage: soak SECONDS [SEED]\n");
    return 2;
  }
  const std::uint64_t seed = count > 2 ? std::strtoull(arguments[2], nullptr, 10) : 1;

  // Large blocks go back to the system at once: what is resident tells of growth then.
  mallopt(M_MMAP_THRESHOLD, 128 * 1024);
  const support::TemporaryFolder folder;
  const std::string names_file = folder.path() + "/names.ora";
  support::Environment environment;
  environment.set("KZCI_TNS_FILE", names_file);

  const long long descriptors_before = open_descriptors();
  soak::choose_log(folder.path() + "/log", log_size, log_files);
  if (!soak::open_log()) return 2;
  // A tenth of the time goes by before memory is looked at: by then all of it has been used.
  const auto duration = std::chrono::milliseconds(seconds * 1000LL);
  Run done = run(names_file, duration / 10, seed);
  const Held before = held_memory();
  done += run(names_file, duration - duration / 10, seed + thread_count + 1);
  const Held after = held_memory();
  const soak::LogAccount log = soak::close_log();

  Account account;
  std::printf("%d threads, %d seconds, seed %llu\n", thread_count, seconds,
              static_cast<unsigned long long>(seed));
  account_for_work(account, done);
  account_for_memory(account, done, before, after);
  account_for_log(account, log, done.openings);
  account.must_be("open descriptors", open_descriptors(), descriptors_before);
  return account.is_good() ? 0 : 1;
}
