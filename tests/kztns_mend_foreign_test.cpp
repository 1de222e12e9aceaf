// Generated files of other readers, mended: what is served keeps its tree, what is not is
// reported, and mending twice is mending once.
#include <map>

#include <gtest/gtest.h>

#include "check/check_selected.h"
#include "lookup/served_lookups.h"
#include "mend/comment_out.h"
#include "report/check_run.h"
#include "support/foreign_lookups.h"

using support::trees_found;

namespace {

struct Choice {
  const char *name;
  bool with_unsafe;
  kztns::Commenting commenting;
};

constexpr Choice choices[] = {
    {"safe", false, {}}, {"unsafe", true, {}}, {"commented out", true, {std::nullopt, true}}};

std::string mended(const std::string &content, const Choice &choice) {
  const kztns::NamesText original(content);
  kztns::Mender mender(original, {"names.ora", choice.with_unsafe});
  kztns::mend(mender, choice.commenting);
  EXPECT_FALSE(mender.stopped());
  return mender.text().text();
}

kztns::CheckReport report_of(const std::string &content) {
  const kztns::NamesText text(content);
  return kztns::check_selected(text, {.file = "names.ora"}, {});
}

template <class Check>
void for_files_and_choices(Check check) {
  support::for_foreign_files([&](const support::ForeignFile &file) {
    for (const Choice &choice : choices) {
      SCOPED_TRACE(choice.name);
      check(file, choice);
    }
  });
}

}  // namespace

TEST(MendForeignFiles, TwiceIsOnce) {
  for_files_and_choices([](const support::ForeignFile &file, const Choice &choice) {
    const std::string once = mended(file.text, choice);
    EXPECT_EQ(mended(once, choice), once);
  });
}

TEST(MendForeignFiles, LeavesAcceptedFilesByteForByte) {
  std::size_t accepted = 0;
  for_files_and_choices([&](const support::ForeignFile &file, const Choice &choice) {
    if (!report_of(file.text).findings.empty()) return;
    ++accepted;
    EXPECT_EQ(mended(file.text, choice), file.text);
  });
  EXPECT_GT(accepted, 0u);
}

TEST(MendForeignFiles, KeepsTheTreesOfWhatIsServed) {
  for_files_and_choices([](const support::ForeignFile &file, const Choice &choice) {
    const auto before = trees_found(file.names, file.text);
    const auto after = trees_found(file.names, mended(file.text, choice));
    for (const auto &[name, tree] : before) {
      const auto found = after.find(name);
      ASSERT_NE(found, after.end()) << name;
      EXPECT_EQ(found->second, tree) << name;
    }
  });
}

TEST(MendForeignFiles, ReportsWhatIsNotServed) {
  for_files_and_choices([](const support::ForeignFile &file, const Choice &choice) {
    const std::string result = mended(file.text, choice);
    const kztns::CheckReport report = report_of(result);
    const bool errors = count(report, kztns::Severity::error) > 0;
    if (choice.commenting.unserved) {
      EXPECT_FALSE(errors) << result;
    } else if (!errors) {
      EXPECT_EQ(trees_found(file.names, result).size(), file.names.size()) << result;
    }
  });
}

TEST(MendForeignFiles, LeavesNothingThatCheckCountsAsFixable) {
  for_files_and_choices([](const support::ForeignFile &file, const Choice &choice) {
    const kztns::CheckReport report = report_of(mended(file.text, choice));
    const kztns::FixCounts left = totals_of(report).fixes;
    EXPECT_EQ(left.safe, 0u);
    if (choice.with_unsafe) {
      EXPECT_EQ(left.unsafe, 0u);
    }
  });
}

TEST(MendForeignFiles, LookupsFindAllThatIsServed) {
  for_files_and_choices([](const support::ForeignFile &file, const Choice &choice) {
    const kztns::NamesText result(mended(file.text, choice));
    EXPECT_TRUE(kztns::all_are_found(result.text(), {}, kztns::served_names(result).names()));
  });
}
