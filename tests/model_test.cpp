// The module against a second, simple reader of the same grammar: on random
// input, sound and damaged, with enough memory and without, both say the same about
// the status, the flag, the tree, the log and the blocks that are left.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "support/joined.h"
#include "support/memory_file.h"
#include "support/model_reader.h"
#include "support/observed_lookup.h"
#include "support/random_input.h"
#include "support/random_mutation.h"

namespace {

using model::Prediction;
using support::Entry;
using support::Layout;
using support::LogKept;
using support::ObservedLookup;
using support::Random;
using support::Taken;
using support::Token;
using support::Tokens;

struct Case {
  std::string identifier;
  std::string file;
  bool taken_for_literal = false;      // whatever the identifier looks like
  std::size_t failing_allocation = 0;  // 0: none
};

using Generator = Case (*)(Random &random);

// Most inputs take one change, so that much of them is still sound.
std::size_t some(Random &random) { return random.one_in(3) ? random.between(2, 5) : 1; }

Layout random_layout(Random &random) {
  return {random.one_in(2), random.one_in(2), random.one_in(2), random.one_in(2), random.one_in(2)};
}

Entry random_entry(Random &random, std::size_t number) {
  if (random.one_in(4)) {
    const std::string name = support::random_special_name(random);
    return random.one_in(4) ? support::random_entry(random, name)
                            : support::random_reserved_entry(random, name);
  }
  const std::string name = support::random_name(random, number);
  return random.one_in(20) ? support::random_reserved_entry(random, name)
                           : support::random_entry(random, name);
}

struct File {
  std::vector<std::string> names;
  Tokens tokens;
};

File random_file(Random &random) {
  File file;
  for (std::size_t left = random.one_in(3) ? random.between(0, 3) : 1; left > 0; --left) {
    const Entry entry = random_entry(random, left);
    file.names.push_back(entry.name);
    file.tokens.insert(file.tokens.end(), entry.tokens.begin(), entry.tokens.end());
  }
  return file;
}

std::string random_identifier(Random &random, const File &file) {
  if (!file.names.empty() && !random.one_in(12)) return random.pick(file.names);
  return random.one_in(2) ? support::random_special_name(random) : "absent";
}

Case sound_file(Random &random) {
  const File file = random_file(random);
  return {random_identifier(random, file),
          support::write_tokens(file.tokens, random, random_layout(random))};
}

Case file_with_changed_tokens(Random &random) {
  File file = random_file(random);
  for (std::size_t left = some(random); left > 0; --left)
    support::mutate_tokens(random, file.tokens);
  return {random_identifier(random, file),
          support::write_tokens(file.tokens, random, random_layout(random))};
}

Case file_with_changed_characters(Random &random) {
  Case c = sound_file(random);
  for (std::size_t left = some(random); left > 0; --left) support::mutate_text(random, c.file);
  return c;
}

Case file_of_tokens(Random &random) {
  Tokens tokens = support::random_tokens(random, 24);
  const std::string name = random.one_in(2) ? "KZCI" : "a";
  Entry entry = random.one_in(2) ? support::random_reserved_entry(random, name)
                                 : support::random_entry(random, name, {}, 1);
  const std::size_t kept = random.below(entry.tokens.size() + 1);
  entry.tokens.resize(kept);
  entry.tokens.insert(entry.tokens.end(), tokens.begin(), tokens.end());
  return {name, support::write_tokens(entry.tokens, random, random_layout(random))};
}

Case sound_literal(Random &random) {
  return {
      support::write_literal(support::random_description(random), random, random_layout(random)),
      "DESCRIPTION=(DESCRIPTION=(KZLB=ON))"};
}

Case literal_with_changed_tokens(Random &random) {
  Tokens tokens = support::random_description(random);
  for (std::size_t left = some(random); left > 0; --left) support::mutate_tokens(random, tokens);
  return {support::write_literal(tokens, random, random_layout(random)), ""};
}

Case literal_with_changed_characters(Random &random) {
  Case c = sound_literal(random);
  for (std::size_t left = some(random); left > 0; --left)
    support::mutate_text(random, c.identifier);
  return c;
}

// Memory that ends somewhere within most builds.
Case sound_file_without_memory(Random &random) {
  Case c = sound_file(random);
  c.failing_allocation = random.between(1, 12);
  return c;
}

Case literal_with_changed_tokens_without_memory(Random &random) {
  Case c = literal_with_changed_tokens(random);
  c.failing_allocation = random.between(1, 12);
  return c;
}

// Texts that no lookup would take for literals.
Case any_text(Random &random) {
  Tokens tokens = support::random_description(random);
  if (random.one_in(3))
    tokens.resize(random.below(8));
  else if (random.one_in(2))
    support::mutate_tokens(random, tokens);
  if (random.one_in(10)) tokens = support::random_tokens(random, 6);
  std::string text = support::write_tokens(tokens, random, random_layout(random));
  if (random.one_in(4)) support::mutate_text(random, text);
  return {text, "", true};
}

// Words of about the longest length, of which many end about where the text is
// read with the next part.
Case long_words(Random &random) {
  support::Taste taste;
  taste.odd_texts = false;
  taste.longest_text = random.between(254, 258);
  const bool reserved = random.one_in(3);
  const Entry entry = reserved ? support::random_reserved_entry(random, "KZCI", taste)
                               : support::random_entry(random, "a", taste);
  const auto longest = std::max_element(
      entry.tokens.begin(), entry.tokens.end(),
      [](const Token &a, const Token &b) { return a.text.size() < b.text.size(); });
  std::string text = support::write_plain(entry.tokens);
  support::put_after_refill(text, text.find(longest->text) + random.between(254, 258));
  if (random.one_in(3)) support::mutate_text(random, text);
  return {entry.name, text};
}

class ModelReader : public ::testing::Test {
 protected:
  void TearDown() override { support::reset_platform(); }

  void agree(Generator generate, std::uint64_t first_seed, std::size_t count,
             LogKept log = LogKept::no) {
    for (std::uint64_t seed = first_seed; seed < first_seed + count && !HasFailure(); ++seed) {
      Random random(seed);
      compare(seed, generate(random), log);
    }
    EXPECT_GT(built_, count / 20) << "much of the input is still built";
  }

  // With damaged input, each outcome is common.
  void expect_all_outcomes(std::size_t count) const {
    EXPECT_GT(failed_, count / 20);
    EXPECT_GT(lossy_, count / 50);
  }

 private:
  void compare(std::uint64_t seed, const Case &c, LogKept log) {
    const model::Fault fault = {.allocation = c.failing_allocation};
    model::Lines lines;
    model::Lines *const wanted = log == LogKept::yes ? &lines : nullptr;
    const Prediction expected = c.taken_for_literal
                                    ? model::predict_literal(c.identifier, fault, wanted)
                                    : model::predict(c.identifier, c.file, fault, wanted);
    const model::Lines expected_log = support::comparable(lines);
    EXPECT_TRUE(file_.write(c.file));
    const Taken taken = c.taken_for_literal ? Taken::as_literal : Taken::as_identifier;
    const ObservedLookup seen =
        support::observe_lookup(c.identifier, taken, c.failing_allocation, log);
    count(expected);
    if (seen.built == expected && seen.log == expected_log && seen.cleared == 0 &&
        seen.bad_releases == 0)
      return;
    SCOPED_TRACE("seed " + std::to_string(seed));
    SCOPED_TRACE("identifier " + ::testing::PrintToString(c.identifier));
    SCOPED_TRACE("file " + ::testing::PrintToString(c.file));
    SCOPED_TRACE("failing allocation " + std::to_string(c.failing_allocation));
    expect(seen.built, expected);
    EXPECT_EQ(support::joined(seen.log), support::joined(expected_log));
    EXPECT_EQ(seen.cleared, 0);
    EXPECT_EQ(seen.bad_releases, 0u);
  }

  static void expect(const Prediction &seen, const Prediction &expected) {
    EXPECT_EQ(seen.status, expected.status);
    EXPECT_EQ(seen.find, expected.find);
    EXPECT_EQ(seen.tree, expected.tree);
    EXPECT_EQ(seen.allocations, expected.allocations);
    EXPECT_EQ(seen.live, expected.live);
    EXPECT_EQ(seen.lost, expected.lost);
  }

  void count(const Prediction &expected) {
    if (expected.find != 0) ++built_;
    if (expected.status != 0) ++failed_;
    if (!expected.lost.empty()) ++lossy_;
  }

  support::MemoryFile file_;
  std::size_t built_ = 0;
  std::size_t failed_ = 0;
  std::size_t lossy_ = 0;
};

TEST_F(ModelReader, AgreesOnSoundFiles) { agree(sound_file, 1'000'000, 20'000); }

TEST_F(ModelReader, AgreesOnSoundLiterals) { agree(sound_literal, 2'000'000, 15'000); }

TEST_F(ModelReader, AgreesOnFilesWithChangedTokens) {
  agree(file_with_changed_tokens, 3'000'000, 25'000);
  expect_all_outcomes(25'000);
}

TEST_F(ModelReader, AgreesOnMoreFilesWithChangedTokens) {
  agree(file_with_changed_tokens, 4'000'000, 20'000);
  expect_all_outcomes(20'000);
}

TEST_F(ModelReader, AgreesOnFilesWithChangedCharacters) {
  agree(file_with_changed_characters, 5'000'000, 25'000);
  expect_all_outcomes(25'000);
}

TEST_F(ModelReader, AgreesOnMoreFilesWithChangedCharacters) {
  agree(file_with_changed_characters, 6'000'000, 20'000);
  expect_all_outcomes(20'000);
}

TEST_F(ModelReader, AgreesOnFilesThatEndInTokensInNoOrder) {
  agree(file_of_tokens, 7'000'000, 15'000);
  expect_all_outcomes(15'000);
}

TEST_F(ModelReader, AgreesOnLiteralsWithChangedTokens) {
  agree(literal_with_changed_tokens, 8'000'000, 20'000);
  expect_all_outcomes(20'000);
}

TEST_F(ModelReader, AgreesOnLiteralsWithChangedCharacters) {
  agree(literal_with_changed_characters, 9'000'000, 20'000);
  expect_all_outcomes(20'000);
}

TEST_F(ModelReader, AgreesOnAnyTextTakenForALiteral) {
  agree(any_text, 15'000'000, 15'000);
  expect_all_outcomes(15'000);
}

TEST_F(ModelReader, AgreesOnFilesWithoutMemory) {
  agree(sound_file_without_memory, 16'000'000, 10'000);
  expect_all_outcomes(10'000);
}

TEST_F(ModelReader, AgreesOnLiteralsWithoutMemory) {
  agree(literal_with_changed_tokens_without_memory, 17'000'000, 10'000);
  expect_all_outcomes(10'000);
}

TEST_F(ModelReader, AgreesOnWordsAboutTheLongest) { agree(long_words, 10'000'000, 10'000); }

TEST_F(ModelReader, AgreesOnTheLogOfFiles) {
  agree(sound_file, 18'000'000, 2'000, LogKept::yes);
  agree(file_with_changed_characters, 11'000'000, 5'000, LogKept::yes);
  agree(file_with_changed_tokens, 12'000'000, 5'000, LogKept::yes);
}

TEST_F(ModelReader, AgreesOnTheLogOfLiterals) {
  agree(literal_with_changed_characters, 13'000'000, 5'000, LogKept::yes);
  agree(literal_with_changed_tokens, 14'000'000, 5'000, LogKept::yes);
  agree(any_text, 19'000'000, 2'000, LogKept::yes);
}

TEST_F(ModelReader, AgreesOnTheLogOfWordsAboutTheLongest) {
  agree(long_words, 20'000'000, 2'000, LogKept::yes);
}

TEST_F(ModelReader, AgreesOnTheLogWithoutMemory) {
  agree(sound_file_without_memory, 21'000'000, 2'000, LogKept::yes);
  agree(literal_with_changed_tokens_without_memory, 22'000'000, 2'000, LogKept::yes);
}

}  // namespace
