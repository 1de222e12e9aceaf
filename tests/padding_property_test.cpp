// Blanks and comments before an entry move all of it over the boundaries of
// the reader's buffer. Only the longest words notice.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "support/property.h"
#include "support/random_input.h"

namespace {

using support::Built;
using support::Entry;
using support::found;
using support::Random;
using support::refused;
using support::Token;
using support::TokenKind;
using support::Tokens;
using namespace std::string_view_literals;

// Words of 256 characters, of which the last one may not be the last in the
// reader's buffer: the text comes in parts of 1024 characters.
class LongWords {
 public:
  static constexpr std::size_t length = 256;
  static constexpr std::size_t part = 1024;

  LongWords(const Tokens &tokens, const std::string &text) {
    for (const Token &token : tokens)
      if (token.text.size() == length) ends_.push_back(text.find(token.text) + length);
  }

  bool refused_after(std::size_t padding) const {
    for (const std::size_t end : ends_)
      if ((padding + end) % part == 0) return true;
    return false;
  }

  // Any padding; if there is a long word, often one that puts it near the end
  // of a part.
  std::size_t random_padding(Random &random) const {
    constexpr std::size_t most = 1100;
    if (ends_.empty() || random.one_in(3)) return random.below(most + 1);
    const std::size_t near_end = random.pick(ends_) + random.below(3) - 1;
    return (part - near_end % part) % part;
  }

 private:
  std::vector<std::size_t> ends_;
};

// Gives one of the texts that may be long the longest length.
void lengthen(Random &random, Tokens &tokens) {
  const std::size_t start = random.below(tokens.size());
  for (std::size_t i = start; i < tokens.size(); ++i) {
    if (tokens[i].kind != TokenKind::text || i < 2) continue;
    const std::string &key = tokens[i - 2].text;
    if (key == "PORT" || key == "PROTOCOL") continue;
    while (tokens[i].text.size() < LongWords::length)
      tokens[i].text += static_cast<char>('a' + random.below(26));
    return;
  }
}

std::string padding_of(Random &random, std::size_t length, bool comments) {
  if (!comments || length < 2 || random.one_in(2))
    return std::string(length, random.pick(" \t\r\n"sv));
  return '#' + std::string(length - 2, '(') + '\n';
}

class Padding : public support::Property {
 protected:
  template <class Build>
  void compare(Random &random, const Tokens &tokens, bool comments, Build build) {
    const std::string text = support::write_plain(tokens);
    const LongWords words(tokens, text);
    std::size_t harmless = 0;
    while (words.refused_after(harmless)) ++harmless;
    const Built expected = build(std::string(harmless, ' ') + text);
    expect(expected, {found, expected.tree}, text);

    const std::size_t length = words.random_padding(random);
    const std::string padded = padding_of(random, length, comments) + text;
    if (words.refused_after(length)) {
      ++refusals_;
      expect(build(padded), {refused, "services=0\n"}, padded);
    } else {
      expect(build(padded), expected, padded, text);
    }
  }

  std::size_t refusals_ = 0;
};

TEST_F(Padding, OfFilesMattersOnlyToTheLongestWords) {
  constexpr std::size_t count = 12'000;
  for_seeds(7'000'000, count, [&](Random &random) {
    Entry entry = support::random_entry(random, "sales", {false, 255}, 1);
    if (random.one_in(2)) lengthen(random, entry.tokens);
    compare(random, entry.tokens, true,
            [&](const std::string &text) { return look_up("sales", text); });
  });
  EXPECT_GT(refusals_, count / 50);
}

TEST_F(Padding, OfLiteralsMattersOnlyToTheLongestWords) {
  constexpr std::size_t count = 10'000;
  for_seeds(8'000'000, count, [&](Random &random) {
    Tokens tokens = support::random_description(random, {false, 255});
    if (random.one_in(2)) lengthen(random, tokens);
    compare(random, tokens, false, [&](const std::string &text) { return literal(text); });
  });
  EXPECT_GT(refusals_, count / 50);
}

}  // namespace
