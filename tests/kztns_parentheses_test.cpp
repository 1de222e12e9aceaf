// Entries of which one parenthesis was dropped or doubled: whether check tells so at the
// right block, and whether its fix gives the entry back.
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "check/check_file.h"
#include "report/tree_json.h"
#include "rules/parentheses.h"
#include "scan/foreign_keys.h"
#include "scan/parenthesis_search.h"
#include "support/mended.h"
#include "support/names_report.h"
#include "support/written_entry.h"
#include "trace/platform.h"

namespace {

using kztns::Finding;
using kztns::Rule;
using support::ForeignItems;
using support::good_entry;
using support::Random;
using support::report_of;
using support::WrittenItem;
using support::WrittenText;

// A names file one of whose entries has lost a parenthesis or has one twice.
struct Damage {
  std::string file;    // as it should be
  std::string broken;  // as it is
  Rule rule;           // what is to be told
  std::size_t first;   // the places in the broken file that are right, from the first
  std::size_t last;    // to the last one
  std::vector<std::size_t> others = {};  // and these
};

// Right is, of a place in the broken file:
// - a ")" dropped: the "(" of its item. Where several ")" stand next to each other, the text
//   does not tell which of them is missing: any of their items is right;
// - a "(" dropped: the key that stood after it;
// - a ")" doubled: it or one that stands next to it;
// - a "(" doubled: one of the two.
class Damager {
 public:
  Damager(Random &random, const std::string &before, const WrittenText &entry,
          const std::string &after)
      : at_(before.size()), entry_(entry) {
    damage_.file = before + entry.text + after;
    const WrittenItem &item = entry.items[random.below(entry.items.size())];
    const bool open = random.one_in(2);
    const std::size_t place = open ? item.open : item.close;
    damage_.broken = damage_.file;
    if (random.one_in(2))
      dropped(item, open, place);
    else
      doubled(open, place);
  }

  const Damage &damage() const { return damage_; }

 private:
  void dropped(const WrittenItem &item, bool open, std::size_t place) {
    damage_.broken.erase(at_ + place, 1);
    damage_.rule = open ? Rule::missing_open : Rule::unclosed_block;
    damage_.first = damage_.last = at_ + (open ? item.key - 1 : item.open);
    if (open) return;
    const auto [first, last] = run_of(place);
    for (const WrittenItem &other : entry_.items)
      if (first <= other.close && other.close <= last) damage_.others.push_back(at_ + other.open);
  }

  void doubled(bool open, std::size_t place) {
    damage_.broken.insert(at_ + place, 1, open ? '(' : ')');
    damage_.rule = open ? Rule::extra_open : Rule::extra_close;
    const auto [first, last] = open ? std::pair(place, place) : run_of(place);
    damage_.first = at_ + first;
    damage_.last = at_ + last + 1;
  }

  // The ")" that stand next to each other.
  std::pair<std::size_t, std::size_t> run_of(std::size_t place) const {
    std::size_t first = place, last = place;
    while (entry_.text[first - 1] == ')') --first;
    while (entry_.text[last + 1] == ')') ++last;
    return {first, last};
  }

  std::size_t at_;
  const WrittenText &entry_;
  Damage damage_ = {};
};

Damage random_damage(Random &random, ForeignItems foreign) {
  const std::string before = random.one_in(3) ? "" : good_entry("before");
  const std::string after = random.one_in(3) ? "" : "# the next one\n" + good_entry("after");
  const WrittenText entry = support::random_written_entry(random, "broken", foreign);
  return Damager(random, before, entry, after).damage();
}

bool is_right(const Damage &damage, const Finding &finding) {
  if (finding.rule != damage.rule) return false;
  if (damage.first <= finding.at && finding.at <= damage.last) return true;
  for (const std::size_t other : damage.others)
    if (finding.at == other) return true;
  return false;
}

// The only fault that a report tells, but for the entries that are lost through it or
// through a second block, which is right, and for foreign items and
// what is to be told after these.
const Finding *only_fault(const kztns::CheckReport &report,
                          ForeignItems foreign = ForeignItems::none) {
  const Finding *only = nullptr;
  for (const Finding &finding : report.findings) {
    if (kztns::row_of(finding.rule).severity != kztns::Severity::error ||
        finding.rule == Rule::unreachable || finding.rule == Rule::second_block ||
        (foreign == ForeignItems::some &&
         (finding.rule == Rule::unknown_key || finding.rule == Rule::paren_in_quotes)))
      continue;
    if (only != nullptr) return nullptr;
    only = &finding;
  }
  return only;
}

std::string all_texts(const kztns::CheckReport &report) {
  std::string texts;
  for (const Finding &finding : report.findings)
    texts += to_string(finding.position) + ": " + finding.text + " [" +
             std::string(kztns::row_of(finding.rule).id) + "]\n";
  return texts;
}

// The tree of the entry with the name, empty when it is not built.
class TreeOfEntry : public kztns::EntryVisitor {
 public:
  static std::string in(const std::string &content, const std::string &name) {
    TreeOfEntry visitor(name);
    const kztns::NamesText text(content);
    kztns::FileScan(text, visitor);
    return visitor.tree_;
  }

 private:
  explicit TreeOfEntry(const std::string &name) : name_(name) {}

  void visit(const kztns::EntryView &view) override {
    if (view.name != name_ || view.service == nullptr) return;
    KZCITns tns = {};
    tns.tns_service = view.service;
    tns.tns_service_count = 1;
    tree_ = kztns::tree_json(tns);
  }
  void progress(kztns::Offset) override {}

  const std::string &name_;
  std::string tree_;
};

std::string with_fix(const std::string &text, const kztns::Fix &fix) {
  kztns::EditedText edited(text);
  edited.apply(fix.edits);
  return edited.text();
}

struct Figures {
  int told = 0;        // by the right rule at the right place, and nothing else
  int same_tree = 0;   // after the fix the library builds what it built before the damage
  std::string others;  // the files that are not told, with what is
};

// Every damage is of another entry.
Figures figures_of(ForeignItems foreign, int count) {
  Random random(7);
  Figures figures;
  for (; count > 0; --count) {
    const Damage damage = random_damage(random, foreign);
    const kztns::CheckReport report = report_of(damage.broken);
    const Finding *const finding = only_fault(report, foreign);
    if (finding != nullptr && is_right(damage, *finding))
      ++figures.told;
    else
      figures.others += "not told:\n" + damage.broken + all_texts(report) + '\n';
    const std::string tree = TreeOfEntry::in(damage.file, "broken");
    if (finding != nullptr && finding->fix.applicability == kztns::Applicability::unsafe &&
        !tree.empty() && TreeOfEntry::in(with_fix(damage.broken, finding->fix), "broken") == tree)
      ++figures.same_tree;
  }
  testing::Test::RecordProperty("told", figures.told);
  testing::Test::RecordProperty("same_tree", figures.same_tree);
  return figures;
}

// The fault of a text that is an entry's from the first "=" on.
std::optional<kztns::Diagnosis> fault_of(const std::string &content,
                                         const std::string &name = "a") {
  const kztns::NamesText text(content);
  const auto body = static_cast<kztns::Offset>(content.find('=') + 1);
  return kztns::find_parenthesis_fault({text, "file"}, {body, text.size()}, name);
}

// A broken text in which "^" stands before the place that is told, the rule, and the text
// with the fix.
struct Row {
  std::string marked;
  Rule rule;
  std::string fixed;
};

void expect_told(const Row &row) {
  std::string text = row.marked;
  const std::size_t at = text.find('^');
  text.erase(at, 1);
  const auto fault = fault_of(text);
  ASSERT_TRUE(fault) << text;
  EXPECT_EQ(fault->rule, row.rule) << text << '\n' << fault->text;
  EXPECT_EQ(fault->at, at) << text << '\n' << fault->text;
  EXPECT_EQ(with_fix(text, fault->fix), row.fixed);
}

std::string nested(int depth) {
  std::string text = "a = ";
  for (; depth > 0; --depth) text += "(x = ";
  return text + "(y = 1)";
}

}  // namespace

TEST(Parentheses, OfThreeHundredDamagedEntriesAreToldAtTheRightBlock) {
  const Figures figures = figures_of(ForeignItems::none, 300);
  EXPECT_GE(figures.told, 290) << figures.others;
  EXPECT_GE(figures.same_tree, 290);
}

TEST(Parentheses, AreToldBesideForeignItems) {
  const Figures figures = figures_of(ForeignItems::some, 300);
  EXPECT_GE(figures.told, 290) << figures.others;
}

// No key here tells whether Z is of SECURITY.
TEST(Parentheses, AreToldByTheIndentation) {
  const std::string address = "(ADDRESS =\n    (HOST = h)(PORT = 1)))";
  const Row rows[] = {
      {"a = (DESCRIPTION =\n  ^(SECURITY =\n    (X = 1)\n  (Z = 2)\n  " + address,
       Rule::unclosed_block,
       "a = (DESCRIPTION =\n  (SECURITY =\n    (X = 1))\n  (Z = 2)\n  " + address},
      {"a = (DESCRIPTION =\n  ^(SECURITY = (X = 1)\n  (Z = 2)\n  " + address, Rule::unclosed_block,
       "a = (DESCRIPTION =\n  (SECURITY = (X = 1))\n  (Z = 2)\n  " + address},
      {"a = (DESCRIPTION =\n  ^(SECURITY = (X = 1)\n    (Z = 2)\n  " + address,
       Rule::unclosed_block,
       "a = (DESCRIPTION =\n  (SECURITY = (X = 1)\n    (Z = 2))\n  " + address},
      {"a = (DESCRIPTION =\n  ^(SECURITY =\n    (X = 1)\n    (Z = 2)\n  " + address,
       Rule::unclosed_block,
       "a = (DESCRIPTION =\n  (SECURITY =\n    (X = 1)\n    (Z = 2))\n  " + address}};
  for (const Row &row : rows) expect_told(row);
}

TEST(Parentheses, AreToldByTheKeysThatABlockAllows) {
  const Row rows[] = {
      {"a = (DESCRIPTION = ^(ADDRESS = (HOST = h)(PORT = 1) (CONNECT_DATA = (SID = s)))",
       Rule::unclosed_block,
       "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)) (CONNECT_DATA = (SID = s)))"},
      {"a = (DESCRIPTION = (ADDRESS = ^(HOST = h (PORT = 1))(CONNECT_DATA = (SID = s)))",
       Rule::unclosed_block,
       "a = (DESCRIPTION = (ADDRESS = (HOST = h) (PORT = 1))(CONNECT_DATA = (SID = s)))"},
      {"a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))^)(CONNECT_DATA = (SID = s)))",
       Rule::extra_close,
       "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))"},
      {"a = (DESCRIPTION = (ADDRESS = ^HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))",
       Rule::missing_open,
       "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))"},
      {"a = ^DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)))", Rule::missing_open,
       "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)))"},
      {"a = (DESCRIPTION = (^(ADDRESS = (HOST = h)(PORT = 1)))", Rule::extra_open,
       "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)))"},
      {"a = (description_list = ^(description = (address = (host = h)) (description = (sdu = 1)))",
       Rule::unclosed_block,
       "a = (description_list = (description = (address = (host = h))) (description = (sdu = 1)))"},
      {"a = (DESCRIPTION = ^(SECURITY = (WALLET = w) (ADDRESS = (HOST = h)))", Rule::unclosed_block,
       "a = (DESCRIPTION = (SECURITY = (WALLET = w)) (ADDRESS = (HOST = h)))"},
  };
  for (const Row &row : rows) expect_told(row);
}

// As in an editor: what was begun is to be closed, not to be taken away.
TEST(Parentheses, AreMissingWhereAnEntryIsNotWrittenToItsEnd) {
  const Row rows[] = {
      {"a = ^(", Rule::unclosed_block, "a = ()"},
      {"a = ^(DESCRIPTION", Rule::unclosed_block, "a = (DESCRIPTION)"},
      {"a = ^(DESCRIPTION =", Rule::unclosed_block, "a = (DESCRIPTION =)"},
      {"a = (DESCRIPTION = ^(ADDRESS", Rule::unclosed_block, "a = (DESCRIPTION = (ADDRESS)"},
      {"a = (DESCRIPTION = (ADDRESS = ^(HOST =", Rule::unclosed_block,
       "a = (DESCRIPTION = (ADDRESS = (HOST =)"},
      {"a = (DESCRIPTION = ^(ADDRESS = (HOST = h)", Rule::unclosed_block,
       "a = (DESCRIPTION = (ADDRESS = (HOST = h))"},
  };
  for (const Row &row : rows) expect_told(row);
}

TEST(Parentheses, AreMissingWhereOtherBracketsEndValues) {
  const std::string begin = "a = (DESCRIPTION = (ADDRESS = (HOST = h";
  const std::string end = "(PORT = 1))(CONNECT_DATA = (SID = s)))";
  for (const std::string bracket : {"]", "}", "\xEF\xBC\x89"})
    expect_told({begin + "^" + bracket + end, Rule::unclosed_block, begin + ")" + end});
  expect_told({begin + "^]" + "(PORT = 1})(CONNECT_DATA = (SID = s)))", Rule::unclosed_block,
               begin + ")" + end});
  // Those that an address may have are no parentheses.
  const std::string open = "a = (DESCRIPTION = (ADDRESS = ^(HOST = ";
  for (const std::string host : {"[::1]", "{x}", "\xEF\xBC\x88x\xEF\xBC\x89", "]h", "\"h]\""})
    expect_told({open + host + " (PORT = 1))(CONNECT_DATA = (SID = s)))", Rule::unclosed_block,
                 "a = (DESCRIPTION = (ADDRESS = (HOST = " + host +
                     ") (PORT = 1))(CONNECT_DATA = (SID = s)))"});
}

TEST(Parentheses, ThatAreMissingAtTheEndAreAllTold) {
  for (const std::string entry :
       {"a = (DESCRIPTION = (ADDRESS = (HOST =", "a = (DESCRIPTION = (ADDRESS = (HOST = h",
        "a = (DESCRIPTION = (ADDRESS = (HOST = h \n"}) {
    std::string unclosed;
    for (const Finding &finding : report_of(entry).findings)
      if (finding.rule == Rule::unclosed_block)
        unclosed += to_string(finding.position) + (finding.fix ? " fixed\n" : "\n");
    EXPECT_EQ(unclosed, "1:5 fixed\n1:20 fixed\n1:31 fixed\n") << entry;
  }
}

TEST(Parentheses, AreToldByTheHomesOfForeignKeys) {
  for (const std::string word :
       {"SECURITY", "ENABLE", "SDU", "RETRY_COUNT", "CONNECT_TIMEOUT", "TDU", "EXPIRE_TIME"})
    expect_told({"a = (DESCRIPTION = ^(ADDRESS = (HOST = h)(PORT = 1) (" + word + " = 1))",
                 Rule::unclosed_block,
                 "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)) (" + word + " = 1))"});
  for (const std::string word :
       {"SERVER", "INSTANCE_NAME", "FAILOVER_MODE", "UR", "POOL_PURITY", "DATABASE"})
    expect_told({"a = (DESCRIPTION = (CONNECT_DATA = (SID = s)^)(" + word + " = 1)))",
                 Rule::extra_close,
                 "a = (DESCRIPTION = (CONNECT_DATA = (SID = s)(" + word + " = 1)))"});
  for (const std::string word : {"COMMUNITY", "HOSTNAME", "KEY", "IP"})
    expect_told({"a = (DESCRIPTION = (ADDRESS = (PORT = 1)^)(" + word + " = 1)))",
                 Rule::extra_close,
                 "a = (DESCRIPTION = (ADDRESS = (PORT = 1)(" + word + " = 1)))"});
}

TEST(EntryTokens, KnowTheirColumns) {
  const std::string text = "a = (B\n \t(C = d))\n";
  const auto tokens = kztns::entry_tokens(text, 3, static_cast<kztns::Offset>(text.size()));
  ASSERT_TRUE(tokens);
  std::vector<std::uint32_t> columns;
  for (const kztns::EntryToken &token : *tokens) columns.push_back(token.column);
  // A tab goes on to column 8.
  EXPECT_EQ(columns, (std::vector<std::uint32_t>{4, 5, 8, 9, 11, 13, 14, 15, 0}));
}

TEST(Parentheses, AreToldByTheIndentationWhereTheKeysFitBothBlocks) {
  const std::string begin = "a =\n  (DESCRIPTION =\n    ";
  const std::string end = "\n    (CONNECT_DATA = (SID = s))\n  )\n";
  const std::string list = "(ADDRESS_LIST =\n      (ADDRESS = (HOST = h))";
  expect_told({begin + '^' + list + "\n    (KZLB = ON)" + end, Rule::unclosed_block,
               begin + list + ")\n    (KZLB = ON)" + end});
  expect_told({begin + '^' + list + "\n      (KZLB = ON)" + end, Rule::unclosed_block,
               begin + list + "\n      (KZLB = ON))" + end});
}

TEST(Parentheses, OfSeveralFaultsAreToldOneAfterTheOther) {
  std::string text =
      "a = (DESCRIPTION = (ADDRESS = HOST = h)(PORT = 1)) (CONNECT_DATA = (SID = s))))";
  std::vector<Rule> rules;
  while (const auto fault = fault_of(text)) {
    rules.push_back(fault->rule);
    text = with_fix(text, fault->fix);
  }
  EXPECT_EQ(rules, (std::vector<Rule>{Rule::missing_open, Rule::extra_close}));
  EXPECT_EQ(text,
            "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)) (CONNECT_DATA = (SID = s)))");
}

TEST(Parentheses, ThatBalanceAreNoFault) {
  EXPECT_FALSE(fault_of("a = (DESCRIPTION = (CONNECT_DATA = (PORT = 1)))"));
  EXPECT_FALSE(fault_of("a = (DESCRIPTION = (ADDRESS = (HOST = \"(\")) # :-)\n)"));
  EXPECT_FALSE(fault_of("a = h:1521/s"));
}

TEST(Parentheses, AreNotSoughtWhereQuotesAreOpen) {
  EXPECT_FALSE(fault_of("a = (DESCRIPTION = (ADDRESS = (HOST = \"h)))"));
}

TEST(Parentheses, OfTheReservedEntryHaveItsKeys) {
  const std::string text = "KZCISYSTEMVARIABLES = (LOG_SIZE = 1 (LOG_COUNT = 2)";
  const auto fault = fault_of(text, "KZCISYSTEMVARIABLES");
  ASSERT_TRUE(fault);
  EXPECT_EQ(fault->at, text.find("(LOG_SIZE"));
  EXPECT_EQ(with_fix(text, fault->fix), "KZCISYSTEMVARIABLES = (LOG_SIZE = 1) (LOG_COUNT = 2)");
}

TEST(Parentheses, AreGivenUpWhereTooManyAreMissing) {
  EXPECT_TRUE(fault_of(nested(kztns::most_parenthesis_changes - 1)));
  EXPECT_TRUE(fault_of(nested(kztns::most_parenthesis_changes)));
  EXPECT_FALSE(fault_of(nested(kztns::most_parenthesis_changes + 1)));
}

TEST(Parentheses, AreGivenUpInATextOfTooManyTokens) {
  const auto tokens_of = [](std::size_t count) {
    const std::string text = "a = " + std::string(count, '(');
    const auto tokens = kztns::entry_tokens(text, 3, static_cast<kztns::Offset>(text.size()));
    return tokens ? tokens->size() : 0;
  };
  // With the one for the end.
  EXPECT_EQ(tokens_of(kztns::most_entry_tokens - 1), kztns::most_entry_tokens);
  EXPECT_EQ(tokens_of(kztns::most_entry_tokens), kztns::most_entry_tokens + 1);
  EXPECT_EQ(tokens_of(kztns::most_entry_tokens + 1), 0u);
}

TEST(Parentheses, AreNotToBlameForAComment) {
  const kztns::CheckReport report =
      report_of("a = (DESCRIPTION = (CONNECT_DATA = (SID = s #1)))\n");
  const Finding *const finding = only_fault(report);
  ASSERT_NE(finding, nullptr) << all_texts(report);
  EXPECT_EQ(finding->rule, Rule::comment_in_value);
}

TEST(Parentheses, AfterAnEntryAreRemoved) {
  const std::string text = "a = (DESCRIPTION = (CONNECT_DATA = (SID = s))))\n" + good_entry("b");
  const kztns::CheckReport report = report_of(text);
  const Finding *const finding = only_fault(report);
  ASSERT_NE(finding, nullptr) << all_texts(report);
  EXPECT_EQ(finding->at, text.find(")\nb"));
  EXPECT_EQ(with_fix(text, finding->fix),
            "a = (DESCRIPTION = (CONNECT_DATA = (SID = s)))\n" + good_entry("b"));
}

TEST(Parentheses, BeforeTheFirstEntryAreRemoved) {
  const kztns::CheckReport report = report_of(")" + good_entry("b"));
  const Finding *const finding = only_fault(report);
  ASSERT_NE(finding, nullptr) << all_texts(report);
  EXPECT_EQ(finding->rule, Rule::extra_close);
  EXPECT_EQ(with_fix(")" + good_entry("b"), finding->fix), good_entry("b"));
}

TEST(Parentheses, ThatLackOneLeaveTheNextIndentedEntryAlone) {
  const kztns::CheckReport report =
      report_of("  a = (DESCRIPTION = (CONNECT_DATA = (SID = s))\n  " + good_entry("b") + "  " +
                good_entry("c"));
  ASSERT_EQ(report.entries.size(), 3u);
  EXPECT_EQ(report.entries[1].name, "b");
  const Finding *const finding = only_fault(report);
  ASSERT_NE(finding, nullptr) << all_texts(report);
  EXPECT_EQ(finding->entry, "a");
}

// Entries may be named as the keys of other readers are.
TEST(Parentheses, ThatLackOneLeaveAnEntryNamedLikeAForeignKeyAlone) {
  for (const kztns::ForeignKey &key : kztns::foreign_keys()) {
    if (key.treatment == kztns::ForeignTreatment::unwrap) continue;
    const std::string open =
        "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))"
        "(CONNECT_DATA = (SID = s))";
    const std::string next = std::string(key.word) + " = " + support::sound::block + "\n";
    EXPECT_EQ(support::mended(open + "\n" + next), open + ")\n" + next) << key.word;
  }
}

TEST(Parentheses, ThatLackOneMakeNoEntryOfAKey) {
  const kztns::CheckReport report = report_of(
      "a = (DESCRIPTION =\nADDRESS_LIST = (ADDRESS = (HOST = h)(PORT = 1)))\n"
      "(CONNECT_DATA = (SID = s)))\n");
  EXPECT_EQ(report.entries.size(), 1u);
  const Finding *const finding = only_fault(report);
  ASSERT_NE(finding, nullptr) << all_texts(report);
  EXPECT_EQ(finding->rule, Rule::missing_open);
}

TEST(Parentheses, AreSoughtOnlyAFewTimesOverTheWholeText) {
  const kztns::NamesText text("a = " + std::string(96, ' '));
  kztns::EntryRanges ranges(text);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(ranges.range_of(0).end, 100u);
  EXPECT_EQ(ranges.range_of(0).end, 0u);
}
