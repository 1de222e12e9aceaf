// An entry that is refused for nothing that stands in it: memory runs out.
#include <cstddef>

#include <gtest/gtest.h>

#include "check/check_file.h"
#include "kzoci/platform/memory.h"
#include "text/names_text.h"

namespace {

// Which allocation from now on fails; 0: none.
int failing = 0;
bool has_failed = false;

}  // namespace

extern "C" {
void *__real_kzci_malloc(std::size_t size, const char *tag);

void *__wrap_kzci_malloc(std::size_t size, const char *tag) {
  if (failing > 0 && --failing == 0) {
    has_failed = true;
    return nullptr;
  }
  return __real_kzci_malloc(size, tag);
}
}

TEST(Memory, ThatRunsOutIsNoFaultOfTheEntry) {
  const kztns::NamesText text(
      "sales = (DESCRIPTION = (ADDRESS_LIST = (ADDRESS = (HOST = h)(PORT = 1)))\n"
      "  (CONNECT_DATA = (SID = s)))\n");
  constexpr int records = 5;  // service, description, list, address, connect data
  for (int number = 1; number <= records + 1; ++number) {
    SCOPED_TRACE(number);
    failing = number;
    has_failed = false;
    const kztns::CheckReport report =
        kztns::check_file(text, {.file = "names", .with_entries = true});
    failing = 0;
    ASSERT_EQ(has_failed, number <= records);
    ASSERT_EQ(report.entries.size(), 1u);
    if (!has_failed) {
      EXPECT_EQ(report.entries[0].verdict, kztns::Verdict::ok);
      EXPECT_TRUE(report.findings.empty());
      continue;
    }
    EXPECT_EQ(report.entries[0].verdict, kztns::Verdict::refused);
    ASSERT_EQ(report.findings.size(), 1u);
    EXPECT_EQ(report.findings[0].rule, kztns::Rule::unexplained);
    EXPECT_EQ(report.findings[0].position.line, number == records ? 2u : 1u);
  }
}
