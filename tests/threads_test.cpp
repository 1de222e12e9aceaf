// Many threads at once, each with containers, streams and buffers of its own, and
// all with one names file and the default logger: every result is the one that a
// single thread gets. Meant for the thread sanitizer as well.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "kzoci/platform/default_logger.h"
#include "support/parsing.h"

namespace {

using support::build;
using support::Outcome;

constexpr int thread_count = 8;
constexpr int rounds = 10000;

constexpr char names_file[] =
    "# for everyone\n"
    "alpha = (DESCRIPTION = (ADDRESS_LIST = (ADDRESS = (HOST = a)(PORT = 1))\n"
    "  (ADDRESS = (HOST = b)(PORT = 2))) (CONNECT_DATA = (SERVICE_NAME = s)))\n"
    "bad = (DESCRIPTION = (ADDRESS = (WEIGHT = x)))\n"
    "beta = (DESCRIPTION = (ADDRESS = (HOST = c)) (ADDRESS_LIST = (ADDRESS = (HOST = d)))\n"
    "  (KZLB_BLACKLIST = (REMOVE_STRATEGY = (TIMEOUT = 7))))\n"
    "KZCISYSTEMVARIABLES = (LOG_COUNT = 3)(LOG_LEVEL = INFO)\n";

constexpr const char *names[] = {"alpha", "beta", "bad", "KZCISYSTEMVARIABLES", "none"};
constexpr int name_count = 5;
static_assert(rounds % name_count == 0);

constexpr char literal[] =
    "(DESCRIPTION=(ADDRESS=(HOST=l)(PORT=9))(CONNECT_DATA=(SID=t)(KZ_USER_EXTRA_INFO=u)))";

// A stream into memory that is written again and again.
class TextStream {
 public:
  TextStream() : file_(open_memstream(&text_, &length_)) {}
  ~TextStream() {
    std::fclose(file_);
    std::free(text_);
  }
  TextStream(const TextStream &) = delete;
  TextStream &operator=(const TextStream &) = delete;

  FILE *file() const { return file_; }

  // What was written since the last call.
  std::string take() {
    std::fflush(file_);
    std::string out(text_, length_);
    std::rewind(file_);
    return out;
  }

 private:
  char *text_ = nullptr;
  std::size_t length_ = 0;
  FILE *file_;
};

// What a thread sees in one round.
struct Seen {
  Outcome looked_up;
  Outcome built;
  std::string tree;
  std::string dump;
  std::string link;
  sword failures;  // Statuses that ought to be 0, added up.

  bool operator==(const Seen &) const = default;
};

// Every service, and records of the first one by themselves.
void dump_tree(const KZCITns &tns, FILE *file, sword &failures) {
  KZCITnsService *service = tns.tns_service;
  for (ub4 i = 0; i < tns.tns_service_count; ++i, service = KZCITnsServiceNext(service))
    failures |= KZCITnsServiceDisplay(service, file);
  KZCIDescription *const des = tns.tns_service->description;
  if (des == nullptr) return;
  failures |= KZCIAddressListDisplay(des->address_list, file);
  if (des->connect_data != nullptr) failures |= KZCIConnectDataDisplay(des->connect_data, file);
}

std::string link_of(KZCITnsService *service) {
  char dblink[256];
  sb4 length = 0;
  const sword status = KZCITnsServiceDblinkGet(service, dblink, &length);
  return std::to_string(status) + " " + std::string(dblink, static_cast<std::size_t>(length));
}

sword report_slow_statement(const std::string &text) {
  KZCISLowSQL slowsql = {};
  sword failures = KZCISlowSQLBufferInit(&slowsql, 64);
  failures |= KZCISlowSQLWrite(&slowsql, "%s", text.c_str());
  failures |= KZCISlowSQLBufferClear(&slowsql);
  return failures;
}

// One name is looked up and one literal built into a container; the tree is
// read, printed and released.
Seen play_round(int round, TextStream &stream) {
  Seen seen = {};
  KZCITns tns;
  KZCITnsInit(&tns);
  seen.looked_up = build(tns, names[round % name_count]);
  seen.built = build(tns, literal);
  seen.tree = support::full_tree(tns);
  dump_tree(tns, stream.file(), seen.failures);
  seen.dump = stream.take();
  seen.link = link_of(tns.tns_service);
  seen.failures |= report_slow_statement(seen.link);
  seen.failures |= KZCITnsClear(&tns);
  return seen;
}

// Records of the log by their level. The logger calls the sink by one thread at a
// time, so that nothing here is guarded.
struct Counts {
  std::array<long, LOG_LEVEL_SLOWSQL + 1> records = {};
  long characters = 0;

  bool operator==(const Counts &) const = default;
};

void count_record(void *context, const kzoci_log_record *record) {
  auto &counts = *static_cast<Counts *>(context);
  ++counts.records[record->level];
  counts.characters += static_cast<long>(record->text_len);
}

// Sends the log to the counts while it exists.
class CountedLog {
 public:
  explicit CountedLog(log_level threshold) : former_(kzoci_log_threshold()) {
    kzoci_log_set_threshold(threshold);
    kzoci_log_set_sink(count_record, &counts_);
  }
  ~CountedLog() {
    kzoci_log_set_sink(nullptr, nullptr);
    kzoci_log_set_threshold(former_);
  }
  CountedLog(const CountedLog &) = delete;
  CountedLog &operator=(const CountedLog &) = delete;

  // Goes back to where lines are written: nothing is counted any more.
  Counts take() {
    kzoci_log_set_sink(nullptr, nullptr);
    return counts_;
  }

 private:
  Counts counts_;
  log_level former_;
};

class Threads : public testing::Test {
 protected:
  void SetUp() override {
    environment_.set("KZCI_TNS_FILE", folder_.write("names.ora", names_file));
  }

  // What a single thread sees in each of the rounds that differ.
  static std::vector<Seen> play_alone() {
    TextStream stream;
    std::vector<Seen> seen;
    for (int round = 0; round < name_count; ++round) seen.push_back(play_round(round, stream));
    return seen;
  }

  // The number of rounds in which a thread sees anything else.
  static int play(const std::vector<Seen> &expected, int first_round) {
    TextStream stream;
    int surprises = 0;
    for (int i = 0; i < rounds; ++i) {
      const int round = first_round + i;
      const Seen seen = play_round(round, stream);
      surprises += !(seen == expected[static_cast<std::size_t>(round % name_count)]);
    }
    return surprises;
  }

  support::Environment environment_;
  support::TemporaryFolder folder_;
};

TEST_F(Threads, ASingleOneSeesWhatIsInTheFile) {
  const CountedLog log(LOG_LEVEL_WARN);
  const std::vector<Seen> seen = play_alone();
  const Outcome found = {0, 1}, absent = {0, 0}, malformed = {-1, 0};
  const Outcome looked_up[] = {found, found, malformed, found, absent};
  const std::string links[] = {"0 a:1/s", "-1 ", "0 l:9/t", "-1 ", "0 l:9/t"};
  for (std::size_t i = 0; i < name_count; ++i) {
    SCOPED_TRACE(names[i]);
    EXPECT_EQ(seen[i].looked_up, looked_up[i]);
    EXPECT_EQ(seen[i].built, found);
    EXPECT_EQ(seen[i].link, links[i]);
    EXPECT_EQ(seen[i].failures, 0);
    EXPECT_EQ(seen[i].tree.substr(0, 11), looked_up[i] == found ? "services=2\n" : "services=1\n");
  }
}

TEST_F(Threads, AllSeeWhatASingleOneSees) {
  CountedLog log_alone(LOG_LEVEL_WARN);
  const std::vector<Seen> expected = play_alone();
  const Counts alone = log_alone.take();

  CountedLog log(LOG_LEVEL_WARN);
  std::array<int, thread_count> surprises = {};
  std::latch start(thread_count);
  std::vector<std::thread> threads;
  for (int i = 0; i < thread_count; ++i)
    threads.emplace_back([&, i] {
      start.arrive_and_wait();
      surprises[static_cast<std::size_t>(i)] = play(expected, i);
    });
  for (std::thread &thread : threads) thread.join();

  EXPECT_EQ(surprises, (std::array<int, thread_count>{}));
  const Counts counts = log.take();
  constexpr long times = thread_count * (rounds / name_count);
  for (int level = LOG_LEVEL_TRACE; level <= LOG_LEVEL_SLOWSQL; ++level) {
    SCOPED_TRACE(level);
    const auto at = static_cast<std::size_t>(level);
    EXPECT_EQ(counts.records[at], times * alone.records[at]);
  }
  EXPECT_EQ(counts.characters, times * alone.characters);
  EXPECT_EQ(counts.records[LOG_LEVEL_SLOWSQL], long{thread_count} * rounds);
  EXPECT_EQ(counts.records[LOG_LEVEL_DEBUG], 0);
}

}  // namespace
