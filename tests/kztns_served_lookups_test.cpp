// The lookups that are made of a text before it is written, and the file in memory that they
// read.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <string>
#include <vector>

#include <sys/resource.h>

#include <gtest/gtest.h>

#include "io/memory_file.h"
#include "lookup/served_lookups.h"

namespace {

using kztns::all_are_found;
using kztns::ServedName;

std::string entry(const std::string &name) {
  return name + " = (DESCRIPTION = (ADDRESS = (HOST = " + name + ")(PORT = 1)))\n";
}

std::vector<ServedName> names_in(const std::string &text) {
  return kztns::served_names(kztns::NamesText(text)).names();
}

// A lower limit for the time of its life.
class Limit {
 public:
  Limit(decltype(RLIMIT_FSIZE) which, rlim_t value) : which_(which) {
    getrlimit(which_, &before_);
    rlimit lower = before_;
    lower.rlim_cur = value;
    setrlimit(which_, &lower);
  }
  ~Limit() { setrlimit(which_, &before_); }
  Limit(const Limit &) = delete;
  Limit &operator=(const Limit &) = delete;

 private:
  decltype(RLIMIT_FSIZE) which_;
  rlimit before_ = {};
};

}  // namespace

TEST(ServedLookups, FindWhatATextServes) {
  const std::string text = entry("a") + entry("b");
  const std::vector<ServedName> names = names_in(text);
  ASSERT_EQ(names.size(), 2u);
  EXPECT_TRUE(all_are_found(text, names, names));
  EXPECT_TRUE(all_are_found(text, {}, names));
  EXPECT_TRUE(all_are_found(text, {}, {}));
}

TEST(ServedLookups, MissAnotherTree) {
  const std::string text = entry("a") + entry("b");
  const std::vector<ServedName> names = names_in(text);
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::vector<ServedName> others = names;
    ++others[i].tree;
    EXPECT_FALSE(all_are_found(text, {}, others));
    EXPECT_FALSE(all_are_found(text, {others[i]}, names));
  }
}

TEST(ServedLookups, MissWhatIsRefusedOrOutOfReach) {
  const std::string text = entry("a") + "b = (DESCRIPTION = (X = 1))\nstray\n" + entry("c");
  ServedName a = names_in(text).at(0);
  for (const std::string name : {"b = ", "c = "}) {
    ServedName other = a;
    other.at = static_cast<kztns::Offset>(text.find(name));
    EXPECT_FALSE(all_are_found(text, {}, {a, other})) << name;
  }
}

TEST(ServedLookups, PassOverWhatIsNoName) {
  const std::string text = entry("a");
  ServedName none = names_in(text).at(0);
  none.at = static_cast<kztns::Offset>(text.find('('));
  EXPECT_TRUE(all_are_found(text, {}, {none}));
}

// So many lookups so far into a file would take too long: every second one is made.
TEST(ServedLookups, AreMadeOfSomeNamesOfALargeText) {
  constexpr std::size_t long_way = 8 << 20;
  std::string text = "#" + std::string(long_way, 'c') + "\n";
  constexpr int count = 40;
  for (int i = 0; i < count; ++i) text += entry("n" + std::to_string(i));
  const auto with_fault_at = [&](std::size_t which) {
    std::vector<ServedName> names = names_in(text);
    std::sort(names.begin(), names.end(),
              [](const ServedName &left, const ServedName &right) { return left.at < right.at; });
    ++names.at(which).tree;
    return names;
  };
  EXPECT_FALSE(all_are_found(text, {}, with_fault_at(0)));
  EXPECT_TRUE(all_are_found(text, {}, with_fault_at(1)));
}

TEST(MemoryFile, KeepsWhatIsAppended) {
  kztns::MemoryFile file;
  EXPECT_EQ(file.text(), "");
  EXPECT_TRUE(file.append("one"));
  EXPECT_TRUE(file.append(" two"));
  EXPECT_EQ(file.text(), "one two");
  EXPECT_EQ(file.error(), 0);
}

TEST(MemoryFile, ThatCannotGrowSaysWhy) {
  const auto before = std::signal(SIGXFSZ, SIG_IGN);
  kztns::MemoryFile file;
  {
    const Limit limit(RLIMIT_FSIZE, 4);
    EXPECT_FALSE(file.append("12345"));
  }
  EXPECT_EQ(file.error(), EFBIG);
  // What came after that would stand at another place.
  EXPECT_FALSE(file.append("6"));
  EXPECT_EQ(file.text(), "1234");
  std::signal(SIGXFSZ, before);
}

TEST(MemoryFile, ThatCannotBeMadeSaysWhy) {
  const Limit limit(RLIMIT_NOFILE, 0);
  kztns::MemoryFile file;
  EXPECT_EQ(file.error(), EMFILE);
  EXPECT_FALSE(file.append("x"));
  EXPECT_EQ(file.text(), "");
}

// Without such a file what the library built is all there is.
TEST(ServedLookups, TakeTheWordOfTheBuildWithoutAFile) {
  const Limit limit(RLIMIT_NOFILE, 0);
  ServedName name = names_in(entry("a")).at(0);
  ++name.tree;
  EXPECT_TRUE(all_are_found(entry("a"), {}, {name}));
}
