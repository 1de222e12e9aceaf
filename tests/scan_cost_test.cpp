// What a lookup costs, counted: allocations, log calls, reads, stack. No clock.
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "kzoci/platform/memory.h"

namespace {

struct Counts {
  std::size_t logs = 0;
  std::size_t allocations = 0;
  std::size_t releases = 0;
  std::size_t reads = 0;
};

Counts counts;

}  // namespace

extern "C" {

void kzoci_log_inner(log_level, const char *, int, const char *, ...) { ++counts.logs; }

void *kzci_malloc(size_t size, const char *) {
  ++counts.allocations;
  return std::malloc(size);
}

void kzci_free(void *pointer) {
  ++counts.releases;
  std::free(pointer);
}

std::size_t __real_fread(void *, std::size_t, std::size_t, std::FILE *);

std::size_t __wrap_fread(void *to, std::size_t size, std::size_t count, std::FILE *file) {
  ++counts.reads;
  return __real_fread(to, size, count, file);
}
}

namespace {

constexpr std::size_t slice = 1024;
// Service, description, address list, address, connect data.
constexpr std::size_t records_of_an_entry = 5;

std::string name_of(std::size_t number) {
  std::string digits = std::to_string(number);
  return "svc" + std::string(6 - digits.size(), '0') + digits;
}

std::string entry(std::size_t number) {
  return name_of(number) +
         " =\n  (DESCRIPTION =\n    (ADDRESS_LIST =\n      (ADDRESS = (PROTOCOL = TCP)(HOST = h)"
         "(PORT = 2881))\n    )\n    (CONNECT_DATA = (SERVICE_NAME = s))\n  )\n";
}

class ScanCost : public testing::Test {
 protected:
  void SetUp() override {
    path_ = (std::filesystem::temp_directory_path() / "kzoci_scan_XXXXXX").string();
    close(mkstemp(path_.data()));
    setenv("KZCI_TNS_FILE", path_.c_str(), 1);
  }
  void TearDown() override {
    unsetenv("KZCI_TNS_FILE");
    std::filesystem::remove(path_);
  }

  void write_entries(std::size_t number) {
    std::string text;
    for (std::size_t i = 0; i < number; ++i) text += entry(i);
    std::ofstream(path_, std::ios::binary) << text;
    length_ = text.size();
  }

  // Looks a name up and releases what was built.
  Counts look_up(const std::string &name, boolean expected_find = 1) {
    counts = {};
    KZCITns tns;
    boolean find = 7;
    KZCITnsInit(&tns);
    EXPECT_EQ(KZCITnsBuild(&tns, reinterpret_cast<const OraText *>(name.c_str()),
                           static_cast<ub4>(name.size()), &find),
              0);
    EXPECT_EQ(find, expected_find) << name;
    Counts built = counts;
    KZCITnsClear(&tns);
    built.releases = counts.releases;
    return built;
  }

  std::string path_;
  std::size_t length_ = 0;
};

TEST_F(ScanCost, AllocationsAreTheRecordsWhereverTheEntryStands) {
  write_entries(500);
  for (const std::size_t number : std::initializer_list<std::size_t>{0, 1, 250, 499}) {
    const Counts one = look_up(name_of(number));
    EXPECT_EQ(one.allocations, records_of_an_entry) << number;
    EXPECT_EQ(one.releases, records_of_an_entry) << number;
  }
}

TEST_F(ScanCost, AnAbsentNameAllocatesNothing) {
  write_entries(500);
  const Counts one = look_up("absent", 0);
  EXPECT_EQ(one.allocations, 0u);
  EXPECT_EQ(one.releases, 0u);
}

TEST_F(ScanCost, ALiteralAllocatesItsRecords) {
  const Counts one = look_up(
      "(DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(HOST=a)(PORT=1))(ADDRESS=(HOST=b)(PORT=2)))"
      "(CONNECT_DATA=(SERVICE_NAME=s)))");
  EXPECT_EQ(one.allocations, records_of_an_entry + 1);
  EXPECT_EQ(one.releases, records_of_an_entry + 1);
  EXPECT_EQ(one.reads, 0u);
}

// The lookup stops after the token that ends the entry: the next entry's name,
// of which it looks at the first character.
TEST_F(ScanCost, ReadsAreTheSlicesUpToWhereTheLookupStops) {
  write_entries(500);
  const std::size_t width = entry(0).size();
  for (const std::size_t number : std::initializer_list<std::size_t>{0, 1, 5, 6, 7, 250, 498}) {
    const std::size_t stop = (number + 1) * width + 1;
    EXPECT_EQ(look_up(name_of(number)).reads, (stop + slice - 1) / slice) << number;
  }
}

TEST_F(ScanCost, TheEndOfTheFileIsOneReadMore) {
  write_entries(500);
  const std::size_t slices = (length_ + slice - 1) / slice;
  EXPECT_EQ(look_up(name_of(499)).reads, slices + 1);
  EXPECT_EQ(look_up("absent", 0).reads, slices + 1);
}

// An entry passed costs the record of its name and the record that it is not the
// one; a refill costs one.
TEST_F(ScanCost, TwoLogCallsForAnEntryPassedAndOneForARefill) {
  write_entries(500);
  const Counts first = look_up(name_of(0));
  for (const std::size_t number : std::initializer_list<std::size_t>{1, 7, 250, 498}) {
    const Counts one = look_up(name_of(number));
    EXPECT_EQ(one.logs - first.logs, 2 * number + (one.reads - first.reads)) << number;
  }
}

#if defined(KZOCI_SANITIZED)
constexpr std::size_t stack_limit = 128 * 1024;  // instrumented frames are larger
#else
constexpr std::size_t stack_limit = 16 * 1024;
#endif

constexpr unsigned char paint = 0xC3;

void *look_up_last(void *name) {
  const auto *const text = static_cast<const std::string *>(name);
  KZCITns tns;
  boolean find = 0;
  KZCITnsInit(&tns);
  KZCITnsBuild(&tns, reinterpret_cast<const OraText *>(text->c_str()),
               static_cast<ub4>(text->size()), &find);
  KZCITnsClear(&tns);
  return nullptr;
}

void *do_nothing(void *) { return nullptr; }

// The part of a painted stack that a thread running this function has touched.
std::size_t stack_used(void *(*function)(void *), void *argument) {
  constexpr std::size_t size = 1024 * 1024;
  std::vector<unsigned char> stack(size, paint);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack.data(), size);
  pthread_t thread;
  EXPECT_EQ(pthread_create(&thread, &attributes, function, argument), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  const auto touched =
      std::find_if(stack.begin(), stack.end(), [](unsigned char c) { return c != paint; });
  return static_cast<std::size_t>(stack.end() - touched);
}

TEST_F(ScanCost, StackIsBoundedAndIndependentOfTheFile) {
  std::string last = name_of(9);
  write_entries(10);
  look_up(last);  // the program's loader has found every function by now
  const std::size_t of_the_thread = stack_used(do_nothing, nullptr);
  const std::size_t short_file = stack_used(look_up_last, &last) - of_the_thread;
  last = name_of(4999);
  write_entries(5000);
  const std::size_t long_file = stack_used(look_up_last, &last) - of_the_thread;
  EXPECT_LE(short_file, stack_limit);
  EXPECT_LE(long_file, stack_limit);
  RecordProperty("stack", static_cast<int>(long_file));
}

}  // namespace
