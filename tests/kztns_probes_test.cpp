// Small names files with one oddity each: what a lookup makes of them, and what
// the command tells about it.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <sstream>

#include <gtest/gtest.h>

#include "check/check_file.h"
#include "lookup/lookup.h"
#include "lookup/lookup_failure.h"
#include "text/names_text.h"

namespace {

const std::string folder = std::string(KZOCI_SOURCE_DIR) + "/tests/probes/";

// A row of the table: the name looked up, what comes of it, and where the oddity
// is first met; line 0 where nothing is odd about this lookup.
struct Probe {
  std::string file;
  std::string name;
  int status;
  int find;
  unsigned line;
  std::string reason;
};

void PrintTo(const Probe &probe, std::ostream *out) {
  *out << probe.file << ", looking up " << probe.name;
}

std::vector<Probe> read_table() {
  std::ifstream table(folder + "EXPECTED.tsv");
  std::string row;
  std::getline(table, row);  // the heading
  std::vector<Probe> probes;
  while (std::getline(table, row)) {
    std::istringstream columns(row);
    Probe probe = {};
    std::string status, find, position;
    std::getline(columns, probe.file, '\t');
    std::getline(columns, probe.name, '\t');
    std::getline(columns, status, '\t');
    std::getline(columns, find, '\t');
    std::getline(columns, position, '\t');
    std::getline(columns, probe.reason);
    probe.status = std::stoi(status);
    probe.find = std::stoi(find);
    probe.line = position.empty() ? 0 : static_cast<unsigned>(std::stoul(position));
    probes.push_back(probe);
  }
  return probes;
}

class Probes : public testing::TestWithParam<Probe> {
 protected:
  void SetUp() override { setenv("KZCI_TNS_FILE", path().c_str(), 1); }
  void TearDown() override { unsetenv("KZCI_TNS_FILE"); }

  std::string path() const { return folder + GetParam().file; }

  kztns::CheckReport report() const {
    kztns::ReadFault fault;
    const kztns::NamesText text(kztns::read_file(path(), kztns::default_max_size, fault).value());
    kztns::CheckRequest request;
    request.file = GetParam().file;
    request.with_entries = true;
    return kztns::check_file(text, request);
  }
};

std::string all_texts(const kztns::CheckReport &report) {
  std::string texts;
  for (const kztns::Finding &finding : report.findings)
    texts += to_string(finding.position) + ": " + finding.text + "\n";
  return texts;
}

// Whether a finding is in the line, or names it: what is met at the end of the
// file is reported where it begins.
bool points_at_line(const kztns::CheckReport &report, unsigned line) {
  const std::string named = " " + std::to_string(line) + ":";
  for (const kztns::Finding &finding : report.findings)
    if (finding.position.line == line || finding.text.find(named) != std::string::npos) return true;
  return false;
}

const kztns::ReportEntry *first_of(const kztns::CheckReport &report, const std::string &name) {
  for (const kztns::ReportEntry &entry : report.entries)
    if (entry.name == name) return &entry;
  return nullptr;
}

}  // namespace

TEST(ProbeTable, HasEveryProbe) { EXPECT_EQ(read_table().size(), 54u); }

TEST_P(Probes, LookupEndsAsInTheTable) {
  const Probe &probe = GetParam();
  kztns::Tree tree;
  boolean find = -1;
  const sword status =
      KZCITnsBuild(tree.get(), reinterpret_cast<const OraText *>(probe.name.c_str()),
                   static_cast<ub4>(probe.name.size()), &find);
  EXPECT_EQ(status, probe.status) << probe.reason;
  EXPECT_EQ(find, probe.find) << probe.reason;
}

TEST_P(Probes, CheckNamesTheCauseAtItsLine) {
  const Probe &probe = GetParam();
  const kztns::CheckReport found = report();
  if (probe.line == 0) return;
  EXPECT_FALSE(found.findings.empty()) << probe.reason;
  EXPECT_TRUE(points_at_line(found, probe.line)) << probe.reason << "\n" << all_texts(found);
}

TEST_P(Probes, VerdictAgreesWithTheTable) {
  const Probe &probe = GetParam();
  const kztns::CheckReport found = report();
  const kztns::ReportEntry *const entry = first_of(found, probe.name);
  if (entry == nullptr) {
    EXPECT_EQ(probe.find, 0) << probe.reason;
    return;
  }
  const bool served =
      entry->verdict == kztns::Verdict::ok || entry->verdict == kztns::Verdict::reserved;
  EXPECT_EQ(served, probe.find == 1) << probe.reason;
}

TEST_P(Probes, WhyTellsTheCause) {
  const Probe &probe = GetParam();
  kztns::Tree tree;
  const kztns::Lookup lookup = kztns::look_up(probe.name, {}, tree);
  const kztns::LookupReport report = kztns::make_lookup_report(probe.name, lookup);
  if (probe.status != 0) {
    ASSERT_TRUE(report.fault.has_value()) << probe.reason;
    EXPECT_NE(kztns::describe_failure(lookup, report).find(to_string(report.fault->position)),
              std::string::npos);
  } else if (probe.find == 0) {
    EXPECT_TRUE(report.fault.has_value() || !report.near.empty()) << probe.reason;
  } else {
    EXPECT_FALSE(report.fault.has_value()) << probe.reason;
    EXPECT_TRUE(report.entry.has_value()) << probe.reason;
    EXPECT_FALSE(report.warnings.empty() && probe.line != 0) << probe.reason;
  }
}

INSTANTIATE_TEST_SUITE_P(, Probes, testing::ValuesIn(read_table()),
                         [](const testing::TestParamInfo<Probe> &info) {
                           return std::filesystem::path(info.param.file).stem().string();
                         });
