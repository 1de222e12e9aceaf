// An integer means the same, or is refused in the same way, after every key.
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "support/key_inputs.h"
#include "support/model_numbers.h"
#include "support/property.h"
#include "support/random_input.h"

namespace {

using support::Built;
using support::found;
using support::Key;
using support::Place;
using support::Random;
using support::refused;
using support::Takes;
using namespace std::string_view_literals;

// A key whose value is an integer, and the input around the value.
struct Number {
  const Key *key;
  std::string before;
  std::string after;
};

std::vector<Number> integers_of(std::initializer_list<Place> places) {
  std::vector<Number> out;
  for (const Key &key : support::keys) {
    if (key.takes != Takes::integer) continue;
    if (std::find(places.begin(), places.end(), key.place) == places.end()) continue;
    for (const support::BlockPath &path : support::paths_to(key))
      out.push_back({&key, path.before + std::string(key.word) + '=', path.after});
  }
  return out;
}

const std::string reserved_name = "KZCISYSTEMVARIABLES";

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
std::string input_of(const Number &number, const std::string &text) {
  return number.before + '"' + text + '"' + number.after;
}

class Numbers : public support::Property {
 protected:
  // Builds one key's value and compares what is stored with the prediction.
  template <class Build>
  void compare(const Number &number, const std::string &text, Build build) {
    const model::Number meant = model::number_of(text);
    const std::string input = input_of(number, text);
    Container container(file_);
    const Built built = build(container, input);
    expect(built, {meant.accepted ? found : refused, built.tree}, input);
    if (meant.accepted) ++accepted_;
    const Key &key = *number.key;
    if (!meant.accepted || HasFailure() || key.field.size == 0) return;
    const sb8 stored =
        support::number_in(support::record_of(*container.service(), key.place), key.field);
    if (stored == key.kept(meant.value)) return;
    SCOPED_TRACE("seed " + std::to_string(seed_));
    SCOPED_TRACE("input " + ::testing::PrintToString(input));
    EXPECT_EQ(stored, key.kept(meant.value));
  }

  void expect_both_outcomes(std::size_t count) const {
    EXPECT_GT(accepted_, count / 4);
    EXPECT_LT(accepted_, count - count / 4);
  }

  std::size_t accepted_ = 0;
};

TEST_F(Numbers, MeanTheSameEverywhereInDescriptions) {
  constexpr std::size_t count = 25'000;
  const auto keys = integers_of({Place::description, Place::address, Place::connect_data,
                                 Place::remove_strategy, Place::append_strategy});
  for_seeds(20'000'000, count, [&](Random &random) {
    const Number &number = random.pick(keys);
    compare(number, random_number_text(random),
            [](Container &into, const std::string &input) { return into.build(input); });
  });
  expect_both_outcomes(count);
}

TEST_F(Numbers, MeanTheSameInSystemVariables) {
  constexpr std::size_t count = 15'000;
  const auto keys = integers_of({Place::system_variables});
  for_seeds(21'000'000, count, [&](Random &random) {
    const Number &number = random.pick(keys);
    compare(number, random_number_text(random), [](Container &into, const std::string &input) {
      return into.look_up(reserved_name, reserved_name + '=' + input);
    });
  });
  expect_both_outcomes(count);
}

}  // namespace
