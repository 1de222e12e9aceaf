// The fixture of tests that hold for all seeds: builds from files and literals,
// compared by outcome and tree, and a failure that tells its seed and input.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "memory_file.h"
#include "parsing.h"
#include "random.h"

namespace support {

inline constexpr Outcome found{0, 1};
inline constexpr Outcome refused{-1, 0};

// A container's outcome and text.
struct Built {
  Outcome outcome;
  std::string tree;

  bool operator==(const Built &other) const {
    return outcome == other.outcome && tree == other.tree;
  }
};

class Property : public ::testing::Test {
 protected:
  void TearDown() override { reset_platform(); }

  template <class Check>
  void for_seeds(std::uint64_t first, std::size_t count, Check check) {
    for (seed_ = first; seed_ < first + count && !HasFailure(); ++seed_) {
      Random random(seed_);
      check(random);
    }
  }

  // A container for lookups and literals, whose blocks are checked at the end.
  class Container {
   public:
    explicit Container(MemoryFile &file) : file_(file) {
      reset_platform();
      keep_log(false);
      KZCITnsInit(&tns_);
    }
    ~Container() {
      const bool sound = built_.outcome == found;
      EXPECT_EQ(KZCITnsClear(&tns_), 0);
      EXPECT_EQ(bad_releases(), 0u);
      if (sound) {
        EXPECT_TRUE(live_blocks().empty());
      }
    }
    Container(const Container &) = delete;
    Container &operator=(const Container &) = delete;

    Built look_up(const std::string &name, const std::string &text) {
      EXPECT_TRUE(file_.write(text));
      return build(name);
    }
    Built build(const std::string &identifier) {
      built_.outcome = support::build(tns_, identifier);
      built_.tree = full_tree(tns_);
      return built_;
    }
    const KZCITnsService *service() const { return tns_.tns_service; }

   private:
    MemoryFile &file_;
    KZCITns tns_;
    Built built_{};
  };

  Built look_up(const std::string &name, const std::string &text) {
    return Container(file_).look_up(name, text);
  }

  Built literal(const std::string &text) { return Container(file_).build(text); }

  void expect(const Built &seen, const Built &expected, const std::string &input,
              const std::string &other_input = "") {
    if (seen == expected) return;
    SCOPED_TRACE("seed " + std::to_string(seed_));
    SCOPED_TRACE("input " + ::testing::PrintToString(input));
    SCOPED_TRACE("other input " + ::testing::PrintToString(other_input));
    EXPECT_EQ(seen.outcome, expected.outcome);
    EXPECT_EQ(seen.tree, expected.tree);
  }

  MemoryFile file_;
  std::uint64_t seed_ = 0;
};

}  // namespace support
