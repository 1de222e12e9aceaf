// Letter case under a locale in which "i" and "I" are no pair: Turkish.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <string_view>

#include "kzoci/oci_tnsname.h"
#include "support/parsing.h"
#include "support/turkish_locale.h"

namespace {

class TurkishLetterCase : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(locale_.is_in_force());
    support::reset_platform();
    KZCITnsInit(&tns_);
  }
  void TearDown() override { KZCITnsClear(&tns_); }

  // The only description of a literal with this body; null when it is refused.
  const KZCIDescription *built(const std::string &body) {
    if (!(support::build(tns_, "(description=" + body + ")") == support::Outcome{0, 1}))
      return nullptr;
    return tns_.tns_service->description;
  }

  const support::TurkishLocale locale_;
  KZCITns tns_;
};

TEST_F(TurkishLetterCase, ADescriptorIsRecognised) {
  for (const std::string_view text : {"(description=", "(DESCRIPTION=", "(DescrIptiOn="})
    EXPECT_EQ(IsDescriptionTns(std::string(text).data(), 13), 1) << text;
  // The two letters that Turkish has besides are no "i" and no "I".
  EXPECT_EQ(IsDescriptionTns(std::string("(DESCR\xDDPTION=").data(), 13), 0);
  EXPECT_EQ(IsDescriptionTns(std::string("(descr\xFDption=").data(), 13), 0);
}

TEST_F(TurkishLetterCase, KeyWordsAreFound) {
  const KZCIDescription *const des =
      built("(address=(weight=7)(host=h))(connect_data=(service_name=s)(sid=t))");
  ASSERT_NE(des, nullptr);
  EXPECT_EQ(des->address_list->address->weight, 7);
  EXPECT_EQ(support::text_of(des->connect_data->service_name, des->connect_data->service_name_len),
            "t");
}

TEST_F(TurkishLetterCase, StrategiesAreFound) {
  const KZCIDescription *const des = built(
      "(kzlb_group_strategy=rotation)(address_list=(kzlb_strategy=serveraffinity)"
      "(address=(protocol=tcp)(host=h)))(kzlb_blacklist=(remove_strategy=(name=timeout))"
      "(append_strategy=(name=retryduration)))");
  ASSERT_NE(des, nullptr);
  EXPECT_EQ(des->kzlb_group_strategy, LB_OPTION_GROUP_ROTATION);
  EXPECT_EQ(des->address_list->kzlb_strategy, LB_OPTION_SERVERAFFINITY);
  EXPECT_EQ(des->black_list_conf.remove_strategy, LB_OPTION_TIMEOUT);
  EXPECT_EQ(des->black_list_conf.append_strategy, LB_OPTION_RETRY_DERUATION);
}

TEST_F(TurkishLetterCase, TheReservedNameIsFound) {
  const support::Environment environment;
  const support::TemporaryFolder folder;
  setenv("KZCI_TNS_FILE",
         folder.write("names.ora", "kzcisystemvariables = (log_count = 3)\n").c_str(), 1);
  ASSERT_EQ(support::build(tns_, "kzcisystemvariables"), (support::Outcome{0, 1}));
  EXPECT_EQ(tns_.tns_service->sys_vars.log_count, 3u);
  unsetenv("KZCI_TNS_FILE");
}

}  // namespace
