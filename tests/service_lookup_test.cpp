// The lookup of a connect identifier: which file is read, which entry is built,
// and what the caller and the log learn of it.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "support/expected_log.h"
#include "support/lookup_fixture.h"
#include "support/parsing.h"

namespace {

using namespace expected_log;
using namespace std::string_view_literals;
using support::Block;
using support::build;
using support::bytes;
using support::open_files;
using support::Outcome;

constexpr Outcome found{0, 1};
constexpr Outcome absent{0, 0};
constexpr Outcome failed{-1, 0};

const Block description_block{"KZCIDescription", sizeof(KZCIDescription)};
const Block list_block{"address_list", sizeof(KZCIAddressList)};
const Block address_block{"address", sizeof(KZCIAddress)};

std::string host_of(const KZCITnsService &service) {
  const KZCIAddress &address = *service.description->address_list->address;
  return support::text_of(address.host, address.host_len);
}

std::string name_of(const KZCITnsService &service) {
  return support::text_of(service.net_service_name, service.net_service_name_len);
}

std::string entry(const std::string &name, const std::string &host_value) {
  return name + " = (DESCRIPTION = (ADDRESS = (HOST = " + host_value + ")))\n";
}

Lines entry_failed(int status) { return service_failed(status) + entry_refused(); }

class ServiceLookup : public support::LookupTest {
 protected:
  void TearDown() override { end({}); }

  // Looks a name up in a file with this text.
  Outcome look_up(std::string_view text, const std::string &name) {
    names_file(text);
    return build(tns_, name);
  }
};

// ----------------------------------------------------------------------
// Recognising a descriptor
// ----------------------------------------------------------------------

// Asks with an exact-size copy, so that a read after the text shows.
boolean is_description(std::string_view text) {
  const auto copy = std::make_unique<char[]>(text.size());
  std::memcpy(copy.get(), text.data(), text.size());
  return IsDescriptionTns(copy.get(), static_cast<ub4>(text.size()));
}

class DescriptorTest : public testing::Test {
 protected:
  void SetUp() override { support::reset_platform(); }
  void TearDown() override {
    EXPECT_EQ(support::log_records(), Lines{});
    EXPECT_EQ(support::bad_releases(), 0u);
  }
};

TEST_F(DescriptorTest, FirstThirteenCharactersThatAreNotBlankDecide) {
  const std::string_view good[] = {
      "(DESCRIPTION=",
      "(description=",
      "(DeScRiPtIoN=",
      "(DESCRIPTION=(ADDRESS=(HOST=h)))",
      "(DESCRIPTION=anything",
      "(DESCRIPTION==",
      "\n\n( DESCRIPTION =",
      "( description =",
      " \t\n\r(\nD\tE\rS C R I P T I O N\r\n= \t",
      "(DESCRIPTION=   ",
      "(DESCRIPTION=\0"sv,
  };
  for (const std::string_view text : good) {
    SCOPED_TRACE(text);
    EXPECT_EQ(is_description(text), 1);
  }
}

TEST_F(DescriptorTest, AnythingElseIsAName) {
  const std::string_view bad[] = {
      "",
      " ",
      "mydb",
      "(DESCRIPTION",
      "(DESCRIPTION ",
      "DESCRIPTION=",
      "DESCRIPTION=(",
      "((DESCRIPTION=",
      "(DESCRIPTIONS=",
      "(DESCRIPTION_LIST=",
      "(DESCRIPTION(=",
      "(DESCR{PTION=",
      "#(DESCRIPTION=",
      "(#DESCRIPTION=",
      "\"(DESCRIPTION=",
      "\v(DESCRIPTION=",
      "\f(DESCRIPTION=",
      "\0(DESCRIPTION="sv,
      "(DESCRIPTION\0="sv,
      "(DESC\0RIPTION="sv,
      "\xEF\xBB\xBF(DESCRIPTION=",
      "\xA0(DESCRIPTION=",
      "(ADDRESS=(HOST=h",
  };
  for (const std::string_view text : bad) {
    SCOPED_TRACE(text);
    EXPECT_EQ(is_description(text), 0);
  }
}

TEST_F(DescriptorTest, NoMoreThanTheGivenLengthIsExamined) {
  char text[] = "(DESCRIPTION=(";
  for (ub4 length = 0; length <= 14; ++length) {
    SCOPED_TRACE(length);
    EXPECT_EQ(IsDescriptionTns(text, length), length >= 13 ? 1 : 0);
  }
}

TEST_F(DescriptorTest, AnyNumberOfBlanksIsPassedOver) {
  EXPECT_EQ(is_description(std::string(5000, ' ') + "(DESCRIPTION="), 1);
  EXPECT_EQ(is_description(std::string(5000, '\n')), 0);
  EXPECT_EQ(is_description("(DESCRIPTION" + std::string(5000, '\t') + "="), 1);
}

TEST_F(DescriptorTest, ALengthThatIsNegativeAsASignedValueCollectsNothing) {
  char text[] = "(DESCRIPTION=";
  EXPECT_EQ(IsDescriptionTns(text, 0x80000000u), 0);
  EXPECT_EQ(IsDescriptionTns(text, 0xFFFFFFFFu), 0);
  EXPECT_EQ(IsDescriptionTns(nullptr, 0), 0);
}

// ----------------------------------------------------------------------
// The open file
// ----------------------------------------------------------------------

#if !defined(_WIN32)

// The descriptor that this process has open for reading on a path; -1 for none.
int descriptor_reading(const std::string &path) {
  for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    const int descriptor = std::stoi(entry.path().filename());
    if (std::filesystem::read_symlink(entry.path(), gone) == path &&
        (fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_RDONLY)
      return descriptor;
  }
  return -1;
}

// A pipe holds the lookup up while it has the file open.
TEST_F(ServiceLookup, TheFileIsClosedOnExec) {
  const std::string path = folder_.path() + "/names.ora";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  Outcome outcome{};
  std::thread lookup([&] { outcome = build(tns_, "mydb"); });
  const int writer = open(path.c_str(), O_WRONLY);
  // The reader's call may return a little later than the writer's.
  int reader = -1;
  const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (reader == -1 && std::chrono::steady_clock::now() < give_up)
    reader = descriptor_reading(path);
  const int flags = fcntl(reader, F_GETFD);
  close(writer);
  lookup.join();
  EXPECT_NE(reader, -1);
  EXPECT_EQ(flags & FD_CLOEXEC, FD_CLOEXEC);
  EXPECT_EQ(outcome, (Outcome{0, 0}));
}

#endif

// ----------------------------------------------------------------------
// Arguments and descriptors
// ----------------------------------------------------------------------

TEST_F(ServiceLookup, ANullArgumentIsReportedBeforeAnythingIsRead) {
  const OraText name[] = "mydb";
  for (int nulls = 1; nulls < 8; ++nulls) {
    SCOPED_TRACE(nulls);
    support::reset_platform();
    boolean find = 7;
    KZCITns *tns = (nulls & 1) ? nullptr : &tns_;
    const OraText *dbname = (nulls & 2) ? nullptr : name;
    EXPECT_EQ(KZCITnsBuild(tns, dbname, 4, (nulls & 4) ? nullptr : &find), -2);
    EXPECT_EQ(find, 7);
    EXPECT_EQ(
        support::log_without_pointers(),
        (Lines{std::string("DEBUG call KZCITnsBuild with params [tns:") + (tns ? "PTR]" : "NULL]"),
               "ERROR invalid handle, handle is NULL"}));
  }
}

TEST_F(ServiceLookup, TheFirstRecordPrintsTheContainer) {
  build(tns_, "mydb");
  EXPECT_EQ(support::log_records().front(),
            "DEBUG call KZCITnsBuild with params [tns:" + support::pointer_text(&tns_) + "]");
}

TEST_F(ServiceLookup, ADescriptorIsBuiltWithoutEnvironmentAndFile) {
  const std::string text = "\n\n( description = (ADDRESS=(HOST=h)))";
  for (const bool has_file : {true, false}) {
    SCOPED_TRACE(has_file);
    begin();
    names_file(entry("mydb", "h"));
    if (!has_file) environment_.unset("KZCI_TNS_FILE");
    EXPECT_EQ(build(tns_, text), found);
    const Lines log = support::log_without_pointers();
    ASSERT_GE(log.size(), 3u);
    EXPECT_EQ(log[0], "DEBUG call KZCITnsBuild with params [tns:PTR]");
    EXPECT_EQ(log[1], "DEBUG call KZCITnsBuildDes with params [tns:PTR, " + text + "]");
    EXPECT_EQ(log[2], "DEBUG read data mode=2");
    EXPECT_EQ(log.back(), "DEBUG succ to call KZCITnsServiceBuild, service number:1");
    EXPECT_EQ(name_of(*tns_.tns_service), "description");
    end({});
  }
}

TEST_F(ServiceLookup, TheOutcomeOfADescriptorIsPassedOn) {
  EXPECT_EQ(build(tns_, "(DESCRIPTION=(ADDRESS=(HOST=h)))x"), failed);
  EXPECT_EQ(build(tns_, "(DESCRIPTION=("), failed);
  EXPECT_EQ(tns_.tns_service_count, 0u);
  support::reset_platform();  // The first descriptor's description stays allocated.

  EXPECT_EQ(build(tns_, "(DESCRIPTION="), failed);
  EXPECT_EQ(support::log_without_pointers(), lookup_call() + descriptor_call("(DESCRIPTION=") +
                                                 refill(2) + description_begins() + input_end(2) +
                                                 description_failed() + service_failed(-1));
}

// ----------------------------------------------------------------------
// The name of the file
// ----------------------------------------------------------------------

TEST_F(ServiceLookup, WithoutAnyVariableThereIsNoFile) {
  environment_.unset("KZCI_TNS_FILE");
  EXPECT_EQ(build(tns_, "mydb"), absent);
  const Lines no_file = {"DEBUG can not get file name in environment",
                         "DEBUG fail to call KZCITnsBuildGetFile, status:100"};
  EXPECT_EQ(support::log_without_pointers(), lookup_call() + no_file);
}

TEST_F(ServiceLookup, AMissingFileIsNoError) {
  EXPECT_EQ(build(tns_, "mydb"), absent);
  EXPECT_EQ(support::log_without_pointers(), lookup_begins() + not_opened("names.ora"));
}

// A value of this length, and what the file's name holds after its first 256
// characters or fewer.
struct NameRow {
  std::size_t length;
  std::size_t kept;
  const char *suffix;
};

class ValueOfAVariable : public ServiceLookup {
 protected:
  void run_values(const char *variable, std::span<const NameRow> rows) {
    for (const NameRow &row : rows) {
      SCOPED_TRACE(row.length);
      begin();
      const std::string value(row.length, 'a');
      const std::string file = std::string(row.kept, 'a') + row.suffix;
      environment_.set(variable, value);
      EXPECT_EQ(build(tns_, "mydb"), absent);
      EXPECT_EQ(support::log_without_pointers(),
                lookup_begins(variable, value, file) + not_opened(file));
    }
  }
};

TEST_F(ValueOfAVariable, TnsAdminIsADirectoryAndTheNameIsCutTo256Characters) {
  environment_.unset("KZCI_TNS_FILE");
  const NameRow rows[] = {
      {1, 1, "/tnsnames.ora"},
      {242, 242, "/tnsnames.ora"},
      {243, 243, "/tnsnames.ora"},
      {244, 244, "/tnsnames.or"},
      {245, 245, "/tnsnames.o"},
      {254, 254, "/t"},
      {255, 255, "/"},
      {256, 256, ""},
      {257, 256, ""},
      {5000, 256, ""},
  };
  run_values("TNS_ADMIN", rows);
}

TEST_F(ValueOfAVariable, OracleHomeIsADirectoryAndTheNameIsCutTo256Characters) {
  environment_.unset("KZCI_TNS_FILE");
  const NameRow rows[] = {
      {1, 1, "/network/admin/tnsnames.ora"},
      {228, 228, "/network/admin/tnsnames.ora"},
      {229, 229, "/network/admin/tnsnames.ora"},
      {230, 230, "/network/admin/tnsnames.or"},
      {231, 231, "/network/admin/tnsnames.o"},
      {255, 255, "/"},
      {256, 256, ""},
      {257, 256, ""},
      {5000, 256, ""},
  };
  run_values("ORACLE_HOME", rows);
}

#if !defined(_WIN32)  // A path has at most 259 characters there.
TEST_F(ValueOfAVariable, TheFilesOwnVariableIsCutTo256Characters) {
  const NameRow rows[] = {
      {0, 0, ""}, {1, 1, ""}, {255, 255, ""}, {256, 256, ""}, {257, 256, ""}, {5000, 256, ""},
  };
  run_values("KZCI_TNS_FILE", rows);
}
#endif

TEST_F(ServiceLookup, AFileWhoseNameHas256CharactersIsRead) {
  const std::string file = std::string(100, 'd') + "/" + std::string(155, 'f');
  folder_.write(file, entry("mydb", "h"));
  for (const char *after : {"", "x", "/x"}) {
    SCOPED_TRACE(after);
    begin();
    environment_.set("KZCI_TNS_FILE", file + after);
    EXPECT_EQ(build(tns_, "mydb"), found);
    end({});
  }
}

TEST_F(ServiceLookup, ACutSuffixNamesAnotherFile) {
  environment_.unset("KZCI_TNS_FILE");
  folder_.write(std::string(244, 'a') + "/tnsnames.or", entry("mydb", "h"));
  environment_.set("TNS_ADMIN", std::string(244, 'a'));
  EXPECT_EQ(build(tns_, "mydb"), found);
}

TEST_F(ServiceLookup, DirectoriesAreExtendedByTheirSuffix) {
  folder_.write("admin/tnsnames.ora", entry("mydb", "admin"));
  folder_.write("home/network/admin/tnsnames.ora", entry("mydb", "home"));
  struct Row {
    const char *variable;
    const char *value;
    const char *file;
    const char *host;
  };
  const Row rows[] = {
      {"TNS_ADMIN", "admin", "admin/tnsnames.ora", "admin"},
      {"TNS_ADMIN", "admin/", "admin//tnsnames.ora", "admin"},
      {"ORACLE_HOME", "home", "home/network/admin/tnsnames.ora", "home"},
      {"ORACLE_HOME", "home/", "home//network/admin/tnsnames.ora", "home"},
  };
  environment_.unset("KZCI_TNS_FILE");
  for (const Row &row : rows) {
    SCOPED_TRACE(row.file);
    begin();
    environment_.set(row.variable, row.value);
    EXPECT_EQ(build(tns_, "mydb"), found);
    EXPECT_EQ(host_of(*tns_.tns_service), row.host);
    EXPECT_EQ(support::log_without_pointers()[2],
              std::string("DEBUG get configure file:") + row.file);
    environment_.unset(row.variable);
    end({});
  }
}

TEST_F(ServiceLookup, TheExamplesOfDirectoriesGiveTheirNames) {
  environment_.unset("KZCI_TNS_FILE");
  environment_.set("ORACLE_HOME", "/opt/db");
  build(tns_, "mydb");
  EXPECT_EQ(support::log_without_pointers()[2],
            "DEBUG get configure file:/opt/db/network/admin/tnsnames.ora");
  KZCITnsClear(&tns_);
  begin();
  environment_.set("TNS_ADMIN", "/etc");
  build(tns_, "mydb");
  EXPECT_EQ(support::log_without_pointers()[2], "DEBUG get configure file:/etc/tnsnames.ora");
}

TEST_F(ServiceLookup, TheFirstVariableThatIsSetDecides) {
  folder_.write("names.ora", entry("mydb", "file"));
  folder_.write("admin/tnsnames.ora", entry("mydb", "admin"));
  folder_.write("home/network/admin/tnsnames.ora", entry("mydb", "home"));
  environment_.set("TNS_ADMIN", "admin");
  environment_.set("ORACLE_HOME", "home");
  EXPECT_EQ(build(tns_, "mydb"), found);
  EXPECT_EQ(host_of(*tns_.tns_service), "file");
  KZCITnsClear(&tns_);
  environment_.unset("KZCI_TNS_FILE");
  EXPECT_EQ(build(tns_, "mydb"), found);
  EXPECT_EQ(host_of(*tns_.tns_service), "admin");
  KZCITnsClear(&tns_);
  environment_.unset("TNS_ADMIN");
  EXPECT_EQ(build(tns_, "mydb"), found);
  EXPECT_EQ(host_of(*tns_.tns_service), "home");
}

#if !defined(_WIN32)  // No variable is empty there.
TEST_F(ServiceLookup, AVariableDecidesEvenWhenItIsEmpty) {
  folder_.write("admin/tnsnames.ora", entry("mydb", "admin"));
  folder_.write("home/network/admin/tnsnames.ora", entry("mydb", "home"));
  environment_.set("KZCI_TNS_FILE", "");
  environment_.set("TNS_ADMIN", "admin");
  environment_.set("ORACLE_HOME", "home");
  EXPECT_EQ(build(tns_, "mydb"), absent);
  EXPECT_EQ(support::log_without_pointers(), lookup_begins("") + not_opened(""));

  environment_.unset("KZCI_TNS_FILE");
  environment_.set("TNS_ADMIN", "");
  begin();
  build(tns_, "mydb");
  const Lines log = support::log_without_pointers();
  EXPECT_EQ(Lines(log.begin(), log.begin() + 3), lookup_begins("TNS_ADMIN", "", "/tnsnames.ora"));

  environment_.unset("TNS_ADMIN");
  environment_.set("ORACLE_HOME", "");
  KZCITnsClear(&tns_);
  begin();
  build(tns_, "mydb");
  const Lines last = support::log_without_pointers();
  EXPECT_EQ(Lines(last.begin(), last.begin() + 3),
            lookup_begins("ORACLE_HOME", "", "/network/admin/tnsnames.ora"));
}
#endif

TEST_F(ServiceLookup, TheEnvironmentIsReadOnEveryCall) {
  folder_.write("first.ora", entry("mydb", "one"));
  folder_.write("second.ora", entry("mydb", "two"));
  environment_.set("KZCI_TNS_FILE", "first.ora");
  EXPECT_EQ(build(tns_, "mydb"), found);
  environment_.set("KZCI_TNS_FILE", "second.ora");
  EXPECT_EQ(build(tns_, "mydb"), found);
  EXPECT_EQ(host_of(*tns_.tns_service), "one");
  EXPECT_EQ(host_of(*KZCITnsServiceNext(tns_.tns_service)), "two");
}

// Where the C library tells texts from other files, Ctrl-Z would end a text.
TEST_F(ServiceLookup, EveryByteOfTheFileIsRead) {
  EXPECT_EQ(look_up("# \x1A\r\n" + entry("mydb", "\"a\x1A\r\nb\""), "mydb"), found);
  ASSERT_EQ(tns_.tns_service_count, 1u);
  EXPECT_EQ(host_of(*tns_.tns_service), "a\x1A\r\nb");
}

#if !defined(_WIN32)  // A folder cannot be opened there.
TEST_F(ServiceLookup, AFileThatCannotBeReadEndsAtOnce) {
  environment_.set("KZCI_TNS_FILE", ".");  // A directory opens, its read fails.
  EXPECT_EQ(build(tns_, "mydb"), absent);
  EXPECT_EQ(support::log_without_pointers(), lookup_begins(".") + input_end(1) + not_found("mydb"));
}
#endif

// ----------------------------------------------------------------------
// The scan
// ----------------------------------------------------------------------

std::string five_entries() {
  return "# The services of the house (\n" + entry("alpha", "a") + entry("beta", "b") +
         "KZCISYSTEMVARIABLES = (LOG_COUNT = 3)\n" + entry("gamma", "c");
}

struct ScanRow {
  const char *title;
  std::string text;
  std::string name;
  Outcome outcome;
  Lines lines;  // After the opening of the file.
  std::vector<Block> left = {};
};

class ScanTest : public ServiceLookup {
 protected:
  void run(const ScanRow &row) {
    SCOPED_TRACE(row.title);
    SCOPED_TRACE(row.text);
    begin();
    names_file(row.text);
    const auto open_before = open_files();
    EXPECT_EQ(build(tns_, row.name), row.outcome);
    EXPECT_EQ(open_files(), open_before);
    EXPECT_EQ(tns_.tns_service_count, static_cast<ub4>(row.outcome.find));
    EXPECT_EQ(support::log_without_pointers(), lookup_begins() + row.lines);
    end(row.left);
  }
};

TEST_F(ScanTest, FiveEntries) {
  const ScanRow rows[] = {
      {"the first entry", five_entries(), "alpha", found,
       refill(1) + key("alpha") + name_found("alpha") + small_description("a") + mismatch(1, 3) +
           built(1, 1)},
      {"the second entry", five_entries(), "beta", found,
       refill(1) + key("alpha") + other_name("beta", "alph") + key("beta") + name_found("beta") +
           small_description("b") + mismatch(1, 3) + built(1, 1)},
      {"other case", five_entries(), "ALPHA", absent,
       refill(1) + key("alpha") + other_name("ALPHA", "alpha") + key("beta") +
           other_name("ALPHA", "betaa") + key("KZCISYSTEMVARIABLES") +
           other_name("ALPHA", "KZCIS")},
      {"after the reserved entry", five_entries(), "gamma", absent,
       refill(1) + key("alpha") + other_name("gamma", "alpha") + key("beta") +
           other_name("gamma", "betaa") + key("KZCISYSTEMVARIABLES") +
           other_name("gamma", "KZCIS")},
      {"the reserved entry", five_entries(), "KZCISYSTEMVARIABLES", found,
       refill(1) + key("alpha") + other_name("KZCISYSTEMVARIABLES", "alpha") + key("beta") +
           other_name("KZCISYSTEMVARIABLES", "betaa") + key("KZCISYSTEMVARIABLES") +
           name_found("KZCISYSTEMVARIABLES") + variables_begin() + log_count("3") + mismatch(1, 3) +
           built(0, 1)},
      {"no such entry", entry("alpha", "a") + entry("beta", "b") + entry("gamma", "c"), "delta",
       absent,
       refill(1) + key("alpha") + other_name("delta", "alpha") + key("beta") +
           other_name("delta", "betaa") + key("gamma") + other_name("delta", "gamma") +
           input_end(1) + not_found("delta")},
  };
  for (const ScanRow &row : rows) run(row);
}

TEST_F(ScanTest, FiveEntriesGiveTheirOwnValues) {
  EXPECT_EQ(look_up(five_entries(), "alpha"), found);
  EXPECT_EQ(build(tns_, "beta"), found);
  EXPECT_EQ(build(tns_, "KZCISYSTEMVARIABLES"), found);
  KZCITnsService *service = tns_.tns_service;
  EXPECT_EQ(host_of(*service), "a");
  service = KZCITnsServiceNext(service);
  EXPECT_EQ(host_of(*service), "b");
  service = KZCITnsServiceNext(service);
  EXPECT_EQ(service->description_count, 0u);
  EXPECT_EQ(service->sys_vars.log_count, 3u);
  EXPECT_EQ(KZCITnsServiceNext(service), tns_.tns_service);
}

TEST_F(ScanTest, TheFileEndsBeforeTheEntry) {
  const Lines absent_line = not_found("mydb");
  const ScanRow rows[] = {
      {"empty", "", "mydb", absent, input_end(1) + absent_line},
      {"blanks", " \t\r\n", "mydb", absent, refill(1) + input_end(1) + absent_line},
      {"a comment", "# mydb", "mydb", absent, refill(1) + input_end(1) + absent_line},
      {"inside the name", "myd", "mydb", absent, refill(1) + key_cut_off(1) + absent_line},
      {"right after the name", "mydb", "mydb", absent, refill(1) + key_cut_off(1) + absent_line},
      {"after the name", "mydb ", "mydb", absent,
       refill(1) + key("mydb") + input_end(1) + absent_line},
      {"after another name's equal sign", "other = ", "mydb", absent,
       refill(1) + key("other") + other_name("mydb", "othe") + input_end(1) +
           Lines{"ERROR fail to call KZCITnsServiceSkip, status:100"} + absent_line},
      {"inside a skipped entry", "other = (a (b)", "mydb", absent,
       refill(1) + key("other") + other_name("mydb", "othe") + refill(1) +
           Lines{"DEBUG reach eof", "ERROR fail to call KZCITnsServiceSkip, status:100"} +
           absent_line},
      {"right after a skipped entry", "other = ()", "mydb", absent,
       refill(1) + key("other") + other_name("mydb", "othe") + input_end(1) + absent_line},
  };
  for (const ScanRow &row : rows) run(row);
}

TEST_F(ScanTest, MalformedInputFails) {
  const std::string k256(256, 'k');
  const ScanRow rows[] = {
      {"a parenthesis for a name", "(", "mydb", failed, refill(1) + mismatch(3, 1)},
      {"a closing parenthesis for a name", ")", "mydb", failed, refill(1) + mismatch(3, 2)},
      {"an equal sign for a name", "= (", "mydb", failed, refill(1) + mismatch(3, 0)},
      {"the name is too long", k256, "mydb", failed, refill(1) + key_too_long()},
      {"a parenthesis for the equal sign", "mydb (", "mydb", failed,
       refill(1) + key("mydb") + mismatch(0, 1)},
      {"two words", "mydb other", "mydb", failed, refill(1) + key("mydb") + mismatch(0, 3)},
      {"a name of 257 characters", k256 + "k = (x)", "mydb", failed,
       refill(1) + key(k256) + mismatch(0, 3)},
      {"another entry without parentheses", "other = x", "mydb", failed,
       refill(1) + key("other") + other_name("mydb", "othe") + mismatch(1, 3) +
           Lines{"ERROR fail to call KZCITnsServiceSkip, status:-1"}},
      {"a parenthesis too many", "other = ())mydb = (", "mydb", failed,
       refill(1) + key("other") + other_name("mydb", "othe") + mismatch(3, 2)},
      {"the entry without parentheses", "mydb = x", "mydb", failed,
       refill(1) + key("mydb") + name_found("mydb") + mismatch(1, 3) + entry_failed(-1)},
      {"the entry's key is not DESCRIPTION", "mydb = (HOST = h)", "mydb", failed,
       refill(1) + key("mydb") + name_found("mydb") + other_block("HOST", LB_HOST) +
           entry_failed(-1)},
  };
  for (const ScanRow &row : rows) run(row);
}

// The builder decides what the end of the file inside its entry means; the
// lookup does not report the service as absent then.
TEST_F(ScanTest, TheFileEndsInsideTheEntry) {
  const Lines begun = refill(1) + key("mydb") + name_found("mydb");
  const Lines address_begun =
      description_begins() + description_key("ADDRESS", LB_ADDRESS) + address_call();
  const std::string one = "mydb = (DESCRIPTION = (ADDRESS = (HOST = h)))";
  const ScanRow rows[] = {
      {"after the equal sign", "mydb = ", "mydb", failed, begun + input_end(1) + entry_failed(100)},
      {"inside a value", "mydb = (DESCRIPTION = (ADDRESS = (HOST = h", "mydb", failed,
       begun + address_begun + host_word() + key_cut_off(1) + no_text() +
           Lines{"ERROR something error in build address, status:100",
                 "ERROR fail to call KZCIAddressBuild"} +
           description_failed() + entry_failed(-1)},
      {"before the last parenthesis",
       "mydb = (DESCRIPTION = (ADDRESS = (HOST = h))",
       "mydb",
       failed,
       begun + address_begun + host("h") + block_end() + input_end(1) + description_built(1) +
           ended() + entry_failed(100),
       {description_block, list_block, address_block}},
      {"right after the entry", one, "mydb", found,
       begun + small_description("h") + input_end(1) + built(1, 1)},
      {"before the second block's last parenthesis", one + "(DESCRIPTION = (ADDRESS = (HOST = i))",
       "mydb", found,
       begun + small_description("h") + address_begun + host("i") + block_end() + input_end(1) +
           description_built(1) + ended() + built(2, 1)},
  };
  for (const ScanRow &row : rows) run(row);
}

TEST_F(ScanTest, WhatStandsAfterTheEntryIsNotRead) {
  for (const char *after : {"= = (", ")", "mydb = (", "other", "other = x", "\""}) {
    SCOPED_TRACE(after);
    begin();
    EXPECT_EQ(look_up(entry("mydb", "h") + after, "mydb"), found);
    end({});
  }
}

TEST_F(ScanTest, TheFirstOfTwoEntriesOfOneNameIsBuilt) {
  EXPECT_EQ(look_up(entry("mydb", "one") + entry("mydb", "two"), "mydb"), found);
  EXPECT_EQ(tns_.tns_service_count, 1u);
  EXPECT_EQ(host_of(*tns_.tns_service), "one");
}

TEST_F(ScanTest, EveryLookupAppendsOneService) {
  names_file(entry("mydb", "h"));
  for (ub4 count = 1; count <= 3; ++count) {
    EXPECT_EQ(build(tns_, "mydb"), found);
    EXPECT_EQ(tns_.tns_service_count, count);
    EXPECT_EQ(support::log_without_pointers().back(),
              "DEBUG succ to call KZCITnsServiceBuild, service number:" + std::to_string(count));
  }
}

TEST_F(ScanTest, AFailureLeavesEarlierServicesAlone) {
  EXPECT_EQ(look_up(entry("mydb", "h") + "bad = x", "mydb"), found);
  const std::string before = support::full_tree(tns_);
  const KZCITnsService *first = tns_.tns_service;
  EXPECT_EQ(build(tns_, "bad"), failed);
  EXPECT_EQ(build(tns_, "none"), failed);
  EXPECT_EQ(support::full_tree(tns_), before);
  EXPECT_EQ(tns_.tns_service, first);
}

TEST_F(ScanTest, TheNameIsComparedByLengthAndLetterCase) {
  const char *names[] = {"MYDB", "Mydb", "myd", "mydb1", "mydb ", " mydb", "mydb=", ""};
  for (const char *name : names) {
    SCOPED_TRACE(name);
    begin();
    EXPECT_EQ(look_up(entry("mydb", "h"), name), absent);
    end({});
  }
}

TEST_F(ScanTest, ANameMayBeQuoted) {
  EXPECT_EQ(look_up("my\" = (\"db = (DESCRIPTION = (ADDRESS = (HOST = h)))", "my = (db"), found);
  EXPECT_EQ(name_of(*tns_.tns_service), "my = (db");
}

TEST_F(ScanTest, ANameMayHold256Characters) {
  for (const std::size_t length : {255u, 256u}) {
    SCOPED_TRACE(length);
    begin();
    const std::string name(length, 'n');
    EXPECT_EQ(look_up(entry(name, "h"), name), found);
    EXPECT_EQ(name_of(*tns_.tns_service), name);
    end({});
  }
}

TEST_F(ScanTest, ANameMayHoldAZeroByte) {
  const std::string name = bytes("my\0db"sv);
  names_file(entry(name, "h"));
  EXPECT_EQ(build(tns_, name), found);
  EXPECT_EQ(build(tns_, "my"), absent);
  EXPECT_EQ(tns_.tns_service_count, 1u);
}

// Names are compared as texts that a zero byte ends.
TEST_F(ScanTest, WhatStandsAfterAZeroByteOfANameIsNotCompared) {
  names_file(entry(bytes("my\0db"sv), "h"));
  EXPECT_EQ(build(tns_, bytes("my\0xx"sv)), found);
  EXPECT_EQ(build(tns_, bytes("mx\0db"sv)), absent);
}

TEST_F(ScanTest, NamesOfOneLengthMayDifferAnywhere) {
  for (const char *name : {"Xydb", "mXdb", "myXb", "mydX"}) {
    SCOPED_TRACE(name);
    begin();
    EXPECT_EQ(look_up(entry("mydb", "h"), name), absent);
    end({});
  }
}

TEST_F(ScanTest, AnEmptyNameMatchesOnlyAnEmptyName) {
  const ScanRow rows[] = {
      {"an empty pair of quotes", "\"\" = (LOG_COUNT = 4)", "", found,
       refill(1) + key("") + name_found("") + variables_begin() + log_count("4") + input_end(1) +
           built(0, 1)},
      {"a name", "mydb = ()", "", absent,
       refill(1) + key("mydb") + other_name("", "") + input_end(1) + not_found("")},
  };
  for (const ScanRow &row : rows) run(row);
}

// ----------------------------------------------------------------------
// The precision of the message about another name is the sought name's length
// ----------------------------------------------------------------------

TEST_F(ScanTest, TheMessageShowsWhatEarlierKeysLeft) {
  const ScanRow row = {"shorter names over longer ones", "longest_name=() ab=() cde=() \"\"=()",
                       "sought_one", absent,
                       refill(1) + key("longest_name") + other_name("sought_one", "longest_na") +
                           key("ab") + other_name("sought_one", "abngest_na") + key("cde") +
                           other_name("sought_one", "cdegest_na") + key("") +
                           other_name("sought_one", "cdegest_na")};
  run(row);
}

TEST_F(ScanTest, TheMessageShowsNoMoreThanAKeyCanHold) {
  const std::string name(300, 'd');
  const std::string other(256, 'k');
  const ScanRow rows[] = {
      {"a full key", other + " = ()", name, absent,
       refill(1) + key(other) + other_name(name, other) + input_end(1) + not_found(name)},
      {"a short key", "ab = ()", name, absent,
       refill(1) + key("ab") + other_name(name, "ab") + input_end(1) + not_found(name)},
      {"a short key over a full one", other + " = () ab = ()", name, absent,
       refill(1) + key(other) + other_name(name, other) + key("ab") +
           other_name(name, "ab" + std::string(254, 'k')) + input_end(1) + not_found(name)},
  };
  for (const ScanRow &row : rows) run(row);
}

// Such a length is negative as a precision, which would print without a bound.
TEST_F(ScanTest, ALengthAboveASignedNumberShowsNoMoreThanAKeyCanHold) {
  const OraText name[] = "mydb";
  const std::string other(256, 'k');
  names_file(other + " = ()");
  for (const ub4 length : {0x80000000u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(length);
    begin();
    boolean find = 7;
    EXPECT_EQ(KZCITnsBuild(&tns_, name, length, &find), 0);
    EXPECT_EQ(find, 0);
    EXPECT_EQ(support::log_without_pointers(), lookup_begins() + refill(1) + key(other) +
                                                   other_name("mydb", other) + input_end(1) +
                                                   not_found("mydb"));
  }
}

TEST_F(ScanTest, ALongNameIsComparedWithoutReadingAfterTheKey) {
  for (const std::size_t length : {257u, 1000u, 100000u}) {
    SCOPED_TRACE(length);
    begin();
    EXPECT_EQ(look_up(std::string(256, 'n') + " = ()", std::string(length, 'n')), absent);
    end({});
  }
}

// ----------------------------------------------------------------------
// Entries that are skipped
// ----------------------------------------------------------------------

TEST_F(ScanTest, ALeadingPartOfTheReservedNameEndsTheScan) {
  struct Row {
    std::string name;
    Outcome outcome;
  };
  const Row rows[] = {
      {"K", absent},
      {"KZ", absent},
      {"KZCI", absent},
      {"KZCISYSTEMVARIABLE", absent},
      {"KZCISYSTEMVARIABLES", absent},
      {bytes("KZCISYSTEMVARIABLES\0"sv), absent},
      {"\"\"", absent},
      {"k", found},
      {"kzci", found},
      {"kzcisystemvariables", found},
      {"KZCI_", found},
      {"KZCISYSTEMVARIABLES1", found},
      {"XKZCI", found},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.name);
    begin();
    EXPECT_EQ(look_up(row.name + " = (LOG_COUNT = 1)\n" + entry("mydb", "h"), "mydb"), row.outcome);
    EXPECT_EQ(support::warnings_and_errors().empty(), row.outcome == absent);
    end({});
  }
}

TEST_F(ScanTest, ALeadingPartOfTheReservedNameIsFoundUnderItsOwnName) {
  for (const char *name : {"K", "KZCI", "KZCISYSTEMVARIABLES", "kzci"}) {
    SCOPED_TRACE(name);
    begin();
    EXPECT_EQ(look_up(std::string(name) + " = (LOG_COUNT = 6)", name), found);
    EXPECT_EQ(tns_.tns_service->sys_vars.log_count, 6u);
    end({});
  }
}

TEST_F(ScanTest, ParenthesesOfASkippedEntryAreCountedEverywhere) {
  struct Row {
    const char *skipped;
    Outcome outcome;
  };
  const Row rows[] = {
      {"other = ((a)(b))\n", found},
      {"other = (((((((((())))))))))", found},
      {"other = (a # (\n)\n", absent},  // One more "(" than ")".
      {"other = (a # )\n)\n", failed},  // The real ")" stands where a name belongs.
      {"other = (a \"(\")\n", absent},
      {"other = (a \")\")\n", absent},  // The name begins with an open quote.
      {"other = (a \"()\")\n", found},
      {"other = (a = ) # x )\n", found},  // A comment between entries is one.
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.skipped);
    begin();
    EXPECT_EQ(look_up(row.skipped + entry("mydb", "h"), "mydb"), row.outcome);
    end({});
  }
}

TEST_F(ScanTest, EntriesMayLieAcrossAnyRefill) {
  for (std::size_t blanks = 960; blanks <= 1030; ++blanks) {
    SCOPED_TRACE(blanks);
    begin();
    EXPECT_EQ(look_up(std::string(blanks, ' ') + "other = (a (b))\n" + entry("mydb", "h"), "mydb"),
              found);
    EXPECT_EQ(host_of(*tns_.tns_service), "h");
    end({});
  }
}

TEST_F(ScanTest, ASkippedEntryMayFillManyBuffers) {
  const std::string inside = "(x" + std::string(100000, 'y') + ")";
  EXPECT_EQ(look_up("other = (" + inside + inside + ")" + entry("mydb", "h"), "mydb"), found);
  EXPECT_EQ(support::live_blocks().size(), 4u);  // Nothing of the skipped entry.
}

TEST_F(ScanTest, TheFileIsClosedWhenThereIsNoMemory) {
  names_file(entry("mydb", "h"));
  const auto open_before = open_files();
  support::fail_allocation(1);
  EXPECT_EQ(build(tns_, "mydb"), failed);
  EXPECT_EQ(open_files(), open_before);
}

TEST_F(ScanTest, ManyLookupsLeaveNoFileOpen) {
  names_file(five_entries());
  const auto open_before = open_files();
  for (const char *name : {"alpha", "beta", "ALPHA", "gamma", "KZCISYSTEMVARIABLES"})
    for (int i = 0; i < 20; ++i) build(tns_, name);
  EXPECT_EQ(open_files(), open_before);
  EXPECT_EQ(tns_.tns_service_count, 60u);
}

}  // namespace
