// Memory that runs out while a lookup is explained: a status, and nothing is lost.
#include "kzoci/explain.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>

#include "support/parsing.h"

namespace {

// Which allocation from now on fails; 0: none.
int failing = 0;
long live = 0;

}  // namespace

extern "C" {
void *__real_malloc(std::size_t size);
void __real_free(void *block);

void *__wrap_malloc(std::size_t size) {
  if (failing > 0 && --failing == 0) return nullptr;
  ++live;
  return __real_malloc(size);
}

void __wrap_free(void *block) {
  if (block != nullptr) --live;
  __real_free(block);
}
}

// The library's C++ allocations come to the program, as those of any library.
void *operator new(std::size_t size) {
  void *const block = std::malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void operator delete(void *block) noexcept { std::free(block); }
void operator delete(void *block, std::size_t) noexcept { std::free(block); }

namespace {

const std::string good =
    "(DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))\n";

// Fails each allocation of an explanation in turn; gives the number that there are.
int fail_each(const char *identifier, std::size_t length, const char *file) {
  char line[64];
  // What the library makes once it keeps.
  EXPECT_EQ(kzoci_explain_line(identifier, length, file, line, sizeof line, nullptr), 0);
  for (int number = 1;; ++number) {
    kzoci_explanation *explanation = nullptr;
    const long before = live;
    failing = number;
    const int status = kzoci_explain(identifier, length, file, &explanation);
    const bool has_failed = failing == 0;
    failing = has_failed ? number : 0;
    const int line_status =
        kzoci_explain_line(identifier, length, file, line, sizeof line, nullptr);
    failing = 0;
    EXPECT_EQ(status, has_failed ? -1 : 0) << number;
    EXPECT_EQ(explanation == nullptr, has_failed) << number;
    if (line_status != 0) {
      EXPECT_EQ(line_status, -1);
      EXPECT_STREQ(line, "no memory to tell why");
    }
    kzoci_explanation_free(explanation);
    EXPECT_EQ(live, before) << number;
    if (!has_failed || testing::Test::HasFailure()) return number - 1;
  }
}

}  // namespace

TEST(ExplainMemory, EachAllocationThatFailsIsAStatus) {
  const support::TemporaryFolder folder;
  const std::string file =
      folder.write("names", "other = " + good + "Sales = " + good +
                                "x = (DESCRIPTION = (SERVER = x)(KZLB = perhaps))\n");
  const std::string missing = folder.path() + "/none";
  EXPECT_GT(fail_each("sales", 5, file.c_str()), 10);
  EXPECT_GT(fail_each("other", 5, file.c_str()), 10);
  EXPECT_GT(fail_each("x", 1, file.c_str()), 10);
  EXPECT_GT(fail_each("sales", 5, missing.c_str()), 3);
  const std::string literal = "(DESCRIPTION=(SERVER=x))";
  EXPECT_GT(fail_each(literal.data(), literal.size(), nullptr), 10);
}
