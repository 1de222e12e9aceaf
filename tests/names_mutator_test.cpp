// The changes that fuzzers make to names files: each does what its name says, wherever in
// the text it happens, and the same seed makes the same change.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/support/names_mutator.h"
#include "support/keys.h"

namespace {

using fuzz::Change;
using fuzz::Head;
using support::Random;

constexpr std::string_view entry =
    "sales = (DESCRIPTION = # (a comment\n (KZLB = ON)\n"
    " (ADDRESS = (HOST = \"a (b\")(WEIGHT = 5)))\n";

constexpr std::uint64_t seeds = 500;

std::string changed(Change change, std::uint64_t seed, std::string_view text = entry) {
  Random random(seed);
  std::string out(text);
  fuzz::change_names(change, random, out);
  return out;
}

// The texts that many seeds make, each once.
std::vector<std::string> all_changes(Change change, std::string_view text = entry) {
  std::vector<std::string> out;
  for (std::uint64_t seed = 0; seed < seeds; ++seed) out.push_back(changed(change, seed, text));
  std::sort(out.begin(), out.end());
  out.erase(std::unique(out.begin(), out.end()), out.end());
  return out;
}

std::vector<std::string> words_of(std::string_view text) {
  std::vector<std::string> words;
  for (const fuzz::Token &token : fuzz::tokens_of(text))
    words.emplace_back(text.substr(token.begin, token.end - token.begin));
  return words;
}

std::string sorted(std::string text) {
  std::sort(text.begin(), text.end());
  return text;
}

bool holds(const std::vector<std::string> &texts, std::string_view text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

TEST(NamesMutator, FindsTokensBetweenBlanksAndComments) {
  EXPECT_EQ(words_of("a =(# )=\n\"b (c\"d) e"),
            (std::vector<std::string>{"a", "=", "(", "\"b (c\"d", ")", "e"}));
}

TEST(NamesMutator, FindsItemsWithTheirKeysAndValues) {
  const std::string_view text = "a=(B=(C=1)(D=))(E=(F=2";
  std::vector<std::string> items;
  std::string leaves;
  for (const fuzz::Item &item : fuzz::items_of(text)) {
    items.emplace_back(text.substr(item.begin, item.end - item.begin));
    if (item.is_leaf) leaves += text.substr(item.key.begin, item.key.end - item.key.begin);
    EXPECT_EQ(text[item.value - 1], '=');
  }
  EXPECT_EQ(items, (std::vector<std::string>{"(B=(C=1)(D=))", "(C=1)", "(D=)", "(E=(F=2", "(F=2"}));
  EXPECT_EQ(leaves, "C");
}

TEST(NamesMutator, DuplicatesAnItemAnywhere) {
  const std::vector<std::string> texts = all_changes(Change::duplicate_item, "a=(B=(C=1))");
  EXPECT_TRUE(holds(texts, "a=(B=(C=1)(C=1))"));
  EXPECT_TRUE(holds(texts, "a=(B=(C=1))(B=(C=1))"));
  EXPECT_TRUE(holds(texts, "(C=1)a=(B=(C=1))"));
}

TEST(NamesMutator, RemovesAnItem) {
  EXPECT_EQ(all_changes(Change::remove_item, "a=(B=(C=1)(D=2))"),
            (std::vector<std::string>{"a=", "a=(B=(C=1))", "a=(B=(D=2))"}));
}

TEST(NamesMutator, SwapsItemsThatAreApart) {
  EXPECT_EQ(all_changes(Change::swap_items, "a=(B=(C=1)(D=22))"),
            (std::vector<std::string>{"a=(B=(C=1)(D=22))", "a=(B=(D=22)(C=1))"}));
}

TEST(NamesMutator, ChangesAKeyForAnyOther) {
  const std::vector<std::string> texts = all_changes(Change::change_key, "a=(HOST=1)");
  for (const support::Key &key : support::keys)
    EXPECT_TRUE(holds(texts, "a=(" + std::string(key.word) + "=1)")) << key.word;
}

TEST(NamesMutator, ChangesAValueToItsBoundaries) {
  const std::vector<std::string> switches = all_changes(Change::change_value, "a=(KZLB=x)");
  EXPECT_TRUE(holds(switches, "a=(KZLB=ON)"));
  EXPECT_TRUE(holds(switches, "a=(KZLB=of)"));
  const std::vector<std::string> numbers = all_changes(Change::change_value, "a=(LOG_SIZE= 1 )");
  EXPECT_TRUE(holds(numbers, "a=(LOG_SIZE= 18446744073709551615 )"));
  EXPECT_TRUE(holds(numbers, "a=(LOG_SIZE= -9223372036854775808 )"));
  const std::vector<std::string> texts = all_changes(Change::change_value, "a=(PORT=1)");
  EXPECT_TRUE(holds(texts, "a=(PORT=xxxxxx)"));
  EXPECT_TRUE(holds(texts, "a=(PORT=xxxxxxx)"));
}

TEST(NamesMutator, MovesAParenthesis) {
  const std::vector<std::string> texts = all_changes(Change::move_parenthesis, "a=(B=1)");
  EXPECT_TRUE(holds(texts, "a=)(B=1"));
  EXPECT_TRUE(holds(texts, "(a=B=1)"));
  for (const std::string &text : texts) EXPECT_EQ(sorted(text), sorted("a=(B=1)"));
}

TEST(NamesMutator, AddsSpaceBetweenTokens) {
  const std::vector<std::string> texts = all_changes(Change::add_space, "a=(B=1)");
  EXPECT_TRUE(holds(texts, "a= # ()\n(B=1)"));
  for (const std::string &text : texts) {
    if (text.find('"') != std::string::npos) continue;
    EXPECT_EQ(words_of(text), words_of("a=(B=1)")) << text;
  }
}

TEST(NamesMutator, PutsAnItemAcrossARefill) {
  constexpr std::size_t buffer = 1024;
  for (const std::string &text : all_changes(Change::cross_refill)) {
    const std::vector<fuzz::Item> items = fuzz::items_of(text);
    EXPECT_TRUE(std::any_of(items.begin(), items.end(), [](const fuzz::Item &item) {
      return item.begin < buffer && buffer < item.end;
    })) << text;
    EXPECT_EQ(words_of(text), words_of(entry));
  }
}

TEST(NamesMutator, MovesTheRefillInsteadOfGrowingTheText) {
  std::string text(entry);
  Random random(1);
  for (int i = 0; i < 50; ++i) EXPECT_TRUE(fuzz::change_names(Change::cross_refill, random, text));
  EXPECT_LT(text.size(), 1024 + entry.size());
}

TEST(NamesMutator, JoinsTheReservedEntryAtEitherEnd) {
  std::size_t before = 0;
  std::size_t after = 0;
  for (const std::string &text : all_changes(Change::join_reserved)) {
    before += text.ends_with(entry);
    after += text.starts_with(entry);
    EXPECT_GT(text.size(), entry.size());
  }
  EXPECT_GT(before, 10u);
  EXPECT_GT(after, 10u);
}

TEST(NamesMutator, AddsAnEntry) {
  for (std::uint64_t seed = 0; seed < 50; ++seed)
    EXPECT_FALSE(fuzz::items_of(changed(Change::add_entry, seed, "")).empty());
}

TEST(NamesMutator, SaysWhenThereIsNothingToChange) {
  Random random(1);
  for (const Change change : {Change::duplicate_item, Change::remove_item, Change::swap_items,
                              Change::change_key, Change::change_value, Change::move_parenthesis,
                              Change::cross_refill, Change::change_text}) {
    std::string text;
    EXPECT_FALSE(fuzz::change_names(change, random, text));
    EXPECT_EQ(text, "");
  }
}

TEST(NamesMutator, MakesTheSameOfTheSameSeed) {
  const std::string input = "0sales\n" + std::string(entry);
  for (std::uint64_t seed = 0; seed < seeds; ++seed) {
    Random first(seed);
    Random second(seed);
    EXPECT_EQ(fuzz::mutated_input(input, Head::allocation_and_name, first),
              fuzz::mutated_input(input, Head::allocation_and_name, second));
  }
}

// Either the head or the names file is another one.
TEST(NamesMutator, LooksUpNamesThatStandInTheText) {
  const std::string head = "0x\n";
  std::size_t looked_up = 0;
  for (std::uint64_t seed = 0; seed < seeds; ++seed) {
    Random random(seed);
    const std::string input = head + std::string(entry);
    const std::string out = fuzz::mutated_input(input, Head::allocation_and_name, random);
    EXPECT_TRUE(out.starts_with(head) || out.ends_with(entry)) << out;
    if (out == "0sales\n" + std::string(entry)) ++looked_up;
  }
  EXPECT_GT(looked_up, 5u);
}

TEST(NamesMutator, KeepsTheOptionsOfAnInputWithoutAName) {
  for (std::uint64_t seed = 0; seed < seeds; ++seed) {
    Random random(seed);
    const std::string out = fuzz::mutated_input("7" + std::string(entry), Head::options, random);
    EXPECT_TRUE(out.front() == '7' || out.substr(1) == entry) << out;
  }
}

TEST(NamesMutator, TakesAnyBytes) {
  for (std::uint64_t seed = 0; seed < 2000; ++seed) {
    Random random(seed);
    std::string input;
    for (std::size_t left = random.below(40); left > 0; --left)
      input += random.one_in(2) ? random.pick(std::string_view("()=\"#a \n"))
                                : static_cast<char>(random.below(256));
    for (int i = 0; i < 5; ++i)
      input = fuzz::mutated_input(input, Head::allocation_and_name, random);
  }
}

}  // namespace
