// An integer means the same, or is refused in the same way, behind every key.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "support/model_numbers.h"
#include "support/property.h"
#include "support/random_input.h"

namespace {

using model::Number;
using support::Built;
using support::found;
using support::Random;
using support::refused;
using namespace std::string_view_literals;

using Service = KZCITnsService;

// A key whose value is an integer: the input around the value, and where the
// number is found. A key without such a place is read and not stored.
struct Key {
  std::string before;
  std::string after;
  sb8 (*stored)(const Service &service);
  sb8 (*kept)(sb8 number) = [](sb8 number) { return number; };
};

const KZCIBlacklistConf &black(const Service &s) { return s.description->black_list_conf; }
const KZCIConnectData &data(const Service &s) { return *s.description->connect_data; }

const std::string address = "(DESCRIPTION=(ADDRESS=(";
const std::string in_list = "(DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(";
const std::string connect_data = "(DESCRIPTION=(CONNECT_DATA=(";
const std::string remove_strategy = "(DESCRIPTION=(KZLB_BLACKLIST=(REMOVE_STRATEGY=(";
const std::string append_strategy = "(DESCRIPTION=(KZLB_BLACKLIST=(APPEND_STRATEGY=(";

sb8 weight(const Service &s) { return s.description->address_list->address->weight; }
sb8 low_32_bits(sb8 number) { return static_cast<ub4>(number); }

const Key description_keys[] = {
    {"(DESCRIPTION=(KZLB_RETRY_ALL_DOWNS=", "))",
     [](const Service &s) { return s.description->retry_all_downs; }},
    {"(DESCRIPTION=(KZLB_RETRY_TIMEOUT=", "))",
     [](const Service &s) { return sb8{s.description->retry_timeout}; }},
    {"(DESCRIPTION=(KZLB_CONNECT_TIMEOUT=", "))",
     [](const Service &s) { return s.description->connect_timout; }},
    {"(DESCRIPTION=(KZLB_READ_TIMEOUT=", "))",
     [](const Service &s) { return s.description->read_timout; }},
    {"(DESCRIPTION=(KZLB_WRITE_TIMEOUT=", "))",
     [](const Service &s) { return s.description->write_timout; }},
    {"(DESCRIPTION=(RETRY_DELAY=", "))", nullptr},
    {address + "WEIGHT=", ")))", weight},
    {in_list + "WEIGHT=", "))))", weight},
    {connect_data + "KZ_MODE=", ")))", [](const Service &s) { return data(s).kz_mode; }},
    {connect_data + "USE_DEFAULT_SID=", ")))",
     [](const Service &s) { return data(s).use_default_sid; }},
    {remove_strategy + "TIMEOUT=", "))))",
     [](const Service &s) { return black(s).remove_timeout; }},
    {append_strategy + "RETRY_TIMES=", "))))",
     [](const Service &s) { return black(s).retry_times; }},
    {append_strategy + "RETRYTIMES=", "))))",
     [](const Service &s) { return black(s).retry_times; }},
    {append_strategy + "DURATION=", "))))", [](const Service &s) { return black(s).duration; }},
};

const std::string reserved_name = "KZCISYSTEMVARIABLES";

const Key variable_keys[] = {
    {"(SLOWSQL_THRESHOLD=", ")", [](const Service &s) { return s.sys_vars.slowsql_threshold; }},
    {"(SLOWSQL_BUFFER_SIZE=", ")", [](const Service &s) { return s.sys_vars.slowsql_buffer_size; }},
    {"(SLOWSQL_FLUSH_SECOND=", ")",
     [](const Service &s) { return sb8{s.sys_vars.slowsql_flush_second}; }, low_32_bits},
    {"(LOG_SIZE=", ")", [](const Service &s) { return s.sys_vars.log_size; },
     [](sb8 number) { return std::max<sb8>(number, 1048576); }},
    {"(LOG_COUNT=", ")", [](const Service &s) { return sb8{s.sys_vars.log_count}; },
     [](sb8 number) { return number > 4294967295 ? 0 : low_32_bits(number); }},
};

// An integer, or something that is nearly one.
std::string random_number_text(Random &random) {
  constexpr std::string_view characters = "0123456789012345678901234567890123456789 \t+-.xe\v\0"sv;
  std::string text = support::random_integer(random);
  switch (random.below(4)) {
    case 0:
      break;
    case 1:
      text.insert(random.below(text.size() + 1), 1, random.pick(characters));
      break;
    case 2:
      text += support::random_integer(random);
      break;
    default:
      text.clear();
      for (std::size_t left = random.below(22); left > 0; --left) text += random.pick(characters);
  }
  return text;
}

// The value in quotes, which hold all characters of these texts together.
std::string input_of(const Key &key, const std::string &text) {
  return key.before + '"' + text + '"' + key.after;
}

class Numbers : public support::Property {
 protected:
  // Builds one key's value and compares what is stored with the prediction.
  template <class Build>
  void compare(const Key &key, const std::string &text, Build build) {
    const Number number = model::number_of(text);
    const std::string input = input_of(key, text);
    Container container(file_);
    const Built built = build(container, input);
    expect(built, {number.accepted ? found : refused, built.tree}, input);
    if (number.accepted) ++accepted_;
    if (!number.accepted || HasFailure() || key.stored == nullptr) return;
    const sb8 stored = key.stored(*container.service());
    if (stored == key.kept(number.value)) return;
    SCOPED_TRACE("seed " + std::to_string(seed_));
    SCOPED_TRACE("input " + ::testing::PrintToString(input));
    EXPECT_EQ(stored, key.kept(number.value));
  }

  void expect_both_outcomes(std::size_t count) const {
    EXPECT_GT(accepted_, count / 4);
    EXPECT_LT(accepted_, count - count / 4);
  }

  std::size_t accepted_ = 0;
};

TEST_F(Numbers, MeanTheSameEverywhereInDescriptions) {
  constexpr std::size_t count = 25'000;
  for_seeds(20'000'000, count, [&](Random &random) {
    const Key &key = random.pick(description_keys);
    compare(key, random_number_text(random),
            [](Container &into, const std::string &input) { return into.build(input); });
  });
  expect_both_outcomes(count);
}

TEST_F(Numbers, MeanTheSameInSystemVariables) {
  constexpr std::size_t count = 15'000;
  for_seeds(21'000'000, count, [&](Random &random) {
    const Key &key = random.pick(variable_keys);
    compare(key, random_number_text(random), [](Container &into, const std::string &input) {
      return into.look_up(reserved_name, reserved_name + '=' + input);
    });
  });
  expect_both_outcomes(count);
}

}  // namespace
