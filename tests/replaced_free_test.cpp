// A program that replaces kzci_free alone gets kzci_malloc from the platform.
#include <gtest/gtest.h>

#include <cstdlib>

#include "kzoci/oci_tnsname.h"
#include "kzoci/platform/memory.h"

namespace {
int calls = 0;
}

void kzci_free(void *block) {
  ++calls;
  std::free(block);
}

TEST(ReplacedPlatform, TakesFreeAlone) {
  KZCISLowSQL slowsql = {};
  ASSERT_EQ(KZCISlowSQLBufferInit(&slowsql, 64), 0);
  EXPECT_EQ(KZCISlowSQLBufferClear(&slowsql), 0);
  EXPECT_EQ(calls, 1);
}
