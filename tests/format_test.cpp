// Laying out names files: rows of input and layout, and what holds for every file.
#include "format/format_file.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "check/check_once.h"
#include "scan/tree_digest.h"
#include "support/foreign_lookups.h"
#include "support/random_input.h"
#include "support/random_mutation.h"
#include "support/written_entry.h"

using kztns::FormatOptions;
using kztns::Formatted;
using kztns::KeptBecause;
using support::Random;

namespace {

#if defined(KZOCI_SANITIZED)
constexpr std::size_t seeds = 60;  // ten times slower there
#else
constexpr std::size_t seeds = 600;
#endif

Formatted edits_of(const std::string &text, const FormatOptions &options = {}) {
  return kztns::format_file(kztns::NamesText(text), options);
}

std::string applied(const std::string &text, const Formatted &formatted) {
  kztns::EditedText edited(text);
  edited.apply(formatted.edits);
  return edited.text();
}

std::string laid_out(const std::string &text, const FormatOptions &options = {}) {
  return applied(text, edits_of(text, options));
}

std::string without_blanks(std::string text) {
  std::erase_if(text, [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
  return text;
}

struct Served {
  std::string name;
  kztns::Verdict verdict;
  bool built;
  std::uint64_t tree;

  bool operator==(const Served &) const = default;
};

// Every entry with its verdict and its tree.
std::vector<Served> served_in(const std::string &text) {
  std::vector<Served> all;
  kztns::CheckRequest request{"names.ora"};
  request.visit = [&](const kztns::EntryView &view) {
    all.push_back({std::string(view.name), view.entry.verdict, view.entry.built != 0,
                   view.service != nullptr ? kztns::tree_digest(*view.service) : 0});
  };
  kztns::check_once(kztns::NamesText(text), request);
  return all;
}

// What holds of any text at all.
void expect_harmless(const std::string &text, const FormatOptions &options) {
  const std::string once = laid_out(text, options);
  EXPECT_EQ(laid_out(once, options), once);
  EXPECT_EQ(without_blanks(once), without_blanks(text));
  EXPECT_EQ(served_in(once), served_in(text));
}

void expect_harmless(const std::string &text) {
  expect_harmless(text, {});
  expect_harmless(text, {"\t", true});
}

std::string written_file(Random &random, const support::Layout &layout, bool odd_texts) {
  std::string text;
  for (std::size_t count = random.between(1, 5), i = 0; i < count; ++i) {
    const support::Entry entry = support::random_entry(random, support::random_name(random, i),
                                                       {odd_texts, 60}, i + 1 == count ? 2 : 1);
    text += support::write_tokens(entry.tokens, random, layout);
    text += "\n";
  }
  return text;
}

template <class Check>
void for_seeds(Check check) {
  for (std::size_t seed = 1; seed <= seeds && !testing::Test::HasFailure(); ++seed) {
    Random random(seed);
    SCOPED_TRACE("seed " + std::to_string(seed));
    check(random);
  }
}

struct Row {
  const char *name;
  std::string text;
  std::string expected;
};

const std::string sales =
    "sales =\n"
    "  (DESCRIPTION =\n"
    "    (ADDRESS = (HOST = h)(PORT = 1))\n"
    "    (CONNECT_DATA = (SID = s))\n"
    "  )\n";

const Row rows[] = {
    {"one line", "sales=(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))(CONNECT_DATA=(SID=s)))\n", sales},
    {"a line each",
     "sales\n=\n(\nDESCRIPTION\n=\n(ADDRESS\n=\n(HOST\n=\nh\n)(PORT\n=\n1\n)\n)"
     "(CONNECT_DATA=\n(SID=s)\n)\n)",
     sales},
    {"two entries on a line",
     "a=(DESCRIPTION=(CONNECT_DATA=(SID=s)))b=(DESCRIPTION=(CONNECT_DATA=(SID=s)))",
     "a =\n  (DESCRIPTION =\n    (CONNECT_DATA = (SID = s))\n  )\n"
     "b =\n  (DESCRIPTION =\n    (CONNECT_DATA = (SID = s))\n  )\n"},
    {"comments",
     "# of the file\n   # second\n\n\n\nsales = # of the entry\n (DESCRIPTION=#d\n\n\n"
     "# alone  \n\n(ADDRESS=(HOST=h)(PORT # p\n=1))#a\n(CONNECT_DATA=(SID=s)\n# last\n))   # "
     "after\n"
     "\n\n\n # end",
     "# of the file\n# second\n\nsales = # of the entry\n  (DESCRIPTION = #d\n\n"
     "    # alone\n\n    (ADDRESS =\n      (HOST = h)\n      (PORT # p\n        = 1)\n    ) #a\n"
     "    (CONNECT_DATA =\n      (SID = s)\n      # last\n    )\n  ) # after\n\n# end\n"},
    {"blank lines",
     "\n\n" + sales + "\n\n\n\n" + "other=(DESCRIPTION=(KZLB=ON)\n\n\n\n(KZLB=OFF))\n\n",
     sales + "\nother =\n  (DESCRIPTION = (KZLB = ON)(KZLB = OFF))\n"},
    {"quotes keep their blanks",
     "sales=(DESCRIPTION=(CONNECT_DATA=(SID=\"a  b\")(KZ_USER_EXTRA_INFO=\"c\n   d\")))\n",
     "sales =\n  (DESCRIPTION =\n    (CONNECT_DATA =\n      (SID = \"a  b\")\n"
     "      (KZ_USER_EXTRA_INFO = \"c\n   d\")\n    )\n  )\n"},
    {"system variables", "KZCISYSTEMVARIABLES=(LOG_LEVEL=WARN)(OTHER=1)\n",
     "KZCISYSTEMVARIABLES =\n  (LOG_LEVEL = WARN)\n  (OTHER = 1)\n"},
    {"carriage returns", "sales=(DESCRIPTION=(KZLB=ON))\r\n\r\n\r\n# end\r\n",
     "sales =\r\n  (DESCRIPTION = (KZLB = ON))\r\n\r\n# end\r\n"},
    {"carriage returns after the first line", "\nsales=(DESCRIPTION=(KZLB=ON))\r\n\n# end\n",
     "sales =\r\n  (DESCRIPTION = (KZLB = ON))\r\n\r\n# end\r\n"},
    {"carriage returns before everything", "\r\nsales=(DESCRIPTION=(KZLB=ON))",
     "sales =\r\n  (DESCRIPTION = (KZLB = ON))\r\n"},
    {"a blacklist",
     "a=(DESCRIPTION=(KZLB_BLACKLIST=(REMOVE_STRATEGY=(NAME=TIMEOUT)(TIMEOUT=5))))\n",
     "a =\n  (DESCRIPTION =\n    (KZLB_BLACKLIST =\n"
     "      (REMOVE_STRATEGY = (NAME = TIMEOUT)(TIMEOUT = 5))\n    )\n  )\n"},
    {"comments alone", "\n\n  # a\n\n\n\n# b", "# a\n\n# b\n"},
    {"nothing", "", ""},
};

// Rows that stay as they are, with the reason why an entry keeps its text.
struct KeptRow {
  const char *name;
  std::string text;
  KeptBecause reason;
};

const KeptRow kept_rows[] = {
    {"refused", "a=(DESCRIPTION=(SERVER=DEDICATED))\n", KeptBecause::refused},
    {"fails in its second block", "a=(DESCRIPTION=(KZLB=ON))(DESCRIPTION=(KZLB=ON)x\n",
     KeptBecause::unclear},
    {"a list of names", "x = (DESCRIPTION=(X=1))\na, b=(DESCRIPTION=(KZLB=ON))\n",
     KeptBecause::unclear},
    {"a comment about its line", "a=(DESCRIPTION=(KZLB=ON)) # kztns: ignore no-address\n",
     KeptBecause::ignores},
    {"a comment about a line in it", "a=(DESCRIPTION= # kztns: ignore no-address\n(KZLB=ON))\n",
     KeptBecause::ignores},
};

}  // namespace

TEST(Format, LaysOut) {
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(laid_out(row.text), row.expected);
    EXPECT_EQ(laid_out(row.expected), row.expected);
    expect_harmless(row.text);
  }
}

TEST(Format, KeepsTextOfEntries) {
  for (const KeptRow &row : kept_rows) {
    SCOPED_TRACE(row.name);
    const Formatted formatted = edits_of(row.text);
    EXPECT_TRUE(formatted.edits.empty());
    ASSERT_FALSE(formatted.kept.empty());
    EXPECT_EQ(formatted.kept.back().reason, row.reason);
  }
}

// Of a refused entry only the text stays, from its name to its last ")".
TEST(Format, LaysOutAroundARefusedEntry) {
  const std::string refused = "bad=(DESCRIPTION=\n      (PROT=TCP))(DESCRIPTION=(KZLB=ON))";
  const std::string laid_out_entry = "b =\n  (DESCRIPTION = (KZLB = ON))\n";
  EXPECT_EQ(laid_out("\n\n  " + refused + "\n\n\n\n   b=(DESCRIPTION=(KZLB=ON))\n"),
            "  " + refused + "\n\n" + laid_out_entry);
  EXPECT_EQ(laid_out("a=(DESCRIPTION=(KZLB=ON))\n\n\n\n\t" + refused +
                     "   # about it\n\n\n # alone\nb=(DESCRIPTION=(KZLB=ON))"),
            "a =\n  (DESCRIPTION = (KZLB = ON))\n\n\t" + refused + " # about it\n\n# alone\n" +
                laid_out_entry);
  EXPECT_EQ(laid_out(refused + "\n\n\n"), refused + "\n");
}

// Where a refused entry ends is not certain, so neither is what the blanks after it mean:
// the blocks of the next one stand as far in as its name.
TEST(Format, IndentsAfterARefusedEntryWithoutEnd) {
  const std::string refused = "bad=(DESCRIPTION=(PROT=TCP)\n\n\n\n";
  EXPECT_EQ(laid_out(refused + "   b=(DESCRIPTION=(KZLB=ON))\n"),
            refused + "   b =\n     (DESCRIPTION = (KZLB = ON))\n");
}

TEST(Format, IndentsASelectedEntryAsItsNameIs) {
  const std::string text = "\t b=(DESCRIPTION=(KZLB=ON))\n";
  const Formatted formatted = kztns::format_file(kztns::NamesText(text), {}, kztns::Span{3, 4});
  EXPECT_EQ(applied(text, formatted), "\t b =\n\t   (DESCRIPTION = (KZLB = ON))\n");
}

// At 100 characters a block stays on its line, at 101 it is broken.
TEST(Format, BreaksLongLines) {
  const std::string before = "a =\n  (DESCRIPTION =\n";
  const std::string line = "    (ADDRESS = (HOST = )(PORT = 1))";
  const std::string fitting(100 - line.size(), 'h');
  const auto on_one_line = [&](const std::string &host) {
    return before + "    (ADDRESS = (HOST = " + host + ")(PORT = 1))\n  )\n";
  };
  EXPECT_EQ(laid_out(on_one_line(fitting)), on_one_line(fitting));
  EXPECT_EQ(
      laid_out(on_one_line(fitting + "h")),
      before + "    (ADDRESS =\n      (HOST = " + fitting + "h)\n      (PORT = 1)\n    )\n  )\n");
  EXPECT_EQ(laid_out(on_one_line(fitting + "h"), {"  ", true}), on_one_line(fitting + "h"));
}

TEST(Format, IndentsAsAsked) {
  EXPECT_EQ(laid_out("a=(DESCRIPTION=(CONNECT_DATA=(SID=s)))", {"\t", false}),
            "a =\n\t(DESCRIPTION =\n\t\t(CONNECT_DATA = (SID = s))\n\t)\n");
  EXPECT_EQ(laid_out("a=(DESCRIPTION=(CONNECT_DATA=(SID=s)))", {"    ", false}),
            "a =\n    (DESCRIPTION =\n        (CONNECT_DATA = (SID = s))\n    )\n");
}

// The library refuses a token whose 256th character is the last one that is read at a time;
// another layout moves it.
TEST(Format, KeepsWhatTheLibraryWouldReadOtherwise) {
  // Laid out, the value of the second entry begins at 1024 - 256.
  const std::string value(256, 'v');
  const std::string second = "b =\n  (DESCRIPTION =\n    (CONNECT_DATA =\n      (SID = ";
  const std::string first = "\na =\n  (DESCRIPTION = (KZLB = ON))\n";
  const std::string comment = "#" + std::string(1024 - 256 - second.size() - first.size() - 1, '.');
  const std::string spread =
      comment + first + "b=(DESCRIPTION=(CONNECT_DATA=(SID=" + value + ")))\n";
  ASSERT_TRUE(served_in(spread)[1].built);
  ASSERT_FALSE(served_in(comment + first + second + value + ")\n    )\n  )\n")[1].built);
  const Formatted formatted = edits_of(spread);
  ASSERT_EQ(formatted.kept.size(), 1u);
  EXPECT_EQ(formatted.kept[0].reason, KeptBecause::would_differ);
  EXPECT_EQ(applied(spread, formatted), spread);
}

// An entry that is refused where it stands would be accepted elsewhere: nothing moves.
TEST(Format, KeepsAllWhereARefusedEntryWouldBeAccepted) {
  const std::string begin = "a=(DESCRIPTION=(KZLB=ON))\nb=(DESCRIPTION=(CONNECT_DATA=(SID=";
  const std::string text = "#" + std::string(1024 - 256 - begin.size() - 2, '.') + "\n" + begin +
                           std::string(256, 'v') + ")))\n";
  ASSERT_FALSE(served_in(text)[1].built);
  const Formatted formatted = edits_of(text);
  EXPECT_TRUE(formatted.edits.empty());
  ASSERT_EQ(formatted.kept.size(), 2u);
  EXPECT_EQ(formatted.kept[0].reason, KeptBecause::would_differ);
}

// The entries before it are taken back one by one, but not without end.
TEST(Format, KeepsAllOfAFileThatItWouldHaveToTryTooOften) {
  std::string begin;
  for (char name = 'a'; name < 'k'; ++name)
    begin += std::string(1, name) + "=(DESCRIPTION=(KZLB=ON))\n";
  begin += "x=(DESCRIPTION=(CONNECT_DATA=(SID=";
  const std::string text = "#" + std::string(1024 - 256 - begin.size() - 2, '.') + "\n" + begin +
                           std::string(256, 'v') + ")))\n";
  ASSERT_FALSE(served_in(text)[10].built);
  const Formatted formatted = edits_of(text);
  EXPECT_TRUE(formatted.edits.empty());
  ASSERT_EQ(formatted.kept.size(), 11u);
  for (const kztns::KeptEntry &kept : formatted.kept)
    EXPECT_EQ(kept.reason, KeptBecause::would_differ);
}

TEST(Format, LaysOutTheEntriesOfARange) {
  const std::string one = "a=(DESCRIPTION=(KZLB=ON))";
  const std::string text = "\n\n" + one + "\n\n\n" + one + "\n\n\n" + one + "\n";
  const auto at = static_cast<kztns::Offset>(2 + one.size() + 5);
  const Formatted formatted = kztns::format_file(kztns::NamesText(text), {}, kztns::Span{at, at});
  EXPECT_EQ(applied(text, formatted),
            "\n\n" + one + "\n\n\na =\n  (DESCRIPTION = (KZLB = ON))\n\n\n" + one + "\n");
}

// Five entries, a line each; what is selected, and the names of those that are laid out.
TEST(Format, LaysOutOnlyWhatASelectionHolds) {
  const std::string line = "a=(DESCRIPTION=(KZLB=ON))\n";
  const auto begin_of = [&](std::size_t number) { return number * line.size(); };
  const auto laid_out_names = [&](std::size_t begin, std::size_t end, const std::string &between) {
    std::string text;
    for (char name = 'a'; name <= 'e'; ++name) text += name + line.substr(1) + between;
    const Formatted formatted = kztns::format_file(
        kztns::NamesText(text), {},
        kztns::Span{static_cast<kztns::Offset>(begin), static_cast<kztns::Offset>(end)});
    const std::string result = applied(text, formatted);
    std::string names;
    for (char name = 'a'; name <= 'e'; ++name)
      if (result.find(std::string(1, name) + " =\n") != std::string::npos) names += name;
    return names;
  };
  EXPECT_EQ(laid_out_names(begin_of(2), begin_of(2) + 3, ""), "c");
  EXPECT_EQ(laid_out_names(begin_of(2), begin_of(3), ""), "c");
  EXPECT_EQ(laid_out_names(begin_of(3) - 2, begin_of(3) + 1, ""), "cd");
  // A cursor, before the name and after the last ")".
  EXPECT_EQ(laid_out_names(begin_of(2), begin_of(2), ""), "c");
  EXPECT_EQ(laid_out_names(begin_of(3) - 1, begin_of(3) - 1, ""), "c");
  // An empty line between two entries.
  EXPECT_EQ(laid_out_names(line.size(), line.size() + 1, "\n"), "");
  EXPECT_EQ(laid_out_names(line.size(), line.size(), "\n"), "");
  EXPECT_EQ(laid_out_names(line.size() + 2, line.size() + 8, "# comment\n"), "");
}

TEST(FormatProperty, FilesOfTheGrammar) {
  for_seeds([](Random &random) {
    const support::Layout layout{
        .blanks = true, .comments = true, .change_case = true, .quotes = true};
    const bool odd_texts = random.one_in(2);
    const std::string text = written_file(random, layout, odd_texts);
    SCOPED_TRACE(testing::PrintToString(text));
    expect_harmless(text);
    // Lookups count the parentheses of odd texts.
    if (odd_texts) return;
    for (const kztns::KeptEntry &kept : edits_of(text).kept)
      ADD_FAILURE() << kept.at << ": " << kztns::name_of(kept.reason);
  });
}

TEST(FormatProperty, ForeignFiles) {
  support::for_foreign_files([](const support::ForeignFile &file) { expect_harmless(file.text); });
}

TEST(FormatProperty, FilesOfAdministrators) {
  for_seeds([](Random &random) {
    std::string text;
    for (int i = 0; i < 4; ++i)
      text += support::random_written_entry(
                  random, "name" + std::to_string(i),
                  random.one_in(4) ? support::ForeignItems::some : support::ForeignItems::none)
                  .text +
              "\n";
    SCOPED_TRACE(testing::PrintToString(text));
    expect_harmless(text);
  });
}

TEST(FormatProperty, DamagedFiles) {
  for_seeds([](Random &random) {
    const support::Layout layout{
        .blanks = true, .comments = true, .parentheses_in_comments = true, .quotes = true};
    std::string text = written_file(random, layout, true);
    for (std::size_t count = random.between(1, 4); count > 0; --count)
      support::mutate_text(random, text);
    SCOPED_TRACE(testing::PrintToString(text));
    expect_harmless(text);
  });
}
