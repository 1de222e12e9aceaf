// Somebody who changes the names file while it is read, in every way in which editors,
// scripts and copies do.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "support/random.h"

namespace soak {

// Names that entries of the file have, and one that none has.
inline constexpr const char *names[] = {"alpha", "beta", "gamma", "delta", "epsilon", "absent"};

class NamesWriter {
 public:
  enum Change { rewritten, truncated, replaced, removed, change_count };
  static constexpr const char *change_names[] = {"rewritten in place", "truncated", "replaced",
                                                 "removed"};
  using Counts = std::array<long long, change_count>;

  NamesWriter(std::string path, std::uint64_t seed);

  // One change of the file, half of whose time the file stays as it is.
  void change();

  const Counts &counts() const { return counts_; }

 private:
  void rewrite(const std::string &text);
  void truncate();
  void replace(const std::string &text);
  void remove();

  std::string path_;
  support::Random random_;
  std::vector<std::string> texts_;
  Counts counts_ = {};
};

}  // namespace soak
