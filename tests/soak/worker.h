// What one thread does for as long as the soak lasts: lookups, literals and reports of
// slow statements, each held against what it must be.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "support/model_reader.h"
#include "support/parsing.h"
#include "support/random.h"

namespace soak {

struct Work {
  long long lookups = 0;
  long long found = 0;
  long long refused = 0;
  long long literals = 0;
  long long reports = 0;
  long long blocks_lost = 0;  // by contract: below the records of builders that failed
  long long bytes_lost = 0;
  long long surprises = 0;  // results that differ from the model's

  Work &operator+=(const Work &other);
};

class Worker {
 public:
  Worker(int number, std::uint64_t seed);

  // One lookup, one literal, some reports.
  void play_round();

  const Work &work() const { return work_; }

 private:
  void build(const std::string &identifier);
  void report();
  bool is_as_expected(KZCITns &tns, const support::Outcome &outcome,
                      const model::Prediction &expected);

  int number_;
  support::Random random_;
  std::vector<std::string> literals_;
  Work work_;
};

}  // namespace soak
