// What holds for every input: which ways of writing the same entry do not
// matter, and how builds, skips and numbers relate to each other.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "support/parsing.h"
#include "support/property.h"
#include "support/random_input.h"

namespace {

using support::Built;
using support::Entry;
using support::found;
using support::Layout;
using support::Random;
using support::Taste;
using support::Tokens;

const std::string reserved_name = "KZCISYSTEMVARIABLES";

// Entries, the last of which may be the reserved one, and the one to look up.
// The others hold one block without parentheses in texts, so that counting
// parentheses passes over them.
struct File {
  std::vector<Entry> entries;
  std::size_t sought = 0;

  const std::string &name() const { return entries[sought].name; }
};

File random_file(Random &random) {
  File file;
  const std::size_t count = random.one_in(3) ? random.between(2, 3) : 1;
  file.sought = random.below(count);
  for (std::size_t i = 0; i < count; ++i) {
    const bool sought = i == file.sought;
    const Taste taste{sought, 255};
    file.entries.push_back(i + 1 == count && random.one_in(3)
                               ? support::random_reserved_entry(random, reserved_name, taste)
                               : support::random_entry(random, support::random_name(random, i),
                                                       taste, sought && random.one_in(3) ? 2 : 1));
  }
  return file;
}

std::string written(const File &file, Random &random, Layout layout) {
  std::string text;
  for (std::size_t i = 0; i < file.entries.size(); ++i) {
    layout.parentheses_in_comments = i == file.sought;
    text += support::write_tokens(file.entries[i].tokens, random, layout);
  }
  return text;
}

// The text of all services, and that of a service but for its name.
std::string services_of(const std::string &tree) { return tree.substr(tree.find('\n') + 1); }

std::string without_name(const std::string &tree) {
  const std::size_t after = tree.find(" descriptions=");
  return after == std::string::npos ? tree : tree.substr(after);
}

class Properties : public support::Property {
 protected:
  // The same sound file, written in both ways, gives the same tree.
  void compare_files(Random &random, const Layout &left, const Layout &right) {
    const File file = random_file(random);
    const std::string left_text = written(file, random, left);
    const std::string right_text = written(file, random, right);
    const Built built = look_up(file.name(), left_text);
    expect(built, {found, built.tree}, left_text);
    expect(look_up(file.name(), right_text), built, right_text, left_text);
  }

  void compare_literals(Random &random, const Layout &left, const Layout &right) {
    const Tokens tokens = support::random_description(random);
    const std::string left_text = support::write_literal(tokens, random, left);
    const std::string right_text = support::write_literal(tokens, random, right);
    const Built built = literal(left_text);
    expect(built, {found, built.tree}, left_text);
    expect(literal(right_text), built, right_text, left_text);
  }
};

constexpr Layout plain{};
constexpr Layout spaced{true, true, true, false, false};
constexpr Layout cased{false, false, false, true, false};
constexpr Layout quoted{false, false, false, false, true};

TEST_F(Properties, SpaceInFilesChangesNothing) {
  for_seeds(1'000'000, 12'000, [&](Random &random) { compare_files(random, plain, spaced); });
}

TEST_F(Properties, SpaceInLiteralsChangesNothing) {
  for_seeds(2'000'000, 10'000, [&](Random &random) { compare_literals(random, spaced, plain); });
}

TEST_F(Properties, CaseOfKeyWordsInFilesChangesNothing) {
  for_seeds(3'000'000, 12'000, [&](Random &random) { compare_files(random, plain, cased); });
}

// A literal's service bears the key word as it is written; the rest is the same.
TEST_F(Properties, CaseOfKeyWordsInLiteralsChangesOnlyTheName) {
  for_seeds(4'000'000, 10'000, [&](Random &random) {
    const Tokens tokens = support::random_description(random);
    const std::string text = support::write_literal(tokens, random, cased);
    Built expected = literal(support::write_plain(tokens));
    const std::string word = "DESCRIPTION";
    const std::size_t at = expected.tree.find(word);
    ASSERT_NE(at, std::string::npos);
    expected.tree.replace(at, word.size(), text.substr(1, word.size()));
    expected.outcome = found;
    expect(literal(text), expected, text);
  });
}

TEST_F(Properties, QuotesInFilesChangeNothing) {
  for_seeds(5'000'000, 12'000, [&](Random &random) { compare_files(random, plain, quoted); });
}

TEST_F(Properties, QuotesInLiteralsChangeNothing) {
  for_seeds(6'000'000, 10'000, [&](Random &random) { compare_literals(random, quoted, plain); });
}

// Something to build: a literal descriptor, or a name with its file.
struct Source {
  std::string identifier;
  std::string file;
};

Source random_source(Random &random) {
  if (random.one_in(2))
    return {support::write_literal(support::random_description(random), random, spaced), ""};
  const File file = random_file(random);
  return {file.name(), written(file, random, spaced)};
}

TEST_F(Properties, TwoBuildsStandInOneContainerInOrder) {
  for_seeds(9'000'000, 10'000, [&](Random &random) {
    const Source first = random_source(random);
    const Source second = random_source(random);
    const Built left = look_up(first.identifier, first.file);
    const Built right = look_up(second.identifier, second.file);
    Container both(file_);
    both.look_up(first.identifier, first.file);
    expect(both.look_up(second.identifier, second.file),
           {found, "services=2\n" + services_of(left.tree) + services_of(right.tree)},
           first.identifier + '\n' + first.file, second.identifier + '\n' + second.file);
  });
}

TEST_F(Properties, EntryOfOneBlockEqualsItsLiteral) {
  constexpr Layout any{true, true, true, true, true};
  for_seeds(10'000'000, 12'000, [&](Random &random) {
    const std::string block =
        support::write_literal(support::random_description(random), random, any);
    const std::string name = support::random_name(random, 1);
    Built from_literal = literal(block);
    Built from_file = look_up(name, '"' + name + "\"=" + block);
    expect(from_file, {found, from_file.tree}, block);
    from_literal.tree = without_name(from_literal.tree);
    from_file.tree = without_name(from_file.tree);
    expect(from_file, from_literal, block);
  });
}

// The place in the input of the next character.
std::size_t position(const support::DescriptorState &state) {
  const KZCITnsParseParams &params = state.params;
  return static_cast<std::size_t>(params.description_offset) - params.buffer_len +
         params.buffer_pos;
}

std::size_t position(const support::FileState &state) {
  const KZCITnsParseParams &params = state.params;
  return static_cast<std::size_t>(std::ftell(params.tns_file)) - params.buffer_len +
         params.buffer_pos;
}

// Where a step after an entry's name and "=" ends, once the blanks after it
// are passed over, which a build has done when it looks for a further block.
template <class State, class Step>
std::size_t end_of(const std::string &text, Step step) {
  State state(text);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_KEY), 0);
  EXPECT_EQ(KZCITnsParse(&state.params, TNS_EQUAL_SIGN), 0);
  EXPECT_EQ(step(&state.params), 0);
  KZCITnsParseBlank(&state.params);
  return position(state);
}

sword skip(KZCITnsParseParams *params) { return KZCITnsServiceSkip(params); }

sword build_and_clear(KZCITnsParseParams *params) {
  KZCITns tns;
  KZCITnsInit(&tns);
  const sword status = KZCITnsServiceBuild(&tns, params);
  KZCITnsClear(&tns);
  return status;
}

TEST_F(Properties, SkippedEntryEndsWhereTheBuiltOneEnds) {
  constexpr std::string_view followers[] = {"",    " ",  "\n next=(DESCRIPTION=)",
                                            "\t)", " =", " # ()"};
  for_seeds(11'000'000, 20'000, [&](Random &random) {
    Layout layout = cased;
    layout.blanks = true;
    const Entry entry = support::random_entry(random, "sales", {false, 255}, 1);
    const std::string text = std::string(random.one_in(4) ? random.below(1100) : 0, ' ') +
                             support::write_tokens(entry.tokens, random, layout) +
                             std::string(random.pick(followers));
    support::reset_platform();
    support::keep_log(false);
    using InMemory = support::DescriptorState;
    using InFile = support::FileState;
    const bool in_file = random.one_in(20);
    const std::size_t skipped = in_file ? end_of<InFile>(text, skip) : end_of<InMemory>(text, skip);
    const std::size_t built =
        in_file ? end_of<InFile>(text, build_and_clear) : end_of<InMemory>(text, build_and_clear);
    if (skipped == built && !HasFailure()) return;
    SCOPED_TRACE("seed " + std::to_string(seed_));
    SCOPED_TRACE("input " + ::testing::PrintToString(text));
    EXPECT_EQ(skipped, built);
  });
}

}  // namespace
