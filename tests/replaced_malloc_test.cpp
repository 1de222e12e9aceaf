// A program that replaces kzci_malloc alone gets kzci_free from the platform.
#include <gtest/gtest.h>

#include <cstdlib>

#include "kzoci/oci_tnsname.h"
#include "kzoci/platform/memory.h"

namespace {
int calls = 0;
}

void *kzci_malloc(size_t size, const char *) {
  ++calls;
  return std::malloc(size);
}

TEST(ReplacedPlatform, TakesMallocAlone) {
  KZCISLowSQL slowsql = {};
  ASSERT_EQ(KZCISlowSQLBufferInit(&slowsql, 64), 0);
  EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql), 0);
  EXPECT_EQ(calls, 1);
}
