// The records of the module's log: what reaches kzoci_log_inner is their formats, so that
// a program can count, translate or drop them by these.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <set>
#include <string>
#include <utility>

#include "kzoci/oci_tnsname/messages.h"
#include "support/joined.h"
#include "support/log_messages.h"
#include "support/parsing.h"

namespace {

using kzoci::tns::is_printed_by;
using kzoci::tns::MessageRow;
using kzoci::tns::messages;

static_assert(is_printed_by<>("plain"));
static_assert(is_printed_by<int>("%d"));
static_assert(is_printed_by<unsigned, int, const char *>("a %u b %.*s"));
static_assert(is_printed_by<const char *, const void *, unsigned long>("%s%p %lu"));
static_assert(!is_printed_by<>("%d"));
static_assert(!is_printed_by<int>("plain"));
static_assert(!is_printed_by<int>("%u"));
static_assert(!is_printed_by<int>("%d %d"));
static_assert(!is_printed_by<int, int>("%d"));
static_assert(!is_printed_by<const char *>("%.*s"));
static_assert(!is_printed_by<unsigned, const char *>("%.*s"));
static_assert(!is_printed_by<int, int>("%.*s"));

class Messages : public testing::Test {
 protected:
  void SetUp() override {
    support::reset_platform();
    KZCITnsInit(&tns_);
  }
  void TearDown() override {
    KZCITnsClear(&tns_);
    support::reset_platform();
  }

  static bool is_logged(const std::string &format) {
    const auto formats = support::log_formats();
    return std::find(formats.begin(), formats.end(), format) != formats.end();
  }

  KZCITns tns_;
};

// Levels and texts, in order.
template <class Rows>
std::string texts_of(const Rows &rows) {
  std::set<std::string> texts;
  for (const auto &row : rows)
    EXPECT_TRUE(texts.insert(std::to_string(row.level) + " " + row.format).second) << row.format;
  return support::joined({texts.begin(), texts.end()});
}

// Nor do two have the same level and text.
TEST_F(Messages, AreTheOnesWrittenDownHere) {
  EXPECT_EQ(texts_of(messages), texts_of(support::log_messages));
}

TEST_F(Messages, NoneIsABareText) {
  for (const MessageRow &row : messages) EXPECT_STRNE(row.format, "%s") << row.name;
}

TEST_F(Messages, RefusedKeysAreTheirOwnFormats) {
  const std::pair<const char *, const char *> rows[] = {
      {"(DESCRIPTION=(SID=s))", "KZCIDescriptionBuild get error key_type"},
      {"(DESCRIPTION=(ADDRESS_LIST=(SID=s)))", "KZCIAddressListBuild get error key_type"},
      {"(DESCRIPTION=(ADDRESS=(SID=s)))", "KZCIAddressBuild get error key_type"},
      {"(DESCRIPTION=(CONNECT_DATA=(HOST=h)))", "KZCIConnectDataBuild get error key_type"},
      {"(DESCRIPTION=(KZLB_BLACKLIST=(SID=s)))", "build_black_list_conf get error key_type"},
      {"(DESCRIPTION=(KZLB_BLACKLIST=(REMOVE_STRATEGY=(SID=s))))", "get error key_type"},
  };
  for (const auto &[literal, format] : rows) {
    SCOPED_TRACE(literal);
    support::build(tns_, literal);
    EXPECT_TRUE(is_logged(format));
    support::reset_platform();
  }
}

TEST_F(Messages, BlacklistsAreTheirOwnFormats) {
  support::build(tns_,
                 "(DESCRIPTION=(ADDRESS=(HOST=h))(KZLB_BLACKLIST=(REMOVE_STRATEGY="
                 "(NAME=TIMEOUT))(APPEND_STRATEGY=(NAME=RETRYDURATION))))");
  EXPECT_TRUE(is_logged("success to call KZCIRemoveStrategyBuild"));
  EXPECT_TRUE(is_logged("success to call KZCIAppendStrategyBuild"));
  EXPECT_TRUE(is_logged("success to call build_black_list_conf"));
  support::build(tns_, "(DESCRIPTION=(KZLB_BLACKLIST=(REMOVE_STRATEGY=x)");
  EXPECT_TRUE(is_logged("something error in KZCIRemoveStrategyBuild"));
  EXPECT_TRUE(is_logged("something error in build_black_list_conf"));
}

// Records of one text are told apart by the place that logs them.
TEST_F(Messages, EachStepLogsItsOwnPlace) {
  support::build(tns_, "(DESCRIPTION=(ADDRESS_LIST=(SID=s)))");
  const auto list = support::log_places("fail to call KZCIAddressListBuild, status:%d");
  support::reset_platform();
  support::build(tns_, "(DESCRIPTION=(KZLB_BLACKLIST=(SID=s)))");
  const auto blacklist = support::log_places("fail to call KZCIAddressListBuild, status:%d");
  ASSERT_EQ(list.size(), 1u);
  ASSERT_EQ(blacklist.size(), 1u);
  EXPECT_NE(list, blacklist);
  EXPECT_EQ(list[0].substr(0, list[0].find(':')), "kzoci/oci_tnsname/description_build.cpp");
  EXPECT_EQ(support::log_places("something error in build description")[0].substr(0, 39),
            "kzoci/oci_tnsname/description_build.cpp");
}

TEST_F(Messages, ABareAddressThatFailsIsItsOwnFormat) {
  support::build(tns_, "(DESCRIPTION=(ADDRESS=(PROTOCOL=IPC)))");
  EXPECT_TRUE(is_logged("fail to call KZCIAddressBuild"));
}

}  // namespace
