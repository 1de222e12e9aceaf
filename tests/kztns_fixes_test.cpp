// What the fixes of an entry's faults say and leave of it.
#include <fstream>

#include "fixes/foreign_fixes.h"
#include "support/entry_fixes.h"

using namespace support;

TEST(Fixes, WriteAbbreviationsOut) {
  const std::string before = "x=" + in_description("(KZLB=of)" + address + data) + "\n";
  const kztns::CheckReport report = report_of(before);
  ASSERT_EQ(report.findings.size(), 1u);
  EXPECT_EQ(report.findings[0].fix.applicability, Applicability::safe);
  EXPECT_EQ(edited(before, report.findings[0].fix.edits),
            "x=" + in_description("(KZLB=OFF)" + address + data) + "\n");
}

TEST(Fixes, KeepTheTreeOfAnEntryThatIsBuilt) {
  const std::string text =
      "x=" + in_description(address + data + "(CONNECT_DATA=(KZ_MODE=1))") + "\n";
  EXPECT_TRUE(is_served(text));
  const kztns::CheckReport report = report_of(text);
  ASSERT_NE(finding_of(report, "second-connect-data"), nullptr);
  EXPECT_TRUE(kztns::edits_of(report.findings).empty());
}

TEST(Fixes, SplitAListOfDescriptionsBeforeOtherEntries) {
  const std::string description = in_description(address + data);
  const std::string other = "y=" + description + "\n";
  const std::string before = "x=(DESCRIPTION_LIST=" + description + description + ")\n" + other;
  EXPECT_EQ(edited(before, kztns::edits_of(report_of(before).findings)),
            "x=" + description + "\nx_2 =\n  " + description + "\n" + other);
  // Numbers that are taken are passed over.
  const std::string taken = other + "x_2=" + description + "\nx_4=" + description + "\n";
  EXPECT_EQ(edited("x=(DESCRIPTION_LIST=" + description + description + description + ")\n" + taken,
                   kztns::edits_of(report_of("x=(DESCRIPTION_LIST=" + description + description +
                                             description + ")\n" + taken)
                                       .findings)),
            "x=" + description + "\nx_3 =\n  " + description + "\nx_5 =\n  " + description + "\n" +
                taken);
}

// Of one key the unit is known: seconds.
TEST(Fixes, ConvertUnitsWhereNothingIsLost) {
  const auto before = [](const std::string &value) {
    return "KZCISYSTEMVARIABLES = (SLOWSQL_FLUSH_SECOND = " + value + ")\n";
  };
  const auto after = [&](const std::string &value) {
    return edited(before(value), kztns::edits_of(report_of(before(value)).findings));
  };
  EXPECT_EQ(after("5s"), before("5"));
  EXPECT_EQ(after("5000ms"), before("5"));
  EXPECT_EQ(after("2min"), before("120"));
  EXPECT_EQ(after("1h"), before("3600"));
  for (const std::string value : {"90ms", "2x", "1000000000h"})
    EXPECT_EQ(after(value), before(value));
}

TEST(Fixes, LeaveAWordThatIsRight) {
  const kztns::CheckReport report =
      report_of("x=" + in_description("(LOAD_BALANCE=ON)" + address + data) + "\n");
  ASSERT_EQ(report.findings.size(), 1u);
  ASSERT_EQ(report.findings[0].fix.edits.size(), 1u);
  EXPECT_EQ(report.findings[0].fix.edits[0].text, "KZLB");
}

TEST(Fixes, CloseAQuoteInItsEntry) {
  const std::string other = "\ny=" + in_description("(ADDRESS=(HOST=\"i\")(PORT=1))" + data) + "\n";
  const std::string before = "x=" + in_description("(ADDRESS=(HOST=\"h)(PORT=1))" + data) + other;
  const kztns::CheckReport report = report_of(before);
  const kztns::Finding *const found = finding_of(report, "unclosed-quote");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(to_string(found->position), "1:31");
  EXPECT_EQ(edited(before, found->fix.edits),
            "x=" + in_description("(ADDRESS=(HOST=\"h\")(PORT=1))" + data) + other);
}

TEST(Faults, SayWhatToDo) {
  const struct {
    std::string items;
    std::string rule;
    std::string remedy;
  } rows[] = {
      {address + "(CONNECT_DATA=(SERVICE=t)(SID=s))", "unknown-key",
       "remove the item: SID is set here, too"},
      {address + "(CONNECT DATA=(SID=s))", "unknown-key", "did you mean CONNECT_DATA?"},
      {"(ADDRESS=(HOST=h PORT=1))" + data, "unquoted-value",
       "put each item in parentheses of its own"},
      {"(ADDRESS=(HOST=h i)(PORT=1))" + data, "unquoted-value", "write the host's name or address"},
      {"(ADDRESS=(HOST=a\nb)(PORT=1))" + data, "unquoted-value", "did you mean ab?"},
      {"(ADDRESS=(HOST=h)(PORT=15 21))" + data, "unquoted-value", "write the port's number"},
      {"(KZLB_READ_TIMEOUT=10 min)" + address + data, "unquoted-value",
       "write decimal digits, with a sign or without"},
      {"(ADDRESS=(PROTOCOL='TCP')(HOST=h)(PORT=1))" + data, "bad-protocol", "did you mean TCP?"},
      {address + "(CONNECT_DATA=(SID==s))", "missing-value", "remove \"=\""},
      {address + ",;" + data, "missing-close", "remove \",;\""},
      {address + " and so on " + data, "missing-close", "make a comment of \"and so on\""},
      {"(main site)" + address + data, "unknown-key", "make a comment of it"},
      {"(ENCRYPTION=on)" + address + data, "unknown-key",
       "connections are not encrypted, and use no proxy"},
      {address + " -- main\n" + data, "missing-close", "begin the comment with \"#\""},
      {address + " \\\n" + data, "missing-close", "remove \"\\\": an entry goes on by itself"},
      {address + "{CONNECT_DATA={SID=s}}", "missing-close",
       "write parentheses instead of brackets"},
      {address + "(CONNECT_DATA=SID=s)", "value-for-block", "put the item in parentheses"},
      {"(" + address + ")" + data, "missing-key", "remove the outer parentheses"},
  };
  for (const auto &row : rows) {
    const kztns::CheckReport report = report_of("x=" + in_description(row.items) + "\n");
    const kztns::Finding *const found = finding_of(report, row.rule);
    ASSERT_NE(found, nullptr) << row.items;
    EXPECT_EQ(found->remedy, row.remedy) << row.items;
  }
}

// Bytes are no minutes.
TEST(Faults, OfASizeWithAUnitHaveNoFix) {
  for (const std::string value : {"10M", "64 MB"}) {
    const kztns::CheckReport report = report_of("KZCISYSTEMVARIABLES=(LOG_SIZE=" + value + ")\n");
    ASSERT_EQ(report.findings.size(), 1u) << value;
    EXPECT_FALSE(report.findings[0].fix) << value;
  }
}

TEST(Faults, OfABlockInABraceAreNoEntry) {
  const std::string lines = "ADDRESS_LIST =\n    " + address + "\n  )\n  " + data + ")\n";
  EXPECT_EQ(report_of("x = (DESCRIPTION =\n  {" + lines).verdicts[0], 0u);
  const kztns::CheckReport report = report_of("x = (DESCRIPTION =\n  {" + lines);
  for (const kztns::Finding &finding : report.findings) EXPECT_EQ(finding.entry, "x");
}

TEST(Settings, ThatAreMisspeltAreMended) {
  const auto fixed = [](const std::string &items) {
    const std::string text = "KZCISYSTEMVARIABLES=" + items + "\n";
    const kztns::CheckReport report = report_of(text);
    EXPECT_EQ(report.findings.size(), 1u) << items;
    return edited(text, report.findings[0].fix.edits);
  };
  EXPECT_EQ(fixed("(LOGPATH=x)"), "KZCISYSTEMVARIABLES=(LOG_PATH=x)\n");
  EXPECT_EQ(fixed("(SLOWSQL_TRESHOLD=5)"), "KZCISYSTEMVARIABLES=(SLOWSQL_THRESHOLD=5)\n");
  EXPECT_EQ(fixed("(LOG_LEVEL=warning)"), "KZCISYSTEMVARIABLES=(LOG_LEVEL=WARN)\n");
  EXPECT_EQ(fixed("(LOG_LEVEL=EROR)"), "KZCISYSTEMVARIABLES=(LOG_LEVEL=ERROR)\n");
  EXPECT_EQ(fixed("(LOG_LEVEL=LOUD)"), "KZCISYSTEMVARIABLES=(LOG_LEVEL=LOUD)\n");
  EXPECT_EQ(fixed("(COLOR=1)"), "KZCISYSTEMVARIABLES=(COLOR=1)\n");
}

TEST(Faults, OfAColonAfterANameAreMendedByAnEqualSign) {
  const std::string entry = " " + in_description(address + data) + "\n";
  for (const std::string before : {"x :", "x :=", "x:", "x -", "x ->", "x :\n"}) {
    const kztns::CheckReport report = report_of(before + entry);
    ASSERT_EQ(report.findings.size(), 1u) << before;
    const kztns::Finding &found = report.findings[0];
    EXPECT_EQ(kztns::row_of(found.rule).id, "missing-equal") << before;
    const std::size_t sign = before.find_first_of(":-");
    EXPECT_TRUE(found.text.starts_with("expected \"=\" after the name \"x\", found \"" +
                                       before.substr(sign, before.find('\n') - sign) + "\": "))
        << found.text;
    EXPECT_EQ(found.remedy, "put \"=\" instead of it");
    EXPECT_EQ(edited(before + entry, found.fix.edits),
              (before.ends_with('\n') ? "x =\n" : "x =") + entry)
        << before;
  }
}

TEST(Faults, OfASecondDescriptionAreNoStrayText) {
  const kztns::CheckReport report =
      report_of("x=" + in_description(address + data) + in_description("(SDU=1)" + address + data) +
                "\ny=" + in_description(address + data) + "\n");
  EXPECT_NE(finding_of(report, "unknown-key"), nullptr);
  EXPECT_NE(finding_of(report, "second-block"), nullptr);
  EXPECT_EQ(finding_of(report, "stray-text"), nullptr);
}

TEST(Faults, LeaveTheWarningsAboutValues) {
  const kztns::CheckReport report = report_of(
      "x=" + in_description("(SOURCE_ROUTE=ON)(ADDRESS=(HOST=h)(PORT=none)(WEIGHT=-1))") + "\n");
  EXPECT_NE(finding_of(report, "bad-port"), nullptr);
  EXPECT_NE(finding_of(report, "negative-number"), nullptr);
  EXPECT_EQ(finding_of(report, "no-service"), nullptr);
}

TEST(Faults, OfAValueWithAUnitAreToldOfTheKeyThatIsThere) {
  const kztns::CheckReport report =
      report_of("x=" + in_description("(CONNECT_TIMEOUT=90ms)" + address + data) + "\n");
  ASSERT_EQ(report.findings.size(), 1u);
  EXPECT_EQ(report.findings[0].text, "unknown key CONNECT_TIMEOUT");
  EXPECT_EQ(report.findings[0].remedy,
            "write KZLB_CONNECT_TIMEOUT: it takes a number alone, in the connection layer's unit "
            "(other readers "
            "of this file need it)");
}

TEST(Faults, SayWhereCheckingEnds) {
  const kztns::CheckReport report =
      report_of("x=" + in_description("(ADDRESS=(HOST=" + std::string(300, 'h') + ")(PORT=z))"));
  const kztns::Finding *const found = finding_of(report, "key-cut");
  ASSERT_NE(found, nullptr);
  EXPECT_NE(found->text.find("; the rest of the entry is not checked"), std::string::npos);
}

TEST(ForeignKeys, AreDocumented) {
  std::ifstream document(std::string(KZOCI_SOURCE_DIR) + "/docs/diagnostics.md");
  std::vector<std::string> rows;
  for (std::string line; std::getline(document, line) && line != "## The rules";) {
    if (line == "## Keys of other readers") rows.clear();
    if (line.starts_with("| `")) rows.push_back(line);
  }
  std::vector<std::string> expected;
  for (const kztns::ForeignKey &key : kztns::foreign_keys())
    expected.push_back("| `" + std::string(key.word) + "` | " + std::string(key.there) + " | " +
                       fix_of(key) + " | " + std::string(key.here) + " | " +
                       (key.shared ? "yes" : "no") + " |");
  EXPECT_EQ(rows, expected);
}
