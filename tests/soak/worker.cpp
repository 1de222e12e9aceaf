#include "worker.h"

#include <cstdio>
#include <mutex>

#include "memory_account.h"
#include "names_writer.h"
#include "support/parsing.h"
#include "support/random_input.h"
#include "support/random_mutation.h"

namespace {

// What the module has read of the names file in this thread's lookup: whatever the writer
// does meanwhile, the result must be the one of these characters.
thread_local std::string characters_read;

}  // namespace

extern "C" {
std::size_t __real_fread(void *, std::size_t, std::size_t, std::FILE *);

std::size_t __wrap_fread(void *to, std::size_t size, std::size_t count, std::FILE *file) {
  const std::size_t read = __real_fread(to, size, count, file);
  characters_read.append(static_cast<const char *>(to), read * size);
  return read;
}
}

namespace soak {
namespace {

constexpr std::size_t literal_count = 64;

std::string random_literal(support::Random &random) {
  support::Tokens tokens = support::random_description(random);
  if (random.one_in(3)) support::mutate_tokens(random, tokens);
  return support::write_literal(tokens, random, {true, true, true, true, true});
}

void print_surprise(const std::string &identifier, const std::string &text) {
  static std::mutex mutex;
  const std::lock_guard<std::mutex> lock(mutex);
  std::fprintf(stderr, "soak: not what the model says: identifier %s, read:\n%s\n",
               identifier.c_str(), text.c_str());
}

}  // namespace

Work &Work::operator+=(const Work &other) {
  lookups += other.lookups;
  found += other.found;
  refused += other.refused;
  literals += other.literals;
  reports += other.reports;
  blocks_lost += other.blocks_lost;
  bytes_lost += other.bytes_lost;
  surprises += other.surprises;
  return *this;
}

Worker::Worker(int number, std::uint64_t seed) : number_(number), random_(seed) {
  for (std::size_t i = 0; i < literal_count; ++i) literals_.push_back(random_literal(random_));
}

void Worker::play_round() {
  build(random_.pick(names));
  ++work_.lookups;
  build(random_.pick(literals_));
  ++work_.literals;
  report();
}

// A literal that was damaged may be looked up, too.
void Worker::build(const std::string &identifier) {
  characters_read.clear();
  KZCITns tns;
  KZCITnsInit(&tns);
  const support::Outcome outcome = support::build(tns, identifier);
  work_.found += outcome.find == 1 ? 1 : 0;
  work_.refused += outcome.status != 0 ? 1 : 0;
  if (is_as_expected(tns, outcome, model::predict(identifier, characters_read))) return;
  if (work_.surprises++ == 0) print_surprise(identifier, characters_read);
}

// The tree, what a program may release of it, and what no program can.
bool Worker::is_as_expected(KZCITns &tns, const support::Outcome &outcome,
                            const model::Prediction &expected) {
  const bool is_same_tree = outcome == support::Outcome{expected.status, expected.find} &&
                            support::full_tree(tns) == expected.tree &&
                            live_blocks() == expected.live;
  const bool is_cleared = KZCITnsClear(&tns) == 0;
  const model::Blocks lost = live_blocks();
  work_.blocks_lost += static_cast<long long>(lost.size());
  work_.bytes_lost += static_cast<long long>(release_live_blocks());
  return is_same_tree && is_cleared && lost == expected.lost;
}

// A buffer of any size, now and then one whose batch is longer than a file of the log.
void Worker::report() {
  constexpr std::size_t usual_length = 200;
  constexpr std::size_t long_length = 300000;
  const std::size_t longest = random_.one_in(500) ? long_length : usual_length;
  KZCISLowSQL slow_sql = {};
  sword status =
      KZCISlowSQLBufferInit(&slow_sql, static_cast<sb8>(random_.between(1, 4 * longest)));
  for (std::size_t left = random_.between(1, 8); left > 0; --left)
    status |= KZCISlowSQLWrite(&slow_sql, "thread %d report %lld %0*d\n", number_, work_.reports++,
                               static_cast<int>(random_.between(1, longest)), 0);
  status |= KZCISlowSQLBufferClear(&slow_sql);
  if (status != 0 || !live_blocks().empty()) ++work_.surprises;
}

}  // namespace soak
